#include "Files/FileFacts.h"

#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <sys/stat.h>

namespace orvex::platform {

FileFacts FileFacts::read(const QString& path) {
    constexpr qint64 nanosecondsPerSecond = 1'000'000'000;

    struct stat facts {};

    if (::stat(nativePath(path).constData(), &facts) != 0) {
        throw FileSystemError::last(path);
    }
    return {.isRegularFile = S_ISREG(facts.st_mode),
            .sizeBytes = facts.st_size,
            .modifiedNanoseconds = facts.st_mtim.tv_sec * nanosecondsPerSecond + facts.st_mtim.tv_nsec};
}

} // namespace orvex::platform
