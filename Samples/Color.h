#pragma once

#include "Noise.h"
#include "Picture.h"

#include <algorithm>

namespace orvex::samples {

[[nodiscard]] inline Pixel mix(const Pixel& a, const Pixel& b, float share) {
    return {mix(a.red, b.red, share), mix(a.green, b.green, share), mix(a.blue, b.blue, share),
            mix(a.alpha, b.alpha, share)};
}

/// The colour times a factor; alpha stays.
[[nodiscard]] inline Pixel scaled(const Pixel& color, float factor) {
    return {color.red * factor, color.green * factor, color.blue * factor, color.alpha};
}

/// Light of a colour on top of a pixel.
[[nodiscard]] inline Pixel lit(const Pixel& pixel, const Pixel& light, float strength) {
    return {pixel.red + light.red * strength, pixel.green + light.green * strength, pixel.blue + light.blue * strength,
            pixel.alpha};
}

/// The pixel with its values brought into 0 to 1.
[[nodiscard]] inline Pixel clamped(const Pixel& pixel) {
    const auto limit = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
    return {limit(pixel.red), limit(pixel.green), limit(pixel.blue), limit(pixel.alpha)};
}

/// What is seen through layers that are added from the front to the back.
class Layers {
public:
    void putBehind(const Pixel& color, float cover) {
        const float share = (1 - alpha_) * cover;
        sum_ = lit(sum_, color, share);
        alpha_ += share;
    }

    [[nodiscard]] bool isOpaque() const { return alpha_ > 0.999F; }

    [[nodiscard]] Pixel pixel() const {
        Pixel pixel = alpha_ > 0 ? scaled(sum_, 1 / alpha_) : sum_;
        pixel.alpha = alpha_;
        return pixel;
    }

private:
    Pixel sum_;
    float alpha_ = 0;
};

} // namespace orvex::samples
