#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace orvex::platform {

class TiffHandle;

/// How 8-bit YCbCr pixels are stored (TIFF 6.0, section 21): in units of some luminances, row by row, and the one
/// colour that they share. A value.
struct TiffYCbCr {
    int horizontal = 2; ///< the luminances of a unit: 1, 2 or 4 each way
    int vertical = 2;
    std::array<float, 3> luma = {};          ///< the share of red, green and blue in the luminance
    std::array<float, 6> blackAndWhite = {}; ///< the codes of black and white, of full colour for Cb and Cr

    /// Reads the tags of a picture that is not compressed by JPEG. Raises ImageError for what cannot be meant.
    [[nodiscard]] static TiffYCbCr read(const TiffHandle& handle);

    [[nodiscard]] qint64 unitBytes() const { return qint64{horizontal} * vertical + 2; }

    /// The bytes of a row of units that covers `width` pixels.
    [[nodiscard]] qint64 unitRowBytes(qint64 width) const {
        return (width + horizontal - 1) / horizontal * unitBytes();
    }

    /// The bytes of a segment of that size.
    [[nodiscard]] qint64 segmentBytes(qint64 width, qint64 rows) const {
        return (rows + vertical - 1) / vertical * unitRowBytes(width);
    }

    bool operator==(const TiffYCbCr&) const = default;
};

/// Turns such pixels into RGB. One thread.
class TiffYCbCrConverter {
public:
    explicit TiffYCbCrConverter(const TiffYCbCr& ycbcr);

    /// Converts row `row` of a row of units, 0 for its first, into as many RGB pixels as `pixels` has room for.
    void convertRow(std::span<const std::byte> units, qint64 row, std::span<std::byte> pixels) const;

private:
    using Table = std::array<float, 256>;

    TiffYCbCr ycbcr_;
    Table luminance_{};
    Table redOfCr_{}; ///< what a code adds to a colour
    Table greenOfCr_{};
    Table greenOfCb_{};
    Table blueOfCb_{};
};

} // namespace orvex::platform
