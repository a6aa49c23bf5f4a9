#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using test::artworkAt;
using test::Snapshot;

using enum RollNudgeDirection;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

RollLayout layoutAt(double x, double y) {
    return RollLayout({artworkAt(x, y, 10, 10, 1), artworkAt(0, 85, 10, 10, 2)});
}

struct Step {
    const char* name;
    RollNudgeDirection direction;
    bool accelerated;
    double x;
    double y;
};

void PrintTo(const Step& step, std::ostream* out) {
    *out << step.name;
}

class RollNudgeStep : public ::testing::TestWithParam<Step> {};

TEST_P(RollNudgeStep, movesTheArtworkByTheStep) {
    RollLayout layout = layoutAt(20, 30);
    EXPECT_TRUE(layout.nudge(test::id(1), GetParam().direction, GetParam().accelerated, 100.0));
    EXPECT_EQ(layout.items.at(0).xInches, GetParam().x);
    EXPECT_EQ(layout.items.at(0).yInches, GetParam().y);
    EXPECT_EQ(layout.items.at(1), layoutAt(0, 0).items.at(1));
}

INSTANTIATE_TEST_SUITE_P(
    Directions, RollNudgeStep,
    ::testing::Values(Step{"left", left, false, 20 - 0.01, 30}, Step{"right", right, false, 20 + 0.01, 30},
                      Step{"up", up, false, 20, 30 - 0.01}, Step{"down", down, false, 20, 30 + 0.01},
                      Step{"farLeft", left, true, 20 - 0.1, 30}, Step{"farRight", right, true, 20 + 0.1, 30},
                      Step{"farUp", up, true, 20, 30 - 0.1}, Step{"farDown", down, true, 20, 30 + 0.1}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(RollNudge, changesNothingAtAnEdge) {
    RollLayout layout({artworkAt(0, 0, 55, 10, 1)});
    const Snapshot before(layout);
    for (const auto direction : {left, right, up, down}) {
        EXPECT_FALSE(layout.nudge(test::id(1), direction, false, 15.0));
        EXPECT_FALSE(layout.nudge(test::id(1), direction, true, 15.0));
        EXPECT_EQ(Snapshot(layout), before);
    }
}

TEST(RollNudge, goesAsFarAsTheEdgeWithLessThanAStep) {
    RollLayout layout = layoutAt(0.005, 0.005);
    EXPECT_TRUE(layout.nudge(test::id(1), up, false, 100.0));
    EXPECT_EQ(layout.items.at(0).yInches, 0.0);
    EXPECT_TRUE(layout.nudge(test::id(1), left, false, 100.0));
    EXPECT_EQ(layout.items.at(0).xInches, 0.0);
    layout = layoutAt(44.95, 84.95);
    EXPECT_TRUE(layout.nudge(test::id(1), right, true, 100.0));
    EXPECT_EQ(layout.items.at(0).xInches, 45.0);
    EXPECT_TRUE(layout.nudge(test::id(1), down, true, 100.0));
    EXPECT_EQ(layout.items.at(0).yInches, 85.0);
    EXPECT_FALSE(layout.nudge(test::id(1), down, true, 100.0));
}

TEST(RollNudge, neverExtendsTheCanvas) {
    RollLayout layout({artworkAt(0, 10, 10, 10, 1)});
    EXPECT_FALSE(layout.nudge(test::id(1), down, true, layout.lengthInches()));
    EXPECT_TRUE(layout.nudge(test::id(1), down, true, 30.0));
}

TEST(RollNudge, acceptsALengthBeyondTheCanvasByTheTolerance) {
    RollLayout layout = layoutAt(20, 30);
    EXPECT_TRUE(layout.nudge(test::id(1), left, false, 100.0 - 5e-10));
}

/// The refusal of a nudge of the first artwork, which must leave the layout as it was.
std::string refusal(RollLayout& layout, double canvasLength = 100.0, unsigned number = 1) {
    const Snapshot before(layout);
    const auto message =
        test::refusalOf([&] { (void)layout.nudge(test::id(number), RollNudgeDirection::left, false, canvasLength); });
    EXPECT_EQ(Snapshot(layout), before);
    return message;
}

TEST(RollNudge, refusesInTheOrderOfItsChecks) {
    RollLayout layout({artworkAt(20, 30, 10, 10, 1), artworkAt(-2, 85, 10, 10, 1)}, 61.0);
    layout.schemaVersion = 3;
    EXPECT_EQ(refusal(layout, nan), "This roll layout version is unsupported.");
    layout.schemaVersion = 1;
    EXPECT_EQ(refusal(layout, nan), "Roll width must be a valid value greater than 5 and no more than 60 inches to "
                                    "retain both 2.5-inch white borders.");
    layout.widthInches = 60.0;
    for (const double length : {nan, -1.0, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(refusal(layout, length),
                  "The canvas length for keyboard nudging must be a valid nonnegative value in inches.");
    }
    EXPECT_EQ(refusal(layout, 10.0, 9), "Duplicate artwork IDs.");
    layout.items[1].id = test::id(2);
    EXPECT_EQ(refusal(layout, 10.0, 9), "art1：Artwork positions must be valid nonnegative values in inches.");
    layout.items[1].xInches = 0.0;
    EXPECT_EQ(refusal(layout, 10.0, 9), "The artwork lies outside the canvas bounds captured for this keyboard nudge.");
    EXPECT_EQ(refusal(layout, 100.0, 9), "This artwork was not found.");
}

TEST(RollNudge, refusesACanvasThatAnotherArtworkExceeds) {
    RollLayout layout = layoutAt(20, 30);
    EXPECT_EQ(refusal(layout, 100.0 - 2e-9),
              "The artwork lies outside the canvas bounds captured for this keyboard nudge.");
}

TEST(RollNudge, refusesInChinese) {
    const test::InChinese chinese;
    RollLayout layout = layoutAt(20, 30);
    EXPECT_EQ(refusal(layout, -1.0), "键盘微调的画布长度必须是有效的非负数值（英寸）。");
    EXPECT_EQ(refusal(layout, 50.0), "作品超出了本次键盘微调所记录的画布范围。");
}

} // namespace
} // namespace orvex
