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

bool isThere(const QString& path) {
    try {
        static_cast<void>(FileFacts::read(path));
        return true;
    } catch (const FileSystemError& error) {
        if (!error.isMissing()) {
            throw;
        }
        return false;
    }
}

} // namespace orvex::platform
