#pragma once

#include <QtGlobal>

#include <cstddef>
#include <span>

namespace orvex::platform {

inline constexpr quint64 pngSignatureBytes = 8;

// Chunk types, as the big-endian number of their four letters.
inline constexpr quint32 pngImageHeader = 0x49484452; ///< IHDR
inline constexpr quint32 pngImageData = 0x49444154;   ///< IDAT
inline constexpr quint32 pngEnd = 0x49454E44;         ///< IEND
inline constexpr quint32 pngExif = 0x65584966;        ///< eXIf

/// The CRC-32 of the bytes that gave `before` and then these; 0 is that of none. A chunk's covers its type and data.
[[nodiscard]] quint32 pngChecksum(quint32 before, std::span<const std::byte> bytes);

/// The CRC-32 of the four letters alone.
[[nodiscard]] quint32 pngTypeChecksum(quint32 type);

} // namespace orvex::platform
