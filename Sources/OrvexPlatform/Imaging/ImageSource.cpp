#include "Imaging/ImageSource.h"

#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"

namespace orvex::platform {

namespace {

constexpr qint64 signatureBytes = 12;

bool isHeif(const QByteArray& head) {
    // ISO 14496-12, 4.3: every file begins with its brand box.
    return head.size() >= signatureBytes && head.sliced(4, 4) == "ftyp";
}

bool isTiff(const QByteArray& head) {
    return head.startsWith(QByteArrayView("II*\0", 4)) || head.startsWith(QByteArrayView("MM\0*", 4)) ||
           head.startsWith(QByteArrayView("II+\0", 4)) || head.startsWith(QByteArrayView("MM\0+", 4));
}

std::unique_ptr<ImageSource> openImage(std::shared_ptr<const RandomAccessFile> file) {
    const QByteArray head = file->bytesAt(0, signatureBytes);
    if (head.startsWith("\x89PNG\r\n\x1a\n")) {
        return openPng(std::move(file));
    }
    if (head.startsWith("\xff\xd8")) {
        return openJpeg(std::move(file));
    }
    if (isTiff(head)) {
        return openTiff(std::move(file));
    }
    if (isHeif(head)) {
        return openHeif(std::move(file));
    }
    throw ImageError(QStringLiteral("no signature of a supported image format"));
}

} // namespace

std::unique_ptr<ImageSource> ImageSource::open(const QString& path, const std::stop_token& stop) {
    auto file = std::make_shared<const RandomAccessFile>(RandomAccessFile::open(path, stop));
    std::unique_ptr<ImageSource> source = openImage(std::move(file));
    source->stop_ = stop;
    return source;
}

} // namespace orvex::platform
