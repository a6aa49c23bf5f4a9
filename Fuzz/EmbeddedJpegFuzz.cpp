// The search for a profile, or a declaration in the EXIF data, in a JPEG file.

#include "Output/EmbeddedICC.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray file(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    orvex::platform::ByteReader reader(file);
    (void)orvex::EmbeddedICC::jpeg(reader);
    (void)orvex::EmbeddedICC::exifDeclaresSRGB(file);
    return 0;
}
