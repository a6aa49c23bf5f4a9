// The search for a profile in a TIFF file, classic or big.

#include "Output/EmbeddedICC.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray file(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    orvex::platform::ByteReader reader(file);
    const auto profile = orvex::EmbeddedICC::tiff(reader);
    if (profile && !file.contains(*profile)) {
        std::abort(); // a TIFF holds its profile as it is
    }
    return 0;
}
