#include "Color/ColorTransform.h"

#include "Color/ColorConverter.h"
#include "IccFixtures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

constexpr std::array allIntents{RenderingIntent::perceptual, RenderingIntent::relativeColorimetric,
                                RenderingIntent::saturation, RenderingIntent::absoluteColorimetric};

IccProfile profile(const icc::Profile& made) {
    return IccProfile::fromData(icc::saved(made)).value();
}

std::size_t channels(const IccProfile& of) {
    return static_cast<std::size_t>(of.componentCount());
}

/// Sample values that walk through the whole space, ends included; each is 0 to 1.
std::vector<double> samples(std::size_t pixels, std::size_t channelCount) {
    std::vector<double> values;
    for (std::size_t i = 0; i < pixels * channelCount; ++i) {
        values.push_back(static_cast<double>(i * i * 7 % 256) / 255.0);
    }
    std::fill_n(values.begin(), channelCount, 0.0);
    std::fill_n(values.begin() + static_cast<std::ptrdiff_t>(channelCount), channelCount, 1.0);
    return values;
}

template <typename Sample>
std::vector<std::byte> encoded(const std::vector<double>& values) {
    std::vector<std::byte> bytes(values.size() * sizeof(Sample));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto sample = static_cast<Sample>(values[i] * std::numeric_limits<Sample>::max() + 0.5);
        std::memcpy(bytes.data() + i * sizeof(Sample), &sample, sizeof(Sample));
    }
    return bytes;
}

template <typename Sample>
std::vector<double> decoded(const std::vector<std::byte>& bytes) {
    std::vector<double> values;
    for (std::size_t at = 0; at < bytes.size(); at += sizeof(Sample)) {
        Sample sample;
        std::memcpy(&sample, bytes.data() + at, sizeof(Sample));
        values.push_back(sample);
    }
    return values;
}

cmsUInt32Number floatFormat(const IccProfile& of) {
    const cmsUInt32Number space = of.space() == IccProfile::Space::gray ? PT_GRAY : PT_RGB;
    return of.space() == IccProfile::Space::cmyk ? TYPE_CMYK_DBL
                                                 : (FLOAT_SH(1) | COLORSPACE_SH(space) | BYTES_SH(0) |
                                                    CHANNELS_SH(static_cast<cmsUInt32Number>(of.componentCount())));
}

/// What the engine computes in floating point, 0 to 1; its inks are per cent.
std::vector<double> reference(const IccProfile& from, const IccProfile& to, cmsUInt32Number intent,
                              std::vector<double> values) {
    const double inputScale = from.space() == IccProfile::Space::cmyk ? 100.0 : 1.0;
    const double outputScale = to.space() == IccProfile::Space::cmyk ? 100.0 : 1.0;
    for (double& each : values) {
        each *= inputScale;
    }
    const icc::Profile input = icc::opened(from.data());
    const icc::Profile output = icc::opened(to.data());
    cmsHTRANSFORM transform = cmsCreateTransform(input.get(), floatFormat(from), output.get(), floatFormat(to), intent,
                                                 cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE);
    const std::size_t pixels = values.size() / channels(from);
    std::vector<double> result(pixels * channels(to));
    cmsDoTransform(transform, values.data(), result.data(), static_cast<cmsUInt32Number>(pixels));
    cmsDeleteTransform(transform);
    for (double& each : result) {
        each = std::clamp(each / outputScale, 0.0, 1.0);
    }
    return result;
}

