// The search for a profile in a PNG file.

#include "Output/EmbeddedICC.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray file(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    orvex::platform::ByteReader reader(file);
    (void)orvex::EmbeddedICC::png(reader);
    return 0;
}
