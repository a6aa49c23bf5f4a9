// A JPEG file: its headers, its preview, all of its rows. Damage that one of the decodings finds, the other must find.

#include "Failure.h"
#include "FileInMemory.h"
#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"

using namespace orvex;

namespace {

/// Whether all rows come; a refusal is an answer.
bool decodes(const platform::Raster& raster) {
    qint64 nextRow = 0;
    try {
        raster.rows([&](const platform::RowStrip& strip) {
            const auto expected = static_cast<std::size_t>(strip.rowCount * raster.rowBytes());
            if (strip.firstRow != nextRow || strip.bytes.size() != expected) {
                std::abort();
            }
            nextRow += strip.rowCount;
        });
    } catch (const platform::ImageError&) {
        return false;
    }
    if (nextRow != raster.storedHeight()) {
        std::abort();
    }
    return true;
}

bool makesPreview(const platform::ImageSource& image) {
    try {
        return decodes(image.preview(50));
    } catch (const platform::ImageError&) {
        return false;
    }
}

void copyStream(const platform::ImageSource& image, std::size_t size) {
    if (const auto stream = image.encodedStream()) {
        std::size_t copied = 0;
        stream->copy([&](std::span<const std::byte> piece) { copied += piece.size(); });
        if (copied != size) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::FileInMemory file(data, size);
    try {
        const auto image = platform::openJpeg(
            std::make_shared<const platform::RandomAccessFile>(platform::RandomAccessFile::open(file.path())));
        copyStream(*image, size);
        if (decodes(image->full()) != makesPreview(*image)) {
            std::abort();
        }
    } catch (const platform::ImageError&) {
        return 0;
    }
    return 0;
}
