#include "Color/LatticeConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace orvex::platform {
namespace {

using Pixel = std::array<quint16, 3>;
using Color = std::array<double, 3>; ///< samples of 0 to 1
using ColorFunction = Color (*)(const Color&);

constexpr double range = 65535.0;

Pixel computed(const Pixel& pixel, ColorFunction function) {
    const Color color = function({pixel[0] / range, pixel[1] / range, pixel[2] / range});
    Pixel result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i] = static_cast<quint16>(std::lround(std::clamp(color[i], 0.0, 1.0) * range));
    }
    return result;
}

std::unique_ptr<ColorConverter> converterOf(ColorFunction function) {
    return makeLatticeConverter(ColorModel::rgb, [function](const auto& source, const auto& destination) {
        for (std::size_t at = 0; at < source.size(); at += sizeof(Pixel)) {
            Pixel pixel{};
            std::memcpy(pixel.data(), &source[at], sizeof(Pixel));
            const Pixel converted = computed(pixel, function);
            std::memcpy(&destination[at], converted.data(), sizeof(Pixel));
        }
    });
}

std::vector<Pixel> converted(const ColorConverter& converter, const std::vector<Pixel>& pixels) {
    std::vector<Pixel> result(pixels.size());
    converter.convert(std::as_bytes(std::span(pixels)), std::as_writable_bytes(std::span(result)));
    return result;
}

std::vector<Pixel> randomPixels(std::size_t count) {
    std::minstd_rand random(3);
    std::vector<Pixel> pixels(count);
    for (Pixel& pixel : pixels) {
        for (quint16& sample : pixel) {
            sample = static_cast<quint16>(random() >> 8U);
        }
    }
    return pixels;
}

struct Errors {
    int largest = 0;
    double mean = 0.0;
    double unusualShare = 0.0;
};

Errors errorsOf(ColorFunction function) {
    const std::vector<Pixel> pixels = randomPixels(60'000);
    const std::vector<Pixel> found = converted(*converterOf(function), pixels);
    Errors errors;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const Pixel expected = computed(pixels[i], function);
        for (std::size_t sample = 0; sample < expected.size(); ++sample) {
            const int error = std::abs(found[i][sample] - expected[sample]);
            errors.largest = std::max(errors.largest, error);
            errors.mean += error / (3.0 * 60'000);
            errors.unusualShare += error > ColorAccuracy::usualError * range ? 1 / (3.0 * 60'000) : 0.0;
        }
    }
    return errors;
}

void expectAccurate(ColorFunction function) {
    const Errors errors = errorsOf(function);
    EXPECT_LE(errors.largest, ColorAccuracy::largestError * range);
    EXPECT_LE(errors.mean, ColorAccuracy::meanError * range);
    EXPECT_LE(errors.unusualShare, ColorAccuracy::unusualShare);
}

TEST(LatticeConverter, KeepsColoursThatDoNotChange) {
    const auto same = [](const Color& color) { return color; };
    const std::vector<Pixel> pixels = randomPixels(5000);
    EXPECT_EQ(converted(*converterOf(same), pixels), pixels);
    const std::vector<Pixel> ends{
        {0, 0, 0}, {65535, 65535, 65535}, {65535, 0, 1}, {65534, 65535, 256}, {257, 258, 512}};
    EXPECT_EQ(converted(*converterOf(same), ends), ends);
}

TEST(LatticeConverter, FollowsSmoothColours) {
    expectAccurate([](const Color& c) {
        return Color{std::pow(c[0], 2.2), c[0] * c[1], std::sqrt(c[2] * c[2] + 0.1)};
    });
}

TEST(LatticeConverter, FollowsColoursThatBendSharply) {
    expectAccurate([](const Color& c) {
        const double bent = c[0] < 0.4321 ? 0.1 * c[0] : 0.04321 + 1.5 * (c[0] - 0.4321);
        return Color{bent, c[1] < c[2] ? 3 * (c[2] - c[1]) : 0.0, 1 - c[2]};
    });
}

TEST(LatticeConverter, FollowsColoursThatAreCutOffAtTheEndsOfTheirRange) {
    // The steepness of sRGB near black, behind a matrix of a wide gamut.
    expectAccurate([](const Color& c) {
        const auto encoded = [](double linear) {
            return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
        };
        return Color{encoded(2.0 * c[0] - 0.7 * c[1] - 0.3 * c[2]), encoded(-0.2 * c[0] + 1.2 * c[1]), encoded(c[2])};
    });
}

TEST(LatticeConverter, GivesAColourTheSameResultAmongAnyOthers) {
    const ColorFunction function = [](const Color& c) { return Color{c[0] * c[1], c[1] * c[2], std::sqrt(c[2])}; };
    const std::vector<Pixel> pixels = randomPixels(3000);
    const std::vector<Pixel> together = converted(*converterOf(function), pixels);
    const auto alone = converterOf(function);
    for (std::size_t i = pixels.size(); i-- > 0;) {
        ASSERT_EQ(converted(*alone, {pixels[i]}).front(), together[i]) << i;
    }
}

} // namespace
} // namespace orvex::platform
