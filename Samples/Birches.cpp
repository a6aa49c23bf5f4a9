#include "Color.h"
#include "Scenes.h"

#include <cmath>
#include <vector>

namespace orvex::samples {

namespace {

constexpr float mist = 0.80F;
constexpr int rows = 5; ///< of trees, from the farthest to the nearest
constexpr float ground = 0.80F;

// Places are in heights of the picture; 1 is its lower edge.

struct Trunk {
    float x;         ///< at the foot
    float lean;      ///< to the right for each unit upward
    float halfWidth; ///< at the foot
    float foot;      ///< how low it stands
    float nearness;  ///< 0 for the far row, 1 for the near one
    std::uint64_t seed;
};

std::vector<Trunk> plant(float pictureWidth) {
    std::vector<Trunk> trunks;
    for (int row = rows - 1; row >= 0; --row) {
        const float nearness = static_cast<float>(row) / (rows - 1);
        const int count = 11 - 2 * row;
        for (int tree = 0; tree < count; ++tree) {
            const auto chance = [&](std::uint64_t kind) { return uniformAt(600 + kind, row, tree); };
            const float place = (static_cast<float>(tree) + 0.15F + 0.7F * chance(1)) / static_cast<float>(count);
            trunks.push_back({place * pictureWidth, 0.05F * (chance(2) - 0.5F),
                              mix(0.004F, 0.024F, nearness) * (0.75F + 0.5F * chance(3)),
                              ground + mix(0.0F, 0.16F, nearness) + 0.02F * chance(4), nearness,
                              hashOf(605, row, tree)});
        }
    }
    return trunks;
}

/// Where a place lies on a trunk: -1 at its left edge, 1 at its right edge; far outside if it is not on it at all.
float acrossAt(const Trunk& trunk, float x, float up) {
    const float fromAxis = x - trunk.x - trunk.lean * up;
    if (up < 0 || std::abs(fromAxis) > 2 * trunk.halfWidth + 0.010F) {
        return 2;
    }
    const float halfWidth = trunk.halfWidth * (1 - 0.30F * up + 0.5F * std::exp(-up * 60));
    return (fromAxis - 0.010F * std::sin(up * 5 + static_cast<float>(trunk.seed % 7))) / halfWidth;
}

/// The bark at a place of a trunk: `across` from -1 to 1, `along` in half widths upward.
float bark(const Trunk& trunk, float across, float along) {
    const float round = std::sqrt(1 - across * across);
    const float light = 0.34F + 0.62F * round - 0.22F * across;
    const float scars = octaves(trunk.seed, across * 0.9F, along * 1.1F, 4);
    const float lenticels = noise(trunk.seed + 7, across * 1.6F, along * 5.5F);
    const float rough = octaves(trunk.seed + 9, across * 5, along * 2.4F, 3);
    const float dark = std::max(smoothStep(0.18F, 0.30F, scars), 0.75F * smoothStep(0.55F, 0.72F, lenticels));
    const float foot = 1 - 0.45F * std::exp(-along * 0.12F) * (0.5F + rough);
    return std::max(0.0F, (light + 0.14F * rough) * (1 - 0.84F * dark) * foot);
}

float undergrowth(float x, float y) {
    const float depth = std::max(0.0F, y - ground) / (1 - ground);
    const float leaves = octaves(621, x * 26 / (0.4F + depth), (y - ground) * 70 / (0.4F + depth), 6);
    const float grass = octaves(631, x * 70, y * 16, 4);
    return std::max(0.02F, 0.24F + 0.30F * leaves + 0.14F * grass);
}

float backdrop(float x, float y) {
    const float glow = std::exp(-std::hypot(x - 0.40F, (y - 0.38F) * 0.8F) * 2.1F);
    const float crowns = octaves(641, x * 9, y * 5, 6) * (1 - smoothStep(0.1F, 0.75F, y));
    const float sky = mix(0.62F, 0.97F, glow) - 0.28F * std::max(0.0F, crowns);
    const float soil = smoothStep(ground - 0.05F, ground + 0.07F, y + 0.02F * octaves(643, x * 6, 0.5F, 4));
    return mix(sky, mix(mist * 0.8F, undergrowth(x, y), smoothStep(ground - 0.02F, 1.0F, y)), soil);
}

/// Twigs and leaves that hang into the picture from above, nearer rows darker.
float foliage(float x, float y, float tone) {
    for (int layer = 0; layer < 2 && y < 0.5F; ++layer) {
        const float size = layer == 0 ? 120.0F : 70.0F;
        const auto seed = static_cast<std::uint64_t>(651 + 10 * layer);
        const float mass = octaves(seed, x * 4, y * 4, 4) + 0.45F - y * (layer == 0 ? 1.6F : 2.4F);
        const float leaf = octaves(seed + 5, x * size, y * size * 0.7F, 3) + 0.35F * mass;
        tone =
            mix(tone, layer == 0 ? 0.46F : 0.20F, 0.8F * smoothStep(0.10F, 0.26F, leaf) * smoothStep(0, 0.35F, mass));
    }
    return tone;
}

} // namespace

Scene birches(int width, int height) {
    const float scale = 1.0F / static_cast<float>(height);
    return [scale, trunks = plant(static_cast<float>(width) * scale)](int column, int row) {
        const float x = static_cast<float>(column) * scale;
        const float y = static_cast<float>(row) * scale;
        Layers layers;
        for (const Trunk& trunk : trunks) {
            const float up = trunk.foot - y;
            const float across = acrossAt(trunk, x, up);
            if (std::abs(across) >= 1 || layers.isOpaque()) {
                continue;
            }
            const float tone = mix(bark(trunk, across, up / trunk.halfWidth), mist, 0.82F * (1 - trunk.nearness));
            layers.putBehind({tone, tone, tone}, 1 - smoothStep(0.90F, 1.0F, std::abs(across)));
        }
        if (!layers.isOpaque()) {
            const float tone = backdrop(x, y);
            layers.putBehind({tone, tone, tone}, 1);
        }
        const float tone = foliage(x, y, layers.pixel().red) + 0.016F * normalAt(671, column, row);
        return clamped({tone, tone, tone});
    };
}

} // namespace orvex::samples
