// The EXIF blocks of JPEG, PNG and HEIC files.

#include "Imaging/ExifMetadata.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray block(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto metadata = orvex::platform::ExifMetadata::read(block);
    if (metadata.orientation < 1 || metadata.orientation > 8) {
        std::abort();
    }
    return 0;
}
