#include "Color.h"
#include "Scenes.h"

#include <array>
#include <cmath>

namespace orvex::samples {

namespace {

constexpr std::array<Pixel, 6> ramp{{{0.02F, 0.07F, 0.20F},
                                     {0.03F, 0.26F, 0.48F},
                                     {0.05F, 0.55F, 0.62F},
                                     {0.72F, 0.88F, 0.84F},
                                     {0.97F, 0.95F, 0.88F},
                                     {0.12F, 0.33F, 0.42F}}};
constexpr Pixel gold{0.86F, 0.66F, 0.27F};

Pixel rampAt(float share) {
    const float place = std::clamp(share, 0.0F, 0.999F) * static_cast<float>(ramp.size() - 1);
    const auto index = static_cast<std::size_t>(place);
    return mix(ramp[index], ramp[index + 1], smoothStep(0, 1, place - static_cast<float>(index)));
}

} // namespace

Scene marbledTide(int, int height) {
    return [scale = 2.2F / static_cast<float>(height)](int column, int row) {
        const float x = static_cast<float>(column) * scale;
        const float y = static_cast<float>(row) * scale;
        const float foldX = octaves(41, x, y, 4);
        const float foldY = octaves(51, x + 5.2F, y + 1.3F, 4);
        const float flow = octaves(61, x + 3.4F * foldX, y + 3.4F * foldY, 6);
        const float bands = 0.5F + 0.5F * std::sin(9 * flow + 2.5F * foldX + 1.4F * y);
        const float vein = std::exp(-std::abs(flow - 0.35F * foldY) * 55) * smoothStep(-0.15F, 0.25F, foldX);
        const float paper = 1 + 0.05F * octaves(71, x * 90, y * 90, 2);
        const Pixel wave = scaled(rampAt(0.85F * bands + 0.3F * flow + 0.05F), paper);
        const Pixel sparkle = scaled(gold, 0.75F + 0.45F * uniformAt(81, column, row));
        return clamped(mix(wave, sparkle, 0.9F * vein));
    };
}

} // namespace orvex::samples
