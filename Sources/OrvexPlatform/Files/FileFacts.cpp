#include "Files/FileFacts.h"

#include "Files/FileSystemError.h"
#include "Files/FileTimes.h"
#include "Files/Paths.h"

#include <sys/stat.h>

namespace orvex::platform {

FileFacts FileFacts::read(const QString& path) {
    struct stat facts {};

    if (::stat(nativePath(path).constData(), &facts) != 0) {
        throw FileSystemError::last(path);
    }
    return {.isRegularFile = S_ISREG(facts.st_mode),
            .sizeBytes = facts.st_size,
            .modifiedNanoseconds = modifiedNanosecondsOf(facts)};
}

} // namespace orvex::platform
