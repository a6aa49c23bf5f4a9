#pragma once

#include "Files/FileDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <span>

/// The system calls that all open files share. `path` names the file in a failure; every failure is a FileSystemError.
/// Any thread.
namespace orvex::platform {

/// Opens a regular file with the given flags of open(2). Anything else is refused; a FIFO or a device is never waited
/// for.
[[nodiscard]] FileDescriptor openRegularFile(const QString& path, int flags);

/// Opens a folder, so that it can be synchronised or locked.
[[nodiscard]] FileDescriptor openFolder(const QString& path);

/// Refuses an open file that is no regular one.
void requireRegularFile(const FileDescriptor& file, const QString& path);

[[nodiscard]] qint64 sizeBytes(const FileDescriptor& file, const QString& path);

/// Reads from `offset` into `buffer`; the count is short only at the end of the file.
[[nodiscard]] qint64 readAt(const FileDescriptor& file, qint64 offset, std::span<std::byte> buffer,
                            const QString& path);

/// The bytes from `offset`, fewer than `count` only at the end of the file; the file's size bounds the allocation.
[[nodiscard]] QByteArray bytesAt(const FileDescriptor& file, qint64 fileSizeBytes, qint64 offset, qint64 count,
                                 const QString& path);

/// Writes all bytes at `offset`, or raises.
void writeAt(const FileDescriptor& file, qint64 offset, QByteArrayView bytes, const QString& path);

/// Returns once everything written has reached the disk.
void synchronize(const FileDescriptor& file, const QString& path);

/// So that what was just made or removed in a folder stays so through a power failure. Where that cannot be, it is made
/// or removed all the same, and nothing is raised.
void synchronizeFolderIfPossible(const QString& folder);

} // namespace orvex::platform
