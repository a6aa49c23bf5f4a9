#pragma once

#include "Files/FileDescriptor.h"

#include <QByteArray>
#include <QString>

namespace orvex::platform {

/// A regular file open for being changed in place. This is not how a file that matters is saved: a failure may leave it
/// half changed. It is for a private temporary file that is thrown away then; FileReplacer is for everything else.
///
/// Links are followed; anything but an existing regular file is refused, and a FIFO or a device is never waited for.
/// All failures are FileSystemError. One thread.
class FileUpdater {
public:
    [[nodiscard]] static FileUpdater open(const QString& path);

    /// The size in bytes when the file was opened.
    [[nodiscard]] qint64 size() const { return size_; }

    /// The bytes from `offset` that lie within `size`; fewer than `count` only at the end.
    [[nodiscard]] QByteArray bytesAt(qint64 offset, qint64 count) const;

    /// Writes all bytes at `offset`, over what is there or beyond the end.
    void writeAt(qint64 offset, QByteArrayView bytes);

    /// Returns once everything written has reached the disk.
    void synchronize();

private:
    FileUpdater(FileDescriptor descriptor, QString path, qint64 size)
        : descriptor_(std::move(descriptor)),
          path_(std::move(path)),
          size_(size) {}

    FileDescriptor descriptor_;
    QString path_;
    qint64 size_;
};

} // namespace orvex::platform
