#include "Files/RandomAccessFile.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"

#include <QFileInfo>

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace orvex::platform {

RandomAccessFile RandomAccessFile::open(const QString& path, const std::stop_token& stop) {
    FileDescriptor descriptor = openRegularFile(path, O_RDONLY);
    const qint64 size = sizeBytes(descriptor, path);
    return {std::move(descriptor), path, size, stop};
}

qint64 RandomAccessFile::readAt(qint64 offset, std::span<std::byte> buffer) const {
    throwIfStopped();
    return platform::readAt(descriptor_, offset, buffer, path_);
}

QByteArray RandomAccessFile::bytesAt(qint64 offset, qint64 count) const {
    throwIfStopped();
    return platform::bytesAt(descriptor_, size_, offset, count, path_);
}

void RandomAccessFile::forEachPiece(const std::function<void(QByteArrayView)>& take) const {
    constexpr qint64 pieceBytes = 1 << 20;
    for (qint64 offset = 0; offset < size_; offset += pieceBytes) {
        const qint64 expected = std::min(pieceBytes, size_ - offset);
        const QByteArray piece = bytesAt(offset, expected);
        if (piece.size() < expected) {
            throw FileSystemError(EIO, path_);
        }
        take(piece);
    }
}

QByteArray readWholeFile(const QString& path, qint64 limitBytes) {
    const RandomAccessFile file = RandomAccessFile::open(path);
    if (file.size() > limitBytes) {
        throw FileSystemError(EFBIG, path);
    }
    return file.bytesAt(0, file.size());
}

std::optional<QByteArray> readFileIfThere(const QString& path, qint64 limitBytes) {
    try {
        return readWholeFile(path, limitBytes);
    } catch (const FileSystemError& error) {
        if (error.isMissing() && !QFileInfo(path).isSymLink()) {
            return std::nullopt;
        }
        throw;
    }
}

} // namespace orvex::platform
