#include "Layout/QuarterInchArtworkSizing.h"

#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

using QuarterInchArtworkSizing::Result;
using test::artwork;

using enum QuarterInchArtworkSizing::Dimension;
using enum QuarterInchArtworkSizing::Strategy;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto badTarget = "Image dimensions must be valid positive values in inches.";
constexpr auto badRollWidth = "Roll width must be greater than 5 and no more than 60 inches to retain a 2.5-inch white "
                              "border on every side.";
constexpr auto badOriginal =
    "The original artwork dimensions or rotation data are invalid. It cannot be resized without distortion.";
constexpr auto badAspect = "The original physical dimensions do not match the pixel aspect ratio. The operation was "
                           "stopped to avoid distortion.";
constexpr auto tooWide =
    "The requested image width exceeds the usable roll width or the dimensions are invalid. Enter a "
    "smaller size. Each 2.5-inch border is retained.";
constexpr auto badRounded = "The rounded image dimensions are invalid or exceed the usable roll width. The artwork was "
                            "not shrunk automatically. Change its size explicitly.";
constexpr auto noPair = "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
                        "artwork was not changed, stretched or rounded at lower precision.";

struct Sizing {
    const char* name;
    RollArtwork artwork;
    double target;
    QuarterInchArtworkSizing::Dimension dimension;
    QuarterInchArtworkSizing::Strategy strategy;
    Result expected;
};

void PrintTo(const Sizing& sizing, std::ostream* out) {
    *out << sizing.name;
}

RollArtwork turned(RollArtwork unturned) {
    unturned.rotationQuarterTurns = 1;
    return unturned;
}

class QuarterInchSize : public ::testing::TestWithParam<Sizing> {};

TEST_P(QuarterInchSize, isTheNearestAtTheExactProportion) {
    const Sizing& sizing = GetParam();
    EXPECT_EQ(QuarterInchArtworkSizing::size(sizing.artwork, sizing.target, sizing.dimension, 60.0, sizing.strategy),
              sizing.expected);
}

INSTANTIATE_TEST_SUITE_P(
    BothDimensions, QuarterInchSize,
    ::testing::Values(
        Sizing{"exact", artwork(30, 20), 24.0, width, bothDimensions, {24.0, 16.0, 0.8}},
        Sizing{"near", artwork(30, 20), 24.1, width, bothDimensions, {24.0, 16.0, 0.8}},
        Sizing{"halfwayTakesTheSmaller", artwork(30, 20), 24.375, width, bothDimensions, {24.0, 16.0, 0.8}},
        Sizing{"beyondHalfway", artwork(30, 20), 24.376, width, bothDimensions, {24.75, 16.5, 0.825}},
        Sizing{"byHeight", artwork(30, 20), 16.2, height, bothDimensions, {24.0, 16.0, 0.8}},
        Sizing{"byHeightBeyondHalfway", artwork(30, 20), 16.26, height, bothDimensions, {24.75, 16.5, 0.825}},
        Sizing{"widest", artwork(30, 20), 55.0, width, bothDimensions, {54.75, 36.5, 1.825}},
        Sizing{"smallest", artwork(30, 20), 0.01, width, bothDimensions, {0.75, 0.5, 0.025}},
        Sizing{"turned", turned(artwork(30, 20)), 24.1, width, bothDimensions, {24.0, 36.0, 1.2}},
        Sizing{"square", artwork(7.123, 7.123), 20.3, width, bothDimensions, {20.25, 20.25, 20.25 / 7.123}},
        Sizing{"fourToThree", artwork(40, 30), 20.6, width, bothDimensions, {21.0, 15.75, 0.525}}),
    [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    EditedDimension, QuarterInchSize,
    ::testing::Values(Sizing{"up", artwork(20, 10), 10.13, width, editedDimension, {10.25, 5.125, 0.5125}},
                      Sizing{"down", artwork(20, 10), 10.12, width, editedDimension, {10.0, 5.0, 0.5}},
                      Sizing{"exactHalfGoesDown", artwork(20, 10), 10.125, width, editedDimension, {10.0, 5.0, 0.5}},
                      Sizing{"upToTheUsableWidth", artwork(20, 10), 54.9, width, editedDimension, {55.0, 27.5, 2.75}},
                      Sizing{"theUsableWidth", artwork(20, 10), 55.0, width, editedDimension, {55.0, 27.5, 2.75}},
                      Sizing{"byHeight", artwork(20, 10), 10.13, height, editedDimension, {20.5, 10.25, 1.025}},
                      Sizing{"widthFollowsFreely",
                             artwork(30, 7),
                             3.3,
                             height,
                             editedDimension,
                             {3.25 / (7.0 / 30.0), (7.0 / 30.0) * (3.25 / (7.0 / 30.0)), (3.25 / (7.0 / 30.0)) / 30.0}},
                      Sizing{"turned", turned(artwork(20, 10)), 5.1, width, editedDimension, {5.0, 10.0, 0.5}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(QuarterInchSizing, keepsTheHeightAtTheProportionAndNotRounded) {
    RollArtwork odd = artwork(30, 20);
    odd.originalHeightInches = 20.000000001;
    odd.pixelWidth = 3000000000000;
    odd.pixelHeight = 2000000000100;
    const Result result = QuarterInchArtworkSizing::size(odd, 1.5, width, 60.0, bothDimensions);
    EXPECT_EQ(result.widthInches, 1.5);
    EXPECT_EQ(result.heightInches, 20.000000001 / 30.0 * 1.5);
    EXPECT_NE(result.heightInches, 1.0);
}

TEST(QuarterInchSizing, givesSquaresASizeAtEveryQuarterInch) {
    for (int quarters = 1; quarters <= 220; ++quarters) {
        const double side = quarters * 0.25;
        const Result result = QuarterInchArtworkSizing::size(artwork(7.123, 7.123), side, height, 60.0, bothDimensions);
        EXPECT_EQ(result.widthInches, side);
        EXPECT_EQ(result.heightInches, side);
    }
}

TEST(QuarterInchSizing, ignoresThePresentSizeAndPosition) {
    RollArtwork misplaced = artwork(30, 20);
    misplaced.widthInches = nan;
    misplaced.xInches = -7.0;
    EXPECT_EQ(QuarterInchArtworkSizing::size(misplaced, 24.0, width, 60.0, bothDimensions), (Result{24.0, 16.0, 0.8}));
}

std::string refusal(const RollArtwork& original, double target, QuarterInchArtworkSizing::Dimension dimension = width,
                    QuarterInchArtworkSizing::Strategy strategy = bothDimensions, double rollWidth = 60.0) {
    return test::refusalOf(
        [&] { (void)QuarterInchArtworkSizing::size(original, target, dimension, rollWidth, strategy); });
}

TEST(QuarterInchSizing, refusesTheTargetFirst) {
    for (const double target : {0.0, -24.0, nan, infinity}) {
        EXPECT_EQ(refusal(RollArtwork(), target, width, bothDimensions, nan), badTarget);
    }
}

TEST(QuarterInchSizing, refusesTheRollWidthSecond) {
    for (const double rollWidth : {5.0, 60.0000001, nan, -infinity}) {
        EXPECT_EQ(refusal(RollArtwork(), 24.0, width, bothDimensions, rollWidth), badRollWidth);
    }
}

TEST(QuarterInchSizing, refusesAnArtworkWithoutASoundOriginal) {
    const auto refusalWith = [](void (*change)(RollArtwork&)) {
        RollArtwork changed = artwork(30, 20);
        change(changed);
        return refusal(changed, 24.0);
    };
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.pixelWidth = 0; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.pixelHeight = -1; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.originalWidthInches = nan; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.originalHeightInches = 0.0; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.rotationQuarterTurns = 4; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.rotationQuarterTurns = -1; }), badOriginal);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.originalWidthInches *= 1.0 + 1e-11; }), "(none)");
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.originalWidthInches *= 1.0 + 1e-9; }), badAspect);
    EXPECT_EQ(refusalWith([](RollArtwork& a) { a.originalWidthInches = 1e-320; }), badAspect);
}

