// A PNG file: its headers, its stream, its preview, all of its rows. A wrong checksum would hide nearly everything else
// from the fuzzer, so each input is tried as it is and with its checksums put right.

#include "FileInMemory.h"
#include "Imaging/Codecs.h"
#include "Imaging/PngChunk.h"
#include "WholeRaster.h"

#include <QtEndian>

#include <vector>

using namespace orvex;

namespace {

std::vector<std::uint8_t> withRightChecksums(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> file(data, data + size);
    for (std::size_t offset = platform::pngSignatureBytes; offset + 12 <= size;) {
        const std::size_t length = qFromBigEndian<quint32>(file.data() + offset);
        if (length > size - offset - 12) {
            break;
        }
        const auto covered = std::as_bytes(std::span(file)).subspan(offset + 4, 4 + length);
        qToBigEndian(platform::pngChecksum(0, covered), file.data() + offset + 8 + length);
        offset += 12 + length;
    }
    return file;
}

/// Whether the stream can be copied; its checksums are all that is looked at there.
bool copiesStream(const platform::ImageSource& image) {
    try {
        if (const auto stream = image.encodedStream()) {
            stream->copy([](std::span<const std::byte>) {});
        }
        return true;
    } catch (const platform::ImageError&) {
        return false;
    }
}

void tryFile(const std::uint8_t* data, std::size_t size) {
    const fuzz::FileInMemory file(data, size);
    try {
        const auto image = platform::openPng(
            std::make_shared<const platform::RandomAccessFile>(platform::RandomAccessFile::open(file.path())));
        (void)image->properties();
        const bool isWhole = fuzz::decodes(image->full());
        if (isWhole != fuzz::makesPreview(*image) || (isWhole && !copiesStream(*image))) {
            std::abort();
        }
    } catch (const platform::ImageError&) {
        return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tryFile(data, size);
    const std::vector<std::uint8_t> repaired = withRightChecksums(data, size);
    tryFile(repaired.data(), repaired.size());
    return 0;
}
