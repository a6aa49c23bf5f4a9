#include "Files/DescriptorIO.h"

#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace orvex::platform {

namespace {

constexpr qsizetype largestWriteBytes = 1 << 30; // the system writes no more than 2 GiB at once

struct stat factsOf(const FileDescriptor& file, const QString& path) {
    struct stat facts {};

    if (::fstat(file.get(), &facts) != 0) {
        throw FileSystemError::last(path);
    }
    return facts;
}

} // namespace

FileDescriptor openRegularFile(const QString& path, int flags) {
    // O_NONBLOCK keeps a FIFO from blocking here; it means nothing for a regular file.
    FileDescriptor file(::open(nativePath(path).constData(), flags | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
        throw FileSystemError::last(path);
    }
    requireRegularFile(file, path);
    return file;
}

FileDescriptor openFolder(const QString& path) {
    FileDescriptor folder(::open(nativePath(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) {
        throw FileSystemError::last(path);
    }
    return folder;
}

void requireRegularFile(const FileDescriptor& file, const QString& path) {
    const mode_t mode = factsOf(file, path).st_mode;
    if (!S_ISREG(mode)) {
        throw FileSystemError(S_ISDIR(mode) ? EISDIR : EINVAL, path);
    }
}

qint64 sizeBytes(const FileDescriptor& file, const QString& path) {
    return factsOf(file, path).st_size;
}

qint64 readAt(const FileDescriptor& file, qint64 offset, std::span<std::byte> buffer, const QString& path) {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t count = ::pread(file.get(), buffer.data() + done, buffer.size() - done,
                                      static_cast<off_t>(offset) + static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw FileSystemError::last(path);
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return static_cast<qint64>(done);
}

QByteArray bytesAt(const FileDescriptor& file, qint64 fileSizeBytes, qint64 offset, qint64 count, const QString& path) {
    const bool isInside = offset >= 0 && offset < fileSizeBytes;
    QByteArray bytes(isInside ? std::clamp<qint64>(count, 0, fileSizeBytes - offset) : 0, Qt::Uninitialized);
    bytes.truncate(readAt(
        file, offset, std::as_writable_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size()))), path));
    return bytes;
}

void writeAt(const FileDescriptor& file, qint64 offset, QByteArrayView bytes, const QString& path) {
    while (!bytes.isEmpty()) {
        const auto count = static_cast<std::size_t>(std::min(bytes.size(), largestWriteBytes));
        const ssize_t written = ::pwrite(file.get(), bytes.data(), count, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            throw FileSystemError(written < 0 ? errno : EIO, path);
        }
        bytes = bytes.sliced(written);
        offset += written;
    }
}

void synchronize(const FileDescriptor& file, const QString& path) {
    if (::fsync(file.get()) != 0) {
        throw FileSystemError::last(path);
    }
}

void synchronizeFolderIfPossible(const QString& folder) {
    try {
        synchronize(openFolder(folder), folder);
    } catch (const FileSystemError&) {
        // What was done in the folder is done.
    }
}

} // namespace orvex::platform
