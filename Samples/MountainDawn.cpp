#include "Color.h"
#include "Scenes.h"

#include <array>
#include <cmath>

namespace orvex::samples {

namespace {

constexpr Pixel zenith{0.13F, 0.22F, 0.45F};
constexpr Pixel horizonGlow{0.99F, 0.72F, 0.45F};
constexpr Pixel sunlight{1.0F, 0.86F, 0.58F};
constexpr Pixel haze{0.80F, 0.62F, 0.60F};
constexpr Pixel rock{0.10F, 0.12F, 0.18F};
constexpr float shoreline = 0.74F;
constexpr float sunX = 0.97F;
constexpr float sunY = 0.40F;
constexpr int ridges = 6;

// Places are in heights of the picture: x grows to the right from 0, y downward from 0 to 1.

Pixel sky(float x, float y) {
    const float height = smoothStep(0, 0.62F, y);
    const float distance = std::hypot(x - sunX, (y - sunY) * 1.2F);
    const Pixel air = lit(mix(zenith, horizonGlow, height), sunlight, 0.55F * std::exp(-distance * 5.5F));
    const float cloud = octaves(11, x * 3.1F + 0.8F * octaves(19, x * 2, y * 6, 3), y * 11.0F, 6);
    const float cover = smoothStep(0.02F, 0.45F, cloud) * (1 - smoothStep(0.35F, 0.6F, y)) * 0.75F;
    const Pixel cloudColor = mix(Pixel{0.55F, 0.45F, 0.55F}, Pixel{1.0F, 0.80F, 0.66F}, smoothStep(0, 0.5F, y));
    const Pixel clouded = mix(air, lit(cloudColor, sunlight, 0.3F * std::exp(-distance * 3)), cover);
    return mix(clouded, Pixel{1.0F, 0.95F, 0.80F}, 1 - smoothStep(0.042F, 0.052F, distance));
}

float ridgeLine(int ridge, float x) {
    const auto seed = static_cast<std::uint64_t>(100 + ridge * 10);
    const float nearness = static_cast<float>(ridge) / (ridges - 1);
    const float sharp = 1 - 2 * std::abs(octaves(seed, x * 2.2F + 3.7F * static_cast<float>(ridge), 0.5F, 7));
    return mix(0.46F, 0.71F, nearness) - (0.10F - 0.05F * nearness) * sharp + 0.03F;
}

/// The upper edges of all ridges, read off for every column and a little beyond both sides.
class RidgeLines {
public:
    RidgeLines(int width, int height) : columnsPerUnit_(static_cast<float>(height)) {
        const int columns = width + 2 * margin;
        for (int ridge = 0; ridge < ridges; ++ridge) {
            for (int column = -margin; column < columns - margin; ++column) {
                lines_[static_cast<std::size_t>(ridge)].push_back(
                    ridgeLine(ridge, static_cast<float>(column) / columnsPerUnit_));
            }
        }
    }

    [[nodiscard]] float at(int ridge, float x) const {
        const std::vector<float>& line = lines_[static_cast<std::size_t>(ridge)];
        const int column = static_cast<int>(x * columnsPerUnit_ + margin);
        return line[static_cast<std::size_t>(std::clamp(column, 0, static_cast<int>(line.size()) - 1))];
    }

private:
    static constexpr int margin = 64;

    float columnsPerUnit_;
    std::array<std::vector<float>, ridges> lines_;
};

Pixel land(const RidgeLines& lines, float x, float y) {
    for (int ridge = ridges - 1; ridge >= 0; --ridge) {
        const float depth = y - lines.at(ridge, x);
        if (depth < 0) {
            continue;
        }
        const float nearness = static_cast<float>(ridge) / (ridges - 1);
        const float slope = octaves(static_cast<std::uint64_t>(200 + ridge), x * 26 + depth * 35, y * 26 - x * 18, 6);
        const float snow = smoothStep(-0.02F, 0.32F, slope + 0.25F - depth * 7) * (1 - nearness) * (1 - nearness);
        const Pixel stone = lit(rock, sunlight, 0.14F * std::max(0.0F, slope));
        const Pixel lightened = mix(stone, Pixel{0.93F, 0.85F, 0.86F}, snow * 0.55F);
        return mix(lightened, haze, (1 - nearness) * 0.72F + 0.10F * smoothStep(0, 0.12F, depth));
    }
    return sky(x, y);
}

Pixel lake(const RidgeLines& lines, float x, float y) {
    const float depth = y - shoreline;
    const float ripple = octaves(31, x * 30 / (0.25F + depth * 3), depth * 170 / (0.2F + depth * 2), 4);
    const Pixel mirrored = land(lines, x + ripple * 0.012F, shoreline - depth * 1.15F - 0.01F * ripple);
    const Pixel water =
        mix(scaled(mirrored, 0.86F), Pixel{0.08F, 0.13F, 0.22F}, 0.18F + 0.5F * smoothStep(0, 0.3F, depth));
    return lit(water, sunlight, 0.12F * smoothStep(0.25F, 0.5F, ripple) * std::exp(-std::abs(x - sunX) * 4));
}

} // namespace

Scene mountainDawn(int width, int height) {
    return [lines = RidgeLines(width, height), scale = 1.0F / static_cast<float>(height)](int column, int row) {
        const float x = static_cast<float>(column) * scale;
        const float y = static_cast<float>(row) * scale;
        const Pixel seen = y < shoreline ? land(lines, x, y) : lake(lines, x, y);
        return clamped(lit(seen, {1, 1, 1}, 0.008F * normalAt(7, column, row)));
    };
}

} // namespace orvex::samples
