#pragma once

#include <QByteArray>

#include <optional>

namespace orvex::platform {

/// What an EXIF block says of its picture, as far as anything here depends on it.
struct ExifMetadata {
    int orientation = 1;            ///< 1 to 8; anything but one SHORT of that range counts as 1
    std::optional<double> dpiWidth; ///< pixels per inch along the stored rows, not rounded; may be 0
    std::optional<double> dpiHeight;
    bool declaresSRGB = false; ///< the EXIF colour space is 1

    /// Reads a block that begins with its TIFF header ("II" or "MM"), without the "Exif" prefix that a JPEG segment
    /// has. A block that is damaged or cut off gives what can be read of it, in the worst case the defaults; only its
    /// first 64 KiB count. A resolution without a unit is one per inch, and one whose unit is neither inch nor
    /// centimetre is none, as is one with a zero denominator. Any thread.
    [[nodiscard]] static ExifMetadata read(const QByteArray& tiffData);

    bool operator==(const ExifMetadata&) const = default;
};

} // namespace orvex::platform
