#include "Color.h"
#include "Scenes.h"

#include <cmath>

namespace orvex::samples {

namespace {

constexpr Pixel outerPetal{0.80F, 0.12F, 0.30F};
constexpr Pixel innerPetal{0.99F, 0.70F, 0.42F};
constexpr Pixel heart{0.42F, 0.13F, 0.08F};
constexpr int rings = 9;
constexpr float pi = 3.14159265F;

struct Petal {
    float cover = 0; ///< 0 outside, 1 inside, soft at the edge
    Pixel color;
};

/// The petal of one ring at a place given by its radius (1 is the edge of the flower) and angle.
Petal petalAt(int ring, float radius, float angle) {
    const float share = static_cast<float>(ring) / (rings - 1);
    const int count = 21 - ring * 6 / 5;
    const float length = mix(0.96F, 0.24F, share);
    const float turn = angle / (2 * pi) * static_cast<float>(count) + 0.5F * static_cast<float>(ring) + 30;
    const float across = 2 * (turn - std::floor(turn)) - 1;
    const auto number = static_cast<std::int64_t>(std::floor(turn));
    const float tip = length * (1 - 0.06F * uniformAt(91, number % count, ring));
    const float along = radius / tip;
    if (along >= 1) {
        return {};
    }
    const float halfWidth = std::sqrt(std::max(0.0F, 1 - along * along * along)) * 0.96F;
    const float edge = smoothStep(0, 0.07F, halfWidth - std::abs(across)) * (1 - smoothStep(0.985F, 1.0F, along));
    const float crease = 1 - 0.35F * std::exp(-std::abs(across) * 7);
    const float vein = 1 + 0.10F * noise(95 + static_cast<std::uint64_t>(ring), across * 9, along * 2.5F);
    const float bowl = mix(0.45F, 1.12F, smoothStep(0.35F, 1.0F, along)) * (1 - 0.25F * across * across);
    const Pixel tint =
        mix(mix(outerPetal, innerPetal, share * 0.75F), innerPetal, 0.5F * smoothStep(0.75F, 1.0F, along));
    return {edge, scaled(tint, crease * vein * bowl)};
}

} // namespace

Scene dahlia(int width, int height) {
    const float scale = 2.0F / static_cast<float>(std::min(width, height));
    return [=](int column, int row) {
        const float x = (static_cast<float>(column) - static_cast<float>(width) / 2) * scale;
        const float y = (static_cast<float>(row) - static_cast<float>(height) / 2) * scale;
        const float waver = 1 + 0.02F * octaves(97, x * 3, y * 3, 3);
        const float radius = std::hypot(x, y) * waver;
        const float angle = std::atan2(y, x);
        const float shadow = 0.45F * (1 - smoothStep(0.70F, 0.99F, std::hypot(x - 0.02F, y - 0.035F)));
        const float core = 1 - smoothStep(0.07F, 0.13F, radius);
        Layers layers;
        if (core > 0) {
            layers.putBehind(scaled(heart, 0.8F + 0.9F * std::max(0.0F, noise(99, x * 120, y * 120))), core);
        }
        for (int ring = rings - 1; ring >= 0 && !layers.isOpaque(); --ring) {
            const Petal petal = petalAt(ring, radius, angle);
            layers.putBehind(petal.color, petal.cover);
        }
        layers.putBehind({0.16F, 0.05F, 0.10F}, shadow);
        return clamped(layers.pixel());
    };
}

} // namespace orvex::samples
