#include "Files/TemporaryFolder.h"

#include "Files/FileSystemError.h"
#include "Files/LiveTemporaries.h"

#include <QDir>

namespace orvex::platform {

TemporaryFolder::TemporaryFolder() {
    if (!folder_.isValid()) {
        throw FileSystemError::last(QDir::tempPath());
    }
    LiveTemporaries::add(folder_.path());
}

TemporaryFolder::~TemporaryFolder() {
    folder_.remove();
    LiveTemporaries::remove(folder_.path());
}

} // namespace orvex::platform
