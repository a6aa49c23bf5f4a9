// A HEIF file: its headers, its preview, all of its rows.

#include "FileInMemory.h"
#include "Imaging/Codecs.h"
#include "WholeRaster.h"

using namespace orvex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::FileInMemory file(data, size);
    try {
        const auto image = platform::openHeif(
            std::make_shared<const platform::RandomAccessFile>(platform::RandomAccessFile::open(file.path())));
        (void)image->properties();
        (void)fuzz::decodes(image->full());
        (void)fuzz::makesPreview(*image);
    } catch (const platform::ImageError&) {
        return 0;
    }
    return 0;
}
