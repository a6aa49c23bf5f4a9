#pragma once

#include "Files/ByteReader.h"

#include <QByteArray>

#include <optional>

namespace orvex {

/// Finds the ICC profile that an image file carries by reading the container itself.
///
/// Each function gives the profile's bytes, unchecked, or nothing for a file that has none or is malformed. They read
/// no image data: the head of a PNG or JPEG, the first directory of a TIFF. No profile is larger than `largestBytes`.
namespace EmbeddedICC {

inline constexpr qsizetype largestBytes = 67'108'864;  ///< of a profile, compressed or not
inline constexpr qsizetype firstInflateBytes = 65'536; ///< the room of the first try to inflate
inline constexpr qsizetype smallestTiffProfile = 132;  ///< a header and its count of tags

/// The iCCP or sRGB chunk before the image data, whichever comes first; sRGB gives the system's sRGB profile.
[[nodiscard]] std::optional<QByteArray> png(platform::ByteReader& data);

/// The joined APP2 segments before the scan; without any, the system's sRGB profile if the EXIF data declares sRGB.
[[nodiscard]] std::optional<QByteArray> jpeg(platform::ByteReader& data);

/// Tag 34675 of the first directory, of a classic TIFF or a BigTIFF.
[[nodiscard]] std::optional<QByteArray> tiff(platform::ByteReader& data);

/// The content of the compressed part of an iCCP chunk.
[[nodiscard]] std::optional<QByteArray> inflate(const QByteArray& data);

/// Whether EXIF data, a TIFF structure from its first byte on, says that the picture is in sRGB.
[[nodiscard]] bool exifDeclaresSRGB(const QByteArray& exif);

} // namespace EmbeddedICC

} // namespace orvex
