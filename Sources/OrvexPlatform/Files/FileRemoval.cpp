#include "Files/FileRemoval.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <QFileInfo>

#include <unistd.h>

namespace orvex::platform {

void removeFile(const QString& path) {
    if (::unlink(nativePath(path).constData()) != 0) {
        throw FileSystemError::last(path);
    }
    synchronizeFolderIfPossible(QFileInfo(path).path());
}

} // namespace orvex::platform
