#pragma once

#include "Files/FileDescriptor.h"
#include "Interrupted.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>

namespace orvex::platform {

/// A regular file open for reading at any position. It is read with plain reads and never mapped: a file that shrinks
/// under a mapping would end the process. Reading is safe from several threads.
class RandomAccessFile {
public:
    /// Opens a regular file. Raises FileSystemError if it cannot be opened or is anything else; a FIFO or a device is
    /// never waited for. Once a stop is requested, nothing more can be read of the file.
    [[nodiscard]] static RandomAccessFile open(const QString& path, const std::stop_token& stop = {});

    /// The size in bytes at the time of opening.
    [[nodiscard]] qint64 size() const { return size_; }

    [[nodiscard]] const QString& path() const { return path_; }

    /// Raises Interrupted if a stop has been requested; for whoever works long on what it has read.
    void throwIfStopped() const { platform::throwIfStopped(stop_); }

    /// Reads from `offset` into `buffer`; the count is short only at the end of the file. Raises FileSystemError, and
    /// Interrupted once a stop is requested.
    [[nodiscard]] qint64 readAt(qint64 offset, std::span<std::byte> buffer) const;

    /// The bytes from `offset`, fewer than `count` only at the end of the file. Raises what `readAt` raises.
    [[nodiscard]] QByteArray bytesAt(qint64 offset, qint64 count) const;

    /// Hands over all bytes, piece by piece. Raises what `readAt` raises, and FileSystemError for a file that has
    /// become shorter.
    void forEachPiece(const std::function<void(QByteArrayView)>& take) const;

private:
    RandomAccessFile(FileDescriptor descriptor, QString path, qint64 size, std::stop_token stop)
        : descriptor_(std::move(descriptor)),
          path_(std::move(path)),
          size_(size),
          stop_(std::move(stop)) {}

    FileDescriptor descriptor_;
    QString path_;
    qint64 size_;
    std::stop_token stop_;
};

/// The whole content of a regular file. Raises FileSystemError, also if the file is larger than `limitBytes`.
[[nodiscard]] QByteArray readWholeFile(const QString& path, qint64 limitBytes);

/// The same; absent if there is no such file. A link that leads nowhere is a failure: what it leads to may come back.
[[nodiscard]] std::optional<QByteArray> readFileIfThere(const QString& path, qint64 limitBytes);

} // namespace orvex::platform
