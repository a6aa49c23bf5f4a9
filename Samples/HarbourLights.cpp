#include "Color.h"
#include "Scenes.h"

#include <array>
#include <cmath>

namespace orvex::samples {

namespace {

constexpr float quay = 0.64F;
constexpr Pixel night{0.02F, 0.03F, 0.09F};
constexpr Pixel dusk{0.36F, 0.20F, 0.36F};
constexpr std::array<Pixel, 4> lamps{
    {{1.0F, 0.80F, 0.42F}, {1.0F, 0.90F, 0.70F}, {0.65F, 0.80F, 1.0F}, {1.0F, 0.58F, 0.30F}}};

// Places are in heights of the picture.

Pixel sky(float x, float y) {
    Pixel air = mix(night, dusk, std::pow(smoothStep(0, quay, y), 2.2F));
    const float moon = std::hypot(x - 1.42F, y - 0.17F);
    air = lit(air, {0.75F, 0.78F, 0.9F}, 0.28F * std::exp(-moon * 7));
    const float disc = 1 - smoothStep(0.046F, 0.049F, moon);
    air = mix(air, scaled({0.98F, 0.96F, 0.88F}, 0.86F + 0.25F * octaves(501, x * 40, y * 40, 4)), disc);
    const float cloud = smoothStep(0.05F, 0.5F, octaves(503, x * 2.4F, y * 12, 6));
    return mix(air, Pixel{0.22F, 0.17F, 0.27F}, 0.55F * cloud * smoothStep(0.1F, 0.5F, y));
}

/// The light of the windows of a wall, in cells of the house's own grid.
Pixel windows(const Pixel& wall, std::uint64_t seed, float x, float y) {
    const float column = std::floor(x);
    const float row = std::floor(y);
    const auto cellX = static_cast<std::int64_t>(column);
    const auto cellY = static_cast<std::int64_t>(row);
    const float inX = std::abs(x - column - 0.5F);
    const float inY = std::abs(y - row - 0.5F);
    const bool isPane = inX < 0.30F && inY < 0.33F;
    if (!isPane || uniformAt(seed, cellX, cellY) > 0.42F) {
        return isPane ? scaled(wall, 0.7F) : wall;
    }
    const Pixel lamp = lamps[hashOf(seed + 1, cellX, cellY) % lamps.size()];
    return scaled(lamp, 0.45F + 0.6F * uniformAt(seed + 2, cellX, cellY) - 0.5F * inY);
}

Pixel city(float x, float y) {
    for (int row = 2; row >= 0; --row) {
        const auto seed = static_cast<std::uint64_t>(510 + 10 * row);
        const float lotWidth = 0.060F + 0.018F * static_cast<float>(row);
        const float lot = std::floor(x / lotWidth + 0.37F * static_cast<float>(row));
        const auto number = static_cast<std::int64_t>(lot);
        const float skyline = std::exp(-std::abs(x - 0.75F) * 1.6F);
        const float tall = mix(0.07F, 0.30F, uniformAt(seed, number, 0)) * (0.45F + 0.9F * skyline);
        const float top = quay - tall * (1 - 0.24F * static_cast<float>(row));
        if (y < top) {
            continue;
        }
        const float tint = uniformAt(seed, number, 1);
        const Pixel wall = mix(Pixel{0.05F, 0.05F, 0.10F}, Pixel{0.13F, 0.10F, 0.13F}, tint);
        const float windowsPerUnit = 110 - 18 * static_cast<float>(row);
        return windows(wall, seed + 3 + static_cast<std::uint64_t>(number + 64) * 16, x * windowsPerUnit,
                       (y - top) * windowsPerUnit * 0.8F);
    }
    return sky(x, y);
}

Pixel water(float x, float y) {
    const float depth = y - quay;
    const float ripple = octaves(541, x * 22, depth * 130 / (0.3F + depth * 3), 5);
    Pixel sum = scaled(city(x, quay), 0);
    constexpr int taps = 6;
    for (int tap = 0; tap < taps; ++tap) {
        const float spread = (static_cast<float>(tap) / taps - 0.3F) * (0.05F + depth * 0.5F);
        const float mirrored = quay - 0.004F - std::abs(depth * 0.95F + spread * 0.4F + ripple * 0.035F);
        sum = lit(sum, city(x + ripple * 0.010F + spread * 0.03F, mirrored), 1.0F / taps);
    }
    return lit(scaled(sum, 0.80F - depth * 0.7F), {0.05F, 0.07F, 0.12F}, 0.6F + 0.5F * ripple);
}

} // namespace

Scene harbourLights(int, int height) {
    return [scale = 1.0F / static_cast<float>(height)](int column, int row) {
        const float x = static_cast<float>(column) * scale;
        const float y = static_cast<float>(row) * scale;
        const Pixel seen = y < quay ? city(x, y) : water(x, y);
        return clamped(lit(seen, {1, 1, 1}, 0.010F * normalAt(551, column, row)));
    };
}

} // namespace orvex::samples
