#include "Files/FileUpdater.h"

#include "Files/DescriptorIO.h"

#include <fcntl.h>

namespace orvex::platform {

FileUpdater FileUpdater::open(const QString& path) {
    FileDescriptor descriptor = openRegularFile(path, O_RDWR);
    const qint64 size = sizeBytes(descriptor, path);
    return {std::move(descriptor), path, size};
}

QByteArray FileUpdater::bytesAt(qint64 offset, qint64 count) const {
    return platform::bytesAt(descriptor_, size_, offset, count, path_);
}

void FileUpdater::writeAt(qint64 offset, QByteArrayView bytes) {
    platform::writeAt(descriptor_, offset, bytes, path_);
}

void FileUpdater::synchronize() {
    platform::synchronize(descriptor_, path_);
}

} // namespace orvex::platform
