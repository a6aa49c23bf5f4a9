// How near the conversion comes to its reference, Little CMS without any optimisation, in floating point; and that a
// pixel's colour depends on nothing but the pixel.

#include "Color/ColorTransform.h"
#include "IccFixtures.h"
#include "Profiles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <random>
#include <thread>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

// The bounds, in steps of the range's 255.
constexpr double largestError = 3.0;
constexpr double usualError = 1.0; // of all but this share of the samples
constexpr double unusualShare = 0.001;
constexpr double largestMeanError = 0.1;

constexpr std::array allIntents{RenderingIntent::perceptual, RenderingIntent::relativeColorimetric,
                                RenderingIntent::saturation, RenderingIntent::absoluteColorimetric};

IccProfile profile(const samples::Bytes& bytes) {
    return IccProfile::fromData({reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())})
        .value();
}

IccProfile profile(const icc::Profile& made) {
    return IccProfile::fromData(icc::saved(made)).value();
}

IccProfile wideGamut() {
    return profile(samples::wideGamutProfile());
}

IccProfile press() {
    return profile(samples::pressProfile());
}

IccProfile ownTableOfEachIntent() {
    return profile(icc::cmyk());
}

/// All colours there are, of which most are outside of others' gamuts, and the curves of photographs' archives or none.
IccProfile romm() {
    return profile(icc::rgb(1.8, cmsSigDisplayClass, L"ROMM", icc::rommPrimaries));
}

IccProfile linearRomm() {
    return profile(icc::rgb(1.0, cmsSigDisplayClass, L"Linear ROMM", icc::rommPrimaries));
}

/// A curve that is steepest of all near black.
IccProfile steepRgb() {
    return profile(icc::rgb(3.0));
}

IccProfile outputRgb() {
    return profile(icc::rgb(2.4, cmsSigOutputClass));
}

IccProfile sRgb() {
    return IccProfile::fromData(sRgbProfileData()).value();
}

IccProfile gray() {
    return profile(samples::grayProfile());
}

/// A way of conversion and how many colours of it are measured at each intent.
struct Way {
    const char* name;
    IccProfile (*from)();
    IccProfile (*to)();
    std::size_t colors;
    bool isEightBitOnly = false;
};

