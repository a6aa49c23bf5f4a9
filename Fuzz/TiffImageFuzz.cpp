// A TIFF file: its headers, its preview, all of its rows. Damage that one of the decodings finds, the other must find.

#include "FileInMemory.h"
#include "Imaging/Codecs.h"
#include "WholeRaster.h"

using namespace orvex;

namespace {

/// A few bytes may well stand for a large blank picture; of such a one this much is enough.
constexpr qint64 enoughBytes = 64 << 20;

class Enough {};

void decodeBeginning(const platform::Raster& raster) {
    qint64 count = 0;
    try {
        raster.rows([&](const platform::RowStrip& strip) {
            count += static_cast<qint64>(strip.bytes.size());
            if (count > enoughBytes) {
                throw Enough();
            }
        });
    } catch (const Enough&) {
        return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::FileInMemory file(data, size);
    try {
        const auto image = platform::openTiff(
            std::make_shared<const platform::RandomAccessFile>(platform::RandomAccessFile::open(file.path())));
        (void)image->properties();
        const platform::Raster raster = image->full();
        if (raster.storedHeight() > enoughBytes / raster.rowBytes()) {
            decodeBeginning(raster);
        } else if (fuzz::decodes(raster) != fuzz::makesPreview(*image)) {
            std::abort();
        }
    } catch (const platform::ImageError&) {
        return 0;
    }
    return 0;
}
