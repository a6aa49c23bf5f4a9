#include "Photograph.h"

#include "Noise.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace orvex::samples {

namespace {

using Row = std::vector<float>;

/// Weights of a cubic through four neighbours (Catmull and Rom) at a share of the way between the middle two.
std::array<float, 4> cubic(float t) {
    return {t * (-0.5F + t * (1 - 0.5F * t)), 1 + t * t * (-2.5F + 1.5F * t), t * (0.5F + t * (2 - 1.5F * t)),
            t * t * (-0.5F + 0.5F * t)};
}

/// Normal noise on a lattice of `cell` pixels, smooth in between.
class SmoothNoise {
public:
    SmoothNoise(std::uint64_t seed, int cell) : seed_(seed), cell_(cell) {
        for (int place = 0; place < cell; ++place) {
            weights_.push_back(cubic(static_cast<float>(place) / static_cast<float>(cell)));
        }
    }

    /// Adds this noise times `amplitude` to a row.
    void addTo(Row& row, int y, float amplitude) const {
        const Row lattice = latticeRow(y, static_cast<int>(row.size()) / cell_ + 5);
        const auto cell = static_cast<std::size_t>(cell_);
        for (std::size_t start = 0, node = 0; start < row.size(); start += cell, ++node) {
            const std::size_t count = std::min(cell, row.size() - start);
            for (std::size_t place = 0; place < count; ++place) {
                const std::array<float, 4>& w = weights_[place];
                row[start + place] += amplitude * (w[0] * lattice[node] + w[1] * lattice[node + 1] +
                                                   w[2] * lattice[node + 2] + w[3] * lattice[node + 3]);
            }
        }
    }

private:
    /// The lattice's columns, interpolated between its rows at `y`.
    [[nodiscard]] Row latticeRow(int y, int columns) const {
        const std::array<float, 4>& w = weights_[static_cast<std::size_t>(y % cell_)];
        Row lattice(static_cast<std::size_t>(columns));
        for (int line = 0; line < 4; ++line) {
            for (int column = 0; column < columns; ++column) {
                lattice[static_cast<std::size_t>(column)] +=
                    w[static_cast<std::size_t>(line)] * normalAt(seed_, column, y / cell_ + line);
            }
        }
        return lattice;
    }

    std::uint64_t seed_;
    int cell_;
    std::vector<std::array<float, 4>> weights_;
};

/// A disc, a leaning bar or a thin line, all with hard edges, of one tone.
struct Shape {
    float x, y;           ///< centre
    float length, height; ///< half sizes along its own axes
    float cosine, sine;
    float tone;
    bool isRound;