template <typename Sample>
void expectTheReference(const IccProfile& from, const IccProfile& to, RenderingIntent intent) {
    constexpr std::size_t pixels = 200;
    constexpr int bits = sizeof(Sample) * 8;
    constexpr double full = std::numeric_limits<Sample>::max();
    const auto values = samples(pixels, channels(from));
    const auto transform = ColorTransform::make(from, bits, to, bits, intent);
    ASSERT_TRUE(transform);
    ASSERT_EQ(transform->sourcePixelBytes(), channels(from) * sizeof(Sample));
    ASSERT_EQ(transform->destinationPixelBytes(), channels(to) * sizeof(Sample));
    std::vector<std::byte> output(pixels * transform->destinationPixelBytes());
    ASSERT_TRUE(transform->convert(encoded<Sample>(values), output, pixels));
    const auto converted = decoded<Sample>(output);
    const auto expected = reference(from, to, static_cast<cmsUInt32Number>(intent), values);
    ASSERT_EQ(converted.size(), expected.size());
    // Half a step of the samples, and one of the 16 bits between which and 8 the engine rounds a second time. Colours
    // of three 16-bit samples are interpolated.
    const bool isInterpolated = bits == 16 && from.space() == IccProfile::Space::rgb;
    const double tolerance = isInterpolated ? ColorAccuracy::usualError * full : 0.5 + full / 65535.0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(converted[i], expected[i] * full, tolerance) << "sample " << i;
    }
}

std::vector<int> converted(const ColorTransform& transform, const std::vector<quint8>& pixel) {
    std::vector<std::byte> output(transform.destinationPixelBytes());
    EXPECT_TRUE(transform.convert(std::as_bytes(std::span(pixel)), output, 1));
    std::vector<int> values;
    for (const std::byte each : output) {
        values.push_back(std::to_integer<int>(each));
    }
    return values;
}

} // namespace

TEST(ColorTransform, ComputesWhatTheEngineDoesInFloatingPoint) {
    const std::vector sources{profile(icc::gray(2.2)), profile(icc::rgb(1.8)), profile(icc::cmyk()),
                              IccProfile::fromData(sRgbProfileData()).value()};
    const std::vector destinations{profile(icc::rgb(2.4)), profile(icc::cmyk()),
                                   IccProfile::fromData(sRgbProfileData()).value()};
    for (const IccProfile& from : sources) {
        for (const IccProfile& to : destinations) {
            for (const RenderingIntent intent : allIntents) {
                SCOPED_TRACE(testing::Message() << channels(from) << " to " << channels(to) << " channels, intent "
                                                << static_cast<int>(intent));
                expectTheReference<quint8>(from, to, intent);
                expectTheReference<quint16>(from, to, intent);
            }
        }
    }
}

TEST(ColorTransform, TakesEveryIntentFromItsOwnTables) {
    const IccProfile from = profile(icc::rgb(1.8));
    const IccProfile to = profile(icc::cmyk());
    std::vector<std::vector<int>> results;
    for (const RenderingIntent intent : allIntents) {
        results.push_back(converted(ColorTransform::make(from, 8, to, 8, intent).value(), {60, 120, 90}));
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(results[i], results[j]) << i << " and " << j;
        }
    }
}

TEST(ColorTransform, ReadsAndWritesNoInkAsZero) {
    const IccProfile paper = profile(icc::cmyk());
    const IccProfile screen = profile(icc::rgb(1.8));
    const auto toPaper = ColorTransform::make(screen, 8, paper, 8, RenderingIntent::relativeColorimetric).value();
    const auto toScreen = ColorTransform::make(paper, 8, screen, 8, RenderingIntent::relativeColorimetric).value();
    EXPECT_EQ(converted(toPaper, {255, 255, 255}), (std::vector{0, 0, 0, 0}));
    EXPECT_EQ(converted(toScreen, {0, 0, 0, 0}), (std::vector{255, 255, 255}));
    EXPECT_LT(converted(toScreen, {0, 0, 0, 255})[0], 40);
}

TEST(ColorTransform, ChangesTheDepthIfAsked) {
    const IccProfile sRgb = IccProfile::fromData(sRgbProfileData()).value();
    const auto widening = ColorTransform::make(sRgb, 8, sRgb, 16, RenderingIntent::relativeColorimetric).value();
    std::array<quint16, 3> wide{};
    const std::array<quint8, 3> pixel{0, 128, 255};
    ASSERT_TRUE(widening.convert(std::as_bytes(std::span(pixel)), std::as_writable_bytes(std::span(wide)), 1));
    EXPECT_EQ(wide[0], 0);
    EXPECT_NEAR(wide[1], 128 * 257, 1);
    EXPECT_EQ(wide[2], 65535);
}

