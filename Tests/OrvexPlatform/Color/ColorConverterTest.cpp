#include "Color/ColorConverter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace orvex::platform {
namespace {

using Bytes = std::vector<std::byte>;

/// A conversion that no interpolation gets right: each sample of the result is a mix of all bytes of the pixel.
void mix(std::span<const std::byte> source, std::span<std::byte> destination, std::size_t sourceBytes,
         std::size_t destinationBytes) {
    for (std::size_t pixel = 0; pixel < source.size() / sourceBytes; ++pixel) {
        quint64 value = 17;
        for (std::size_t i = 0; i < sourceBytes; ++i) {
            value = value * 31 + std::to_integer<quint64>(source[pixel * sourceBytes + i]);
        }
        for (std::size_t i = 0; i < destinationBytes; ++i) {
            destination[pixel * destinationBytes + i] = static_cast<std::byte>(value >> (8 * i) & 0xFFU);
        }
    }
}

Bytes randomPixels(std::size_t bytes, unsigned seed, unsigned levels = 256) {
    std::minstd_rand random(seed);
    Bytes result(bytes);
    for (std::byte& each : result) {
        each = static_cast<std::byte>((random() >> 8U) % levels);
    }
    return result;
}

struct Conversion {
    ConversionFormat format;
    std::shared_ptr<std::atomic<std::size_t>> computed = std::make_shared<std::atomic<std::size_t>>(0);
    std::unique_ptr<ColorConverter> converter;

    explicit Conversion(const ConversionFormat& of) : format(of) {
        converter = ColorConverter::make(of, [of, count = computed](const auto& source, const auto& destination) {
            *count += source.size() / of.sourceBytes();
            mix(source, destination, of.sourceBytes(), of.destinationBytes());
        });
    }

    [[nodiscard]] Bytes converted(const Bytes& source) const {
        Bytes result(source.size() / format.sourceBytes() * format.destinationBytes());
        converter->convert(source, result);
        return result;
    }

    [[nodiscard]] Bytes exact(const Bytes& source) const {
        Bytes result(source.size() / format.sourceBytes() * format.destinationBytes());
        mix(source, result, format.sourceBytes(), format.destinationBytes());
        return result;
    }
};

const std::vector<ConversionFormat> exactFormats{{ColorModel::gray, ColorModel::rgb, 8},
                                                 {ColorModel::gray, ColorModel::cmyk, 16},
                                                 {ColorModel::rgb, ColorModel::rgb, 8},
                                                 {ColorModel::rgb, ColorModel::cmyk, 8},
                                                 {ColorModel::cmyk, ColorModel::rgb, 8},
                                                 {ColorModel::cmyk, ColorModel::cmyk, 8},
                                                 {ColorModel::rgb, ColorModel::gray, 8},
                                                 {ColorModel::rgb, ColorModel::gray, 16},
                                                 {ColorModel::rgb, ColorModel::rgb, 8, ColorMemory::recent},
                                                 {ColorModel::rgb, ColorModel::cmyk, 8, ColorMemory::recent}};

TEST(ColorConverter, GivesExactColoursWhereverItDoesNotInterpolate) {
    for (const ConversionFormat& format : exactFormats) {
        const Conversion conversion(format);
        const std::size_t pixels = 5000;
        for (const unsigned levels : {2U, 16U, 256U}) {
            const Bytes source = randomPixels(pixels * format.sourceBytes(), levels, levels);
            EXPECT_EQ(conversion.converted(source), conversion.exact(source));
            EXPECT_EQ(conversion.converted(source), conversion.exact(source)) << "what is known already";
        }
    }
}

TEST(ColorConverter, ConvertsAnyCountOfPixelsAlike) {
    for (const ConversionFormat& format : exactFormats) {
        const Conversion conversion(format);
        for (const std::size_t pixels : {0U, 1U, 255U, 256U, 257U, 1000U}) {
            const Bytes source = randomPixels(pixels * format.sourceBytes(), 5, 4);
            EXPECT_EQ(conversion.converted(source), conversion.exact(source));
        }
    }
}

TEST(ColorConverter, ComputesAColourOnceHoweverOftenItStandsInAPicture) {
    const Conversion conversion({ColorModel::rgb, ColorModel::cmyk, 8});
    const Bytes white(3 * 10'000, std::byte{0xFF});
    (void)conversion.converted(white);
    (void)conversion.converted(white);
    EXPECT_EQ(*conversion.computed, 1U);
}

TEST(ColorConverter, ForgetsTheColoursOfASmallPictureAfterIt) {
    const Conversion conversion({ColorModel::rgb, ColorModel::rgb, 8, ColorMemory::recent});
    const Bytes white(3 * 10'000, std::byte{0xFF});
    (void)conversion.converted(white);
    EXPECT_EQ(*conversion.computed, 1U);
    (void)conversion.converted(white);
    EXPECT_EQ(*conversion.computed, 2U);
}

TEST(ColorConverter, KnowsEveryGrayFromTheBeginning) {
    const Conversion conversion({ColorModel::gray, ColorModel::rgb, 16});
    EXPECT_EQ(*conversion.computed, 65536U);
    (void)conversion.converted(randomPixels(2000, 1));
    EXPECT_EQ(*conversion.computed, 65536U);
}

TEST(ColorConverter, ServesSeveralThreadsAtOnce) {
    const Conversion conversion({ColorModel::rgb, ColorModel::cmyk, 8});
    const Bytes source = randomPixels(std::size_t{3} * 200'000, 9, 40);
    const Bytes expected = conversion.exact(source);
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> threads;
        for (int number = 0; number < 4; ++number) {
            threads.emplace_back([&] { wrong += conversion.converted(source) == expected ? 0 : 1; });
        }
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace orvex::platform
