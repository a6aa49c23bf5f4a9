#pragma once

#include "Picture.h"

#include <algorithm>
#include <cstdint>

namespace orvex::samples {

/// A value of 0 to 1 as an integer of the whole range of `Sample`.
template <typename Sample>
[[nodiscard]] Sample quantized(float value) {
    constexpr auto largest = static_cast<float>(static_cast<Sample>(-1));
    return static_cast<Sample>(std::clamp(value, 0.0F, 1.0F) * largest + 0.5F);
}

/// Red, green, blue and, if asked for, alpha of each pixel, one after the other.
template <typename Sample>
void quantizeRow(std::span<const Pixel> pixels, bool withAlpha, std::vector<Sample>& samples) {
    samples.clear();
    for (const Pixel& pixel : pixels) {
        samples.push_back(quantized<Sample>(pixel.red));
        samples.push_back(quantized<Sample>(pixel.green));
        samples.push_back(quantized<Sample>(pixel.blue));
        if (withAlpha) {
            samples.push_back(quantized<Sample>(pixel.alpha));
        }
    }
}

} // namespace orvex::samples
