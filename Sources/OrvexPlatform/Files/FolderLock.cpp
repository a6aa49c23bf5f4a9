#include "Files/FolderLock.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"

#include <sys/file.h>

#include <cerrno>

namespace orvex::platform {

std::optional<FolderLock> FolderLock::tryLock(const QString& path) {
    FileDescriptor folder = openFolder(path);
    if (::flock(folder.get(), LOCK_EX | LOCK_NB) == 0) {
        return FolderLock(std::move(folder));
    }
    if (errno == EWOULDBLOCK) {
        return std::nullopt;
    }
    throw FileSystemError::last(path);
}

FolderLock& FolderLock::operator=(FolderLock&& other) noexcept {
    const FolderLock former(std::move(*this)); // is released here, and not whenever `other` goes
    folder_ = std::move(other.folder_);
    return *this;
}

FolderLock::~FolderLock() {
    if (folder_.isOpen()) {
        // The closing alone would leave it locked while a child process that just starts still has the descriptor.
        ::flock(folder_.get(), LOCK_UN);
    }
}

} // namespace orvex::platform