TEST(ColorTransform, IsNotMadeForWhatNoRasterHolds) {
    const IccProfile rgb = profile(icc::rgb(1.8));
    const IccProfile lab = profile(icc::lab());
    const auto intent = RenderingIntent::perceptual;
    EXPECT_FALSE(ColorTransform::make(lab, 8, rgb, 8, intent));
    EXPECT_FALSE(ColorTransform::make(rgb, 8, lab, 8, intent));
    for (const int bits : {0, 1, 4, 12, 32, -8}) {
        EXPECT_FALSE(ColorTransform::make(rgb, bits, rgb, 8, intent));
        EXPECT_FALSE(ColorTransform::make(rgb, 8, rgb, bits, intent));
    }
}

TEST(ColorTransform, IsNotMadeIfTheEngineKnowsNoWay) {
    const IccProfile rgb = profile(icc::rgb(1.8));
    const IccProfile oneWay = profile(icc::cmyk(cmsSigOutputClass, icc::Tables::toConnectionOnly));
    for (const RenderingIntent intent : allIntents) {
        EXPECT_FALSE(ColorTransform::make(rgb, 8, oneWay, 8, intent));
        EXPECT_TRUE(ColorTransform::make(oneWay, 8, rgb, 8, intent));
    }
}

TEST(ColorTransform, ConvertsOnlyWhatBothSidesHold) {
    const IccProfile rgb = profile(icc::rgb(1.8));
    const auto transform = ColorTransform::make(rgb, 8, profile(icc::cmyk()), 8, RenderingIntent::perceptual).value();
    const std::vector source(30, std::byte{100});
    std::vector destination(40, std::byte{0xAA});
    EXPECT_FALSE(transform.convert(std::span(source).first(29), destination, 10));
    EXPECT_FALSE(transform.convert(source, std::span(destination).first(39), 10));
    EXPECT_FALSE(transform.convert(source, destination, std::numeric_limits<std::size_t>::max()));
    EXPECT_EQ(destination, std::vector(40, std::byte{0xAA}));
    EXPECT_TRUE(transform.convert({}, {}, 0));
    EXPECT_TRUE(transform.convert(source, destination, 5));
    EXPECT_TRUE(std::all_of(destination.begin() + 20, destination.end(), [](auto b) { return b == std::byte{0xAA}; }));
}

TEST(ColorTransform, ConvertsAnyCountOfPixelsAlike) {
    const auto transform = ColorTransform::make(profile(icc::gray(2.2)), 8, profile(icc::rgb(1.8)), 8,
                                                RenderingIntent::relativeColorimetric)
                               .value();
    std::vector<std::byte> source((std::size_t{1} << 20) + 3);
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<std::byte>(i * 31 % 256);
    }
    std::vector<std::byte> whole(source.size() * 3);
    ASSERT_TRUE(transform.convert(source, whole, source.size()));
    for (std::size_t i = source.size() - 10; i < source.size(); ++i) {
        std::array<std::byte, 3> single{};
        ASSERT_TRUE(transform.convert(std::span(source).subspan(i), single, 1));
        EXPECT_EQ(std::memcmp(single.data(), whole.data() + i * 3, 3), 0) << i;
    }
}

TEST(ColorTransform, ServesSeveralThreadsAtOnce) {
    const auto transform =
        ColorTransform::make(profile(icc::rgb(1.8)), 16, profile(icc::cmyk()), 16, RenderingIntent::perceptual).value();
    constexpr std::size_t pixels = 5000;
    const auto source = encoded<quint16>(samples(pixels, 3));
    std::array<std::vector<std::byte>, 4> results;
    {
        std::vector<std::jthread> threads;
        for (auto& result : results) {
            threads.emplace_back([&source, &result, copy = transform] {
                result.resize(pixels * copy.destinationPixelBytes());
                EXPECT_TRUE(copy.convert(source, result, pixels));
            });
        }
    }
    for (const auto& result : results) {
        EXPECT_EQ(result, results[0]);
    }
}

} // namespace orvex::platform
