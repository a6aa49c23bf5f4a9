#pragma once

#include "Files/FileDescriptor.h"

#include <QString>

#include <optional>

namespace orvex::platform {

/// An exclusive, advisory lock on a folder, for whoever alone may write there. It lies on the folder itself: no file is
/// made, and a folder that cannot be written can be locked, too. It ends with this object or with the process, however
/// that ends; programs that this process starts do not inherit it. Any thread.
class FolderLock {
public:
    /// Locks a folder without waiting. Absent if it is locked already, by another process or by this one. Raises
    /// FileSystemError for what is no folder, cannot be opened, or lies where the system has no locks.
    [[nodiscard]] static std::optional<FolderLock> tryLock(const QString& path);

    FolderLock(FolderLock&&) noexcept = default;
    FolderLock& operator=(FolderLock&& other) noexcept;
    ~FolderLock();

private:
    explicit FolderLock(FileDescriptor folder) : folder_(std::move(folder)) {}

    FileDescriptor folder_;
};

} // namespace orvex::platform
