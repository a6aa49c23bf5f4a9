#pragma once

#include "Imaging/Raster.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace orvex::platform {

/// Computes colours from the profiles themselves: the pixels of the first buffer into the second. Slow, and the measure
/// of everything else. Any thread, and several at once.
using ExactConversion = std::function<void(std::span<const std::byte> source, std::span<std::byte> destination)>;

/// Which colours that have been computed are kept.
enum class ColorMemory {
    all,   ///< for pictures of any size
    recent ///< of three samples of 8 bits only some, for as long as one call lasts: for small pictures, in under 1 MB
};

/// The pixels of a conversion; both sides have samples of the same depth, 8 or 16 bits, without alpha.
struct ConversionFormat {
    ColorModel source = ColorModel::rgb;
    ColorModel destination = ColorModel::cmyk;
    int bits = 8;
    ColorMemory memory = ColorMemory::all;

    [[nodiscard]] std::size_t sourceBytes() const;
    [[nodiscard]] std::size_t destinationBytes() const;
};

/// How far from an exact colour an interpolated one may be, in parts of a sample's whole range.
namespace ColorAccuracy {

inline constexpr double largestError = 3.0 / 255.0;
inline constexpr double usualError = 1.0 / 255.0;
inline constexpr double unusualShare = 0.001; ///< of the colours may be further from exact than usual
inline constexpr double meanError = 0.1 / 255.0;

} // namespace ColorAccuracy

/// Turns pixels into those of another colour space, much faster than an exact conversion.
///
/// Gray and all samples of 8 bits become exactly what the exact conversion makes of them: each colour is computed once,
/// when it is first met. Three samples of 16 bits are interpolated between exact colours near them, which are also
/// computed when they are first needed, and keep to `ColorAccuracy`. So what a pixel becomes depends on that pixel
/// alone. Takes up to 160 MB for a picture that holds every colour, if all are kept. Any thread, and several at once:
/// what one has computed serves the others.
class ColorConverter {
public:
    ColorConverter() = default;
    ColorConverter(const ColorConverter&) = delete;
    ColorConverter& operator=(const ColorConverter&) = delete;
    virtual ~ColorConverter() = default;

    [[nodiscard]] static std::unique_ptr<ColorConverter> make(const ConversionFormat& format, ExactConversion exact);

    /// Converts all pixels of `source` to as many of `destination`, which must not overlap.
    virtual void convert(std::span<const std::byte> source, std::span<std::byte> destination) const = 0;
};

/// Leaves every pixel to the exact conversion.
[[nodiscard]] std::unique_ptr<ColorConverter> makeExactConverter(ExactConversion exact);

} // namespace orvex::platform