constexpr std::array ways{
    Way{"WideGamutToPress", wideGamut, press, 125'000},
    Way{"WideGamutToTablesOfEachIntent", wideGamut, ownTableOfEachIntent, 50'000},
    Way{"SRgbToOutputRgb", sRgb, outputRgb, 50'000},
    Way{"RommToSRgb", romm, sRgb, 25'000},
    Way{"RommToSteepRgb", romm, steepRgb, 25'000},
    Way{"LinearRommToSRgb", linearRomm, sRgb, 25'000},
    Way{"LinearRommToPress", linearRomm, press, 25'000},
    Way{"GrayToPress", gray, press, 20'000},
    Way{"GrayToOutputRgb", gray, outputRgb, 10'000},
    Way{"PressToSRgb", press, sRgb, 30'000, true},
    Way{"PressToTablesOfEachIntent", press, ownTableOfEachIntent, 10'000, true},
};

/// What is measured at each depth.
constexpr std::size_t colorsPerDepth() {
    std::size_t sum = 0;
    for (const Way& way : ways) {
        sum += way.isEightBitOnly ? 0 : way.colors * allIntents.size();
    }
    return sum;
}

static_assert(colorsPerDepth() >= 1'000'000);

template <typename Sample>
using Samples = std::vector<Sample>;

std::size_t channels(const IccProfile& of) {
    return static_cast<std::size_t>(of.componentCount());
}

template <typename Sample>
Samples<Sample> randomSamples(std::size_t count, Sample largest = std::numeric_limits<Sample>::max()) {
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> any(0, largest);
    Samples<Sample> result(count);
    std::generate(result.begin(), result.end(), [&] { return static_cast<Sample>(any(random)); });
    return result;
}

template <typename Sample>
ColorTransform transformOf(const Way& way, RenderingIntent intent) {
    constexpr int bits = sizeof(Sample) * 8;
    return ColorTransform::make(way.from(), bits, way.to(), bits, intent).value();
}

template <typename Sample>
Samples<Sample> converted(const ColorTransform& transform, const Samples<Sample>& colors) {
    const std::size_t pixels = colors.size() * sizeof(Sample) / transform.sourcePixelBytes();
    Samples<Sample> result(pixels * transform.destinationPixelBytes() / sizeof(Sample));
    EXPECT_TRUE(transform.convert(std::as_bytes(std::span(colors)), std::as_writable_bytes(std::span(result)), pixels));
    return result;
}

cmsUInt32Number floatFormat(const IccProfile& of) {
    return of.space() == IccProfile::Space::gray  ? TYPE_GRAY_DBL
           : of.space() == IccProfile::Space::rgb ? TYPE_RGB_DBL
                                                  : TYPE_CMYK_DBL;
}

/// The engine's inks are per cent.
double engineScale(const IccProfile& of) {
    return of.space() == IccProfile::Space::cmyk ? 100.0 : 1.0;
}

/// The reference, rounded to the samples' depth.
template <typename Sample>
Samples<Sample> reference(const IccProfile& from, const IccProfile& to, RenderingIntent intent,
                          const Samples<Sample>& colors) {
    constexpr double full = std::numeric_limits<Sample>::max();
    std::vector<double> input(colors.begin(), colors.end());
    for (double& each : input) {
        each *= engineScale(from) / full;
    }
    const icc::Profile source = icc::opened(from.data());
    const icc::Profile destination = icc::opened(to.data());
    cmsHTRANSFORM transform =
        cmsCreateTransform(source.get(), floatFormat(from), destination.get(), floatFormat(to),
                           static_cast<cmsUInt32Number>(intent), cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
    const std::size_t pixels = colors.size() / channels(from);
    std::vector<double> output(pixels * channels(to));
    cmsDoTransform(transform, input.data(), output.data(), static_cast<cmsUInt32Number>(pixels));
    cmsDeleteTransform(transform);
    Samples<Sample> result;
    for (const double each : output) {
        result.push_back(static_cast<Sample>(std::clamp(each / engineScale(to), 0.0, 1.0) * full + 0.5));
    }
    return result;
}

/// The errors of some samples, in steps of 255.
struct Errors {
    double largest = 0;
    double mean = 0;
    double unusual = 0;  ///< the share of errors above the usual
    double permille = 0; ///< what one of a thousand exceeds
};

template <typename Sample>
Errors errorsOf(const Samples<Sample>& actual, const Samples<Sample>& expected) {
    EXPECT_EQ(actual.size(), expected.size());
    std::vector<double> errors(expected.size());
    std::transform(actual.begin(), actual.end(), expected.begin(), errors.begin(),
                   [](Sample a, Sample b) { return std::abs(a - b) * 255.0 / std::numeric_limits<Sample>::max(); });
    const auto count = static_cast<double>(errors.size());
    const auto rare = errors.begin() + static_cast<std::ptrdiff_t>(count * (1.0 - unusualShare));
    std::nth_element(errors.begin(), rare, errors.end());
    return {.largest = *std::max_element(errors.begin(), errors.end()),
            .mean = std::accumulate(errors.begin(), errors.end(), 0.0) / count,
            .unusual = static_cast<double>(std::count_if(errors.begin(), errors.end(),
                                                         [](double error) { return error > usualError; })) /
                       count,
            .permille = *rare};
}

template <typename Sample>
void expectWithinTheBounds(const Way& way, RenderingIntent intent, const Samples<Sample>& colors) {
    const Errors errors =
        errorsOf(converted(transformOf<Sample>(way, intent), colors), reference(way.from(), way.to(), intent, colors));
    const std::string where = way.name + std::string(", intent ") + std::to_string(static_cast<int>(intent)) + ", " +
                              std::to_string(sizeof(Sample) * 8) + " bits";
    EXPECT_LE(errors.largest, largestError) << where;
    EXPECT_LE(errors.unusual, unusualShare) << where;
    EXPECT_LT(errors.mean, largestMeanError) << where;
    // For --gtest_output: how near the bounds the errors come.
    testing::Test::RecordProperty(where + ", largest", std::to_string(errors.largest));
    testing::Test::RecordProperty(where + ", 99.9 %", std::to_string(errors.permille));
    testing::Test::RecordProperty(where + ", mean", std::to_string(errors.mean));
}

template <typename Sample>
void expectRandomColorsWithinTheBounds(const Way& way) {
    const auto colors = randomSamples<Sample>(way.colors * channels(way.from()));
    for (const RenderingIntent intent : allIntents) {
        expectWithinTheBounds(way, intent, colors);
    }
}

/// The darkest colours, where the eye sees steps first and where curves are steepest, and the neutral ones.
template <typename Sample>
Samples<Sample> darkAndNeutralSamples(std::size_t channelCount) {
    constexpr std::size_t count = 10'000;
    auto result = randomSamples<Sample>(count * channelCount, std::numeric_limits<Sample>::max() / 16);
    for (const Sample level : randomSamples<Sample>(count)) {
        result.insert(result.end(), channelCount, level);
    }
    return result;
}

template <typename Sample>
void expectDarkAndNeutralColorsWithinTheBounds(const Way& way) {
    expectWithinTheBounds(way, RenderingIntent::relativeColorimetric,
                          darkAndNeutralSamples<Sample>(channels(way.from())));
}

/// Converts `colors` piece by piece, the last piece first; the lengths of the pieces are small and all different.
template <typename Sample>
Samples<Sample> convertedInPieces(const ColorTransform& transform, const Samples<Sample>& colors) {
    const std::size_t pixels = colors.size() * sizeof(Sample) / transform.sourcePixelBytes();
    const auto source = std::as_bytes(std::span(colors));
    Samples<Sample> result(pixels * transform.destinationPixelBytes() / sizeof(Sample));
    const auto destination = std::as_writable_bytes(std::span(result));
    std::size_t end = pixels;
    for (std::size_t length = 1; end > 0; length = length % 67 + 1) {
        const std::size_t count = std::min(length, end);
        end -= count;
        EXPECT_TRUE(transform.convert(source.subspan(end * transform.sourcePixelBytes()),
                                      destination.subspan(end * transform.destinationPixelBytes()), count));
    }
    return result;
}

template <typename Sample>
Samples<Sample> convertedByThreads(const ColorTransform& transform, const Samples<Sample>& colors,
                                   std::size_t threadCount) {
    const std::size_t pixels = colors.size() * sizeof(Sample) / transform.sourcePixelBytes();
    const auto source = std::as_bytes(std::span(colors));
    Samples<Sample> result(pixels * transform.destinationPixelBytes() / sizeof(Sample));
    const auto destination = std::as_writable_bytes(std::span(result));
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < threadCount; ++i) {
            const std::size_t begin = pixels * i / threadCount;
            const std::size_t count = pixels * (i + 1) / threadCount - begin;
            threads.emplace_back([=, &transform] {
                EXPECT_TRUE(transform.convert(source.subspan(begin * transform.sourcePixelBytes()),
                                              destination.subspan(begin * transform.destinationPixelBytes()), count));
            });
        }
    }
    return result;
}

/// The pixels in an order of their own: `order[i]` tells which stands at place i.
template <typename Sample>
Samples<Sample> inOrder(const Samples<Sample>& pixels, std::size_t channelCount,
                        const std::vector<std::size_t>& order) {
    Samples<Sample> result;
    for (const std::size_t index : order) {
        const auto pixel = pixels.begin() + static_cast<std::ptrdiff_t>(index * channelCount);
        result.insert(result.end(), pixel, pixel + static_cast<std::ptrdiff_t>(channelCount));
    }
    return result;
}

template <typename Sample>
void expectThatOnlyThePixelCounts(const Way& way) {
    constexpr std::size_t pixels = 6'007;
    const std::size_t sourceChannels = channels(way.from());
    const auto colors = randomSamples<Sample>(pixels * sourceChannels);
    const ColorTransform transform = transformOf<Sample>(way, RenderingIntent::relativeColorimetric);
    const auto whole = converted(transform, colors);
    EXPECT_EQ(convertedInPieces(transform, colors), whole);
    for (const std::size_t threadCount : {1U, 2U, 4U}) {
        EXPECT_EQ(convertedByThreads(transform, colors, threadCount), whole) << threadCount << " threads";
    }
    std::vector<std::size_t> order(pixels);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    EXPECT_EQ(converted(transform, inOrder(colors, sourceChannels, order)), inOrder(whole, channels(way.to()), order));
    EXPECT_EQ(converted(transformOf<Sample>(way, RenderingIntent::relativeColorimetric), colors), whole)
        << "a transform made anew";
}

/// A way at one depth of its samples.
struct Measurement {
    Way way;
    int bits;

    [[nodiscard]] std::string name() const { return way.name + std::string("In") + std::to_string(bits) + "Bits"; }
};

void PrintTo(const Measurement& measurement, std::ostream* output) {
    *output << measurement.name();
}

std::vector<Measurement> measurements() {
    std::vector<Measurement> result;
    for (const Way& way : ways) {
        result.push_back({way, 8});
        if (!way.isEightBitOnly) {
            result.push_back({way, 16});
        }
    }
    return result;
}

class ColorExactness : public testing::TestWithParam<Measurement> {};

} // namespace

TEST_P(ColorExactness, HoldsForRandomColors) {
    const auto& [way, bits] = GetParam();
    bits == 8 ? expectRandomColorsWithinTheBounds<quint8>(way) : expectRandomColorsWithinTheBounds<quint16>(way);
}

TEST_P(ColorExactness, HoldsForDarkAndForNeutralColors) {
    const auto& [way, bits] = GetParam();
    bits == 8 ? expectDarkAndNeutralColorsWithinTheBounds<quint8>(way)
              : expectDarkAndNeutralColorsWithinTheBounds<quint16>(way);
}

TEST_P(ColorExactness, DependsOnThePixelAlone) {
    const auto& [way, bits] = GetParam();
    bits == 8 ? expectThatOnlyThePixelCounts<quint8>(way) : expectThatOnlyThePixelCounts<quint16>(way);
}

INSTANTIATE_TEST_SUITE_P(Ways, ColorExactness, testing::ValuesIn(measurements()),
                         [](const auto& measurement) { return measurement.param.name(); });

} // namespace orvex::platform