TEST(QuarterInchSizing, refusesAWidthBeyondTheUsableWithoutTolerance) {
    EXPECT_EQ(refusal(artwork(20, 10), 55.0), "(none)");
    EXPECT_EQ(refusal(artwork(20, 10), 55.0000000001), tooWide);
    EXPECT_EQ(refusal(artwork(20, 10), 55.0001, width, editedDimension), tooWide);
    EXPECT_EQ(refusal(artwork(20, 10), 27.5, height), "(none)");
    EXPECT_EQ(refusal(artwork(20, 10), 27.51, height), tooWide);
    EXPECT_EQ(refusal(artwork(20, 10), 20.0, width, bothDimensions, 24.5), tooWide);
}

TEST(QuarterInchSizing, refusesARoundedSizeThatIsNone) {
    EXPECT_EQ(refusal(artwork(20, 10), 0.1, width, editedDimension), badRounded);
    EXPECT_EQ(refusal(artwork(20, 10), 0.1, height, editedDimension), badRounded);
    EXPECT_EQ(refusal(artwork(20, 10), 54.9, width, editedDimension, 59.95), badRounded);
}

TEST(QuarterInchSizing, refusesAHeightThatSwallowsItsBorder) {
    RollArtwork endless = artwork(1, 1);
    endless.pixelWidth = 1;
    endless.pixelHeight = 9000000000000000000;
    endless.originalHeightInches = 9e18;
    EXPECT_EQ(refusal(endless, 1.0, width, editedDimension), badRounded);
    EXPECT_EQ(refusal(endless, 1.0, width, bothDimensions), noPair);
}

TEST(QuarterInchSizing, refusesProportionsWithoutQuarterInchPairs) {
    EXPECT_EQ(refusal(artwork(40.01, 30), 20.0), noPair);
    EXPECT_EQ(refusal(artwork(40.01, 30), 20.0, width, editedDimension), "(none)");
}

TEST(QuarterInchSizing, refusesWhereNoQuarterInchFits) {
    EXPECT_EQ(refusal(artwork(10, 10), 0.2, width, bothDimensions, 5.2), noPair);
    EXPECT_EQ(refusal(artwork(10, 10), 0.2, width, bothDimensions, 5.25), "(none)");
}

TEST(QuarterInchSizing, refusesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(refusal(artwork(10, 10), 0.0), "画面尺寸必须是有效的正数（英寸）。");
    EXPECT_EQ(refusal(artwork(20, 10), 56.0),
              "请求的画面宽度超出卷布可用宽度，或尺寸无效。请输入更小的尺寸。四边各 2.5 英寸的白边都会保留。");
    EXPECT_EQ(refusal(artwork(20, 10), 0.1, width, editedDimension),
              "取整后的画面尺寸无效，或超出卷布可用宽度。作品未自动缩小。请手动修改尺寸。");
    EXPECT_EQ(refusal(artwork(40.01, 30), 20.0),
              "此卷布上没有宽高均为 1/4 英寸整数倍且比例精确的尺寸。作品未改动、未拉伸，也未以较低精度取整。");
}

} // namespace
} // namespace orvex
