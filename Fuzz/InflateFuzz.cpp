// The inflation of a compressed profile, with small and with the real limits.

#include "Color/Inflate.h"
#include "Output/EmbeddedICC.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr qsizetype smallLimit = 1000;
    const QByteArray stream(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto small = orvex::platform::inflate(stream, 16, smallLimit);
    const auto whole = orvex::EmbeddedICC::inflate(stream);
    if (small ? small != whole : whole && whole->size() <= smallLimit) {
        std::abort(); // the room of the first try must not matter
    }
    return 0;
}
