#pragma once

#include "Color/ColorConverter.h"
#include "Color/IccProfile.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace orvex::platform {

enum class RenderingIntent { perceptual, relativeColorimetric, saturation, absoluteColorimetric };

/// The way from the colours of one profile to those of another: device to connection space to device, with one intent
/// for both halves, no black point compensation asked for. Every pixel is what the profiles themselves make of it, as
/// ColorConverter says. Copies share what has been computed and is kept. Immutable; any thread, and several at once.
class ColorTransform {
public:
    /// Nothing if the engine cannot convert between the two, if a space is not gray, RGB or CMYK, or if the samples
    /// are to have other than 8 or 16 bits.
    [[nodiscard]] static std::optional<ColorTransform> make(const IccProfile& source, int sourceBits,
                                                            const IccProfile& destination, int destinationBits,
                                                            RenderingIntent intent,
                                                            ColorMemory memory = ColorMemory::all);

    /// The bytes of a pixel on each side; samples are interleaved as in PixelFormat, without alpha.
    [[nodiscard]] std::size_t sourcePixelBytes() const;
    [[nodiscard]] std::size_t destinationPixelBytes() const;

    /// Converts `pixelCount` pixels from the beginning of `source` to the beginning of `destination`, which must not
    /// overlap. False, with nothing done, if either is too short for them.
    [[nodiscard]] bool convert(std::span<const std::byte> source, std::span<std::byte> destination,
                               std::size_t pixelCount) const;

private:
    struct Engine;

    explicit ColorTransform(std::shared_ptr<const Engine> engine) : engine_(std::move(engine)) {}

    std::shared_ptr<const Engine> engine_;
};

} // namespace orvex::platform
