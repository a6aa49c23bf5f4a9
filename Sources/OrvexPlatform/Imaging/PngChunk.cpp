#include "Imaging/PngChunk.h"

#include <QtEndian>

#include <isa-l/crc.h>

#include <array>

namespace orvex::platform {

quint32 pngChecksum(quint32 before, std::span<const std::byte> bytes) {
    return crc32_gzip_refl(before, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

quint32 pngTypeChecksum(quint32 type) {
    std::array<std::byte, 4> letters{};
    qToBigEndian(type, letters.data());
    return pngChecksum(0, letters);
}

} // namespace orvex::platform