    void paint(Row& row, float atY) const {
        const float reach = length + height;
        if (std::abs(atY - y) > reach) {
            return;
        }
        const int first = std::max(0, static_cast<int>(x - reach));
        const int last = std::min(static_cast<int>(row.size()), static_cast<int>(x + reach) + 1);
        for (int column = first; column < last; ++column) {
            const float dx = static_cast<float>(column) - x;
            const float u = (dx * cosine + (atY - y) * sine) / length;
            const float v = ((atY - y) * cosine - dx * sine) / height;
            if (isRound ? u * u + v * v < 1 : std::abs(u) < 1 && std::abs(v) < 1) {
                row[static_cast<std::size_t>(column)] = tone;
            }
        }
    }
};

std::vector<Shape> scatter(int width, int height, std::uint64_t seed) {
    std::vector<Shape> shapes;
    const int count = std::max(20, static_cast<int>(std::int64_t{width} * height / 400'000));
    for (int index = 0; index < count; ++index) {
        const auto chance = [&](int kind) { return uniformAt(seed, index, kind); };
        const float size = std::pow(10.0F, 0.7F + 1.9F * chance(0));
        const float angle = 6.2831853F * chance(1);
        const bool isLine = chance(2) < 0.33F;
        shapes.push_back({chance(3) * static_cast<float>(width), chance(4) * static_cast<float>(height),
                          isLine ? 3 * size : size, isLine ? 0.5F + 5 * chance(5) : size * (0.3F + chance(5)),
                          std::cos(angle), std::sin(angle), 30 * normalAt(seed, index, 6), chance(7) < 0.5F});
    }
    return shapes;
}

class Scenery {
public:
    Scenery(int width, int height, std::uint64_t seed)
        : seed_(seed),
          width_(static_cast<std::size_t>(width)),
          focus_(seed + 1, 1024),
          shapes_(scatter(width, height, seed + 2)) {
        for (int cell = 2; cell <= 2048; cell *= 2) {
            light_.push_back({SmoothNoise(seed + 10 + static_cast<std::uint64_t>(cell), cell), cell});
        }
        for (const int cell : {96, 384, 1536}) {
            warmth_.push_back({SmoothNoise(seed + 3000 + static_cast<std::uint64_t>(cell), cell), cell});
            green_.push_back({SmoothNoise(seed + 6000 + static_cast<std::uint64_t>(cell), cell), cell});
        }
    }

    void fill(int y, std::span<Pixel> pixels) const {
        const Row light = lightRow(y);
        const Row warmth = colorRow(warmth_, y);
        const Row green = colorRow(green_, y);
        for (std::size_t x = 0; x < width_; ++x) {
            const auto column = static_cast<std::int64_t>(x);
            const auto channel = [&](float warm, float leaf, std::uint64_t kind) {
                const float value =
                    light[x] + warm * warmth[x] + leaf * green[x] + 0.6F * normalAt(seed_ + kind, column, y);
                return toned(value);
            };
            pixels[x] = {channel(1.0F, 0.3F, 7), channel(-0.4F, 0.1F, 8), channel(-0.5F, -0.9F, 9), 1};
        }
    }

private:
    struct Octave {
        SmoothNoise noise;
        int cell;
    };

    /// A soft shoulder and toe on the scale of 0 to 255, so that few pixels clip.
    static float toned(float value) { return 1 / (1 + std::exp((127.5F - value) / 52)); }

    [[nodiscard]] Row lightRow(int y) const {
        Row fine(width_);
        Row coarse(width_, 118.0F);
        for (const Octave& octave : light_) {
            const float amplitude = 2.5F * std::pow(static_cast<float>(octave.cell), 0.4F);
            octave.noise.addTo(octave.cell <= 32 ? fine : coarse, y, amplitude);
        }
        Row focus(width_, 0.45F);
        focus_.addTo(focus, y, 0.45F);
        const Row shapes = shapesRow(y);
        for (std::size_t x = 0; x < width_; ++x) {
            const float scene = coarse[x] + 2.7F * std::clamp(focus[x], 0.05F, 1.3F) * fine[x] + shapes[x];
            const float grain = 2.3F + 2.7F * std::sqrt(std::clamp(scene, 0.0F, 255.0F) / 255);
            coarse[x] = scene + grain * normalAt(seed_ + 6, static_cast<std::int64_t>(x), y);
        }
        return coarse;
    }

    [[nodiscard]] Row colorRow(const std::vector<Octave>& octaves, int y) const {
        Row row(width_);
        for (const Octave& octave : octaves) {
            octave.noise.addTo(row, y, 1.2F * std::pow(static_cast<float>(octave.cell), 0.33F));
        }
        return row;
    }

    /// The shapes as a lens shows them: the edges go over about two pixels.
    [[nodiscard]] Row shapesRow(int y) const {
        Row sum(width_);
        for (int step = -1; step <= 1; ++step) {
            Row sharp(width_);
            for (const Shape& shape : shapes_) {
                shape.paint(sharp, static_cast<float>(y + step));
            }
            const float share = step == 0 ? 0.5F : 0.25F;
            for (std::size_t x = 1; x + 1 < width_; ++x) {
                sum[x] += share * (0.25F * sharp[x - 1] + 0.5F * sharp[x] + 0.25F * sharp[x + 1]);
            }
        }
        return sum;
    }

    std::uint64_t seed_;
    std::size_t width_;
    SmoothNoise focus_;
    std::vector<Shape> shapes_;
    std::vector<Octave> light_;
    std::vector<Octave> warmth_;
    std::vector<Octave> green_;
};

} // namespace

Picture photograph(int width, int height, std::uint64_t seed) {
    return {width, height,
            [scenery = std::make_shared<const Scenery>(width, height, seed * 100'000)](
                int row, std::span<Pixel> pixels) { scenery->fill(row, pixels); }};
}

} // namespace orvex::samples
