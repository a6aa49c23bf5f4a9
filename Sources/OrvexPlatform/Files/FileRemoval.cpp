#include "Files/FileRemoval.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <QFileInfo>

#include <unistd.h>

namespace orvex::platform {

void removeFile(const QString& path) {
    // Opened first: a folder that could not be synchronised must not fail when the file is gone.
    const FileDescriptor folder = openFolder(QFileInfo(path).path());
    if (::unlink(nativePath(path).constData()) != 0) {
        throw FileSystemError::last(path);
    }
    synchronize(folder, path);
}

} // namespace orvex::platform
