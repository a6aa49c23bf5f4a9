#include "Color.h"
#include "Scenes.h"

#include <array>
#include <cmath>

namespace orvex::samples {

namespace {

struct Fruit {
    float x, y, radius; ///< in heights of the picture
    Pixel skin;
    Pixel blush;
    std::uint64_t seed;
};

// From the back to the front.
constexpr std::array<Fruit, 6> fruits{{{0.42F, 0.56F, 0.150F, {0.93F, 0.55F, 0.08F}, {0.97F, 0.70F, 0.16F}, 310},
                                       {0.87F, 0.53F, 0.165F, {0.72F, 0.10F, 0.09F}, {0.90F, 0.55F, 0.12F}, 320},
                                       {0.63F, 0.60F, 0.160F, {0.95F, 0.60F, 0.10F}, {0.98F, 0.74F, 0.20F}, 330},
                                       {0.27F, 0.68F, 0.125F, {0.45F, 0.58F, 0.14F}, {0.78F, 0.72F, 0.22F}, 340},
                                       {0.99F, 0.69F, 0.120F, {0.30F, 0.09F, 0.22F}, {0.45F, 0.16F, 0.30F}, 350},
                                       {0.52F, 0.74F, 0.110F, {0.93F, 0.83F, 0.20F}, {0.97F, 0.90F, 0.45F}, 360}}};
constexpr float tableEdge = 0.62F;
constexpr float lightX = -0.55F;
constexpr float lightY = -0.60F;
constexpr float lightZ = 0.58F;

Pixel wall(float x, float y) {
    const float window = std::exp(-std::hypot(x - 0.15F, y - 0.10F) * 1.7F);
    const float plaster = 1 + 0.10F * octaves(301, x * 7, y * 7, 5);
    return scaled(mix(Pixel{0.16F, 0.15F, 0.17F}, Pixel{0.72F, 0.66F, 0.52F}, window), plaster);
}

Pixel table(float x, float y) {
    const float grain = octaves(303, x * 2.2F, y * 46 + 2 * octaves(305, x * 1.5F, y * 3, 3), 5);
    const float light = 0.55F + 0.6F * std::exp(-std::hypot(x - 0.35F, (y - 0.75F) * 1.6F) * 1.6F);
    return scaled(mix(Pixel{0.36F, 0.20F, 0.11F}, Pixel{0.62F, 0.40F, 0.22F}, 0.5F + 0.8F * grain), light);
}

float shadowAt(float x, float y) {
    float light = 1;
    for (const Fruit& fruit : fruits) {
        const float across = (x - fruit.x - fruit.radius * 0.75F) / (fruit.radius * 1.5F);
        const float along = (y - fruit.y - fruit.radius * 0.92F) / (fruit.radius * 0.42F);
        light *= 1 - 0.5F * (1 - smoothStep(0.35F, 1.1F, std::hypot(across, along)));
    }
    return light;
}

Pixel shade(const Fruit& fruit, float x, float y) {
    const float z = std::sqrt(std::max(0.0F, 1 - x * x - y * y));
    const float pores = 0.06F * octaves(fruit.seed, x * 22 / (0.35F + z), y * 22 / (0.35F + z), 3);
    const float facing = x * lightX + y * lightY + z * lightZ + pores;
    const float diffuse = 0.22F + 0.90F * std::max(0.0F, facing);
    const float rim = 0.18F * std::pow(1 - z, 3.0F) * smoothStep(0, 0.8F, y);
    const float mirror = 2 * (facing - 0.8F * pores) * z - lightZ;
    const float shine = 0.55F * std::pow(std::max(0.0F, mirror), 34.0F);
    const float tint = 0.5F + octaves(fruit.seed + 5, x * 2.1F, y * 2.1F, 4);
    return lit(lit(scaled(mix(fruit.skin, fruit.blush, tint), diffuse), {0.6F, 0.38F, 0.2F}, rim), {1, 0.97F, 0.9F},
               shine);
}

} // namespace

Scene stillLife(int, int height) {
    return [scale = 1.0F / static_cast<float>(height)](int column, int row) {
        const float x = static_cast<float>(column) * scale;
        const float y = static_cast<float>(row) * scale;
        const float back = smoothStep(tableEdge - 0.004F, tableEdge + 0.004F, y);
        Pixel seen = mix(wall(x, y), scaled(table(x, y), shadowAt(x, y)), back);
        for (const Fruit& fruit : fruits) {
            const float dx = (x - fruit.x) / fruit.radius;
            const float dy = (y - fruit.y) / fruit.radius * 1.04F;
            const float cover = 1 - smoothStep(0.988F, 1.0F, std::hypot(dx, dy));
            if (cover > 0) {
                seen = mix(seen, shade(fruit, dx, dy), cover);
            }
        }
        const float canvas = 1 + 0.035F * (noise(307, x * 420, y * 60) + noise(308, x * 60, y * 420));
        return clamped(scaled(seen, canvas));
    };
}

} // namespace orvex::samples
