#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using test::artwork;
using test::artworkAt;
using test::refusalOf;
using test::Snapshot;
using test::untouchedRefusal;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto badVersion = "This roll layout version is unsupported.";
constexpr auto badRollWidth =
    "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both "
    "2.5-inch white borders.";
constexpr auto notFound = "This artwork was not found.";
constexpr auto notNumbers = "Artwork positions must be valid numbers.";
constexpr auto badGap = "Artwork spacing must be a valid nonnegative value in inches.";
constexpr auto duplicateIDs = "Duplicate artwork IDs.";
constexpr auto tooWide =
    "The artwork width plus two 2.5-inch manual-trim borders must not exceed 60 inches. Reduce its size.";
constexpr auto imprecise = "These coordinates or dimensions exceed the precision needed to retain the artwork and its "
                           "2.5-inch manual-trim borders.";

Point positionOf(const RollLayout& layout, qsizetype index) {
    return {layout.items.at(index).xInches, layout.items.at(index).yInches};
}

// Resize

TEST(RollResize, keepsTheCornerUnlessTheFrameWouldLeaveTheRoll) {
    RollLayout layout({artworkAt(3, 7, 50, 25)});
    layout.resize(test::id(1), 52.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{3.0, 7.0}));
    layout.resize(test::id(1), 54.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{1.0, 7.0}));
    EXPECT_EQ(layout.items.at(0).widthInches, 54.0);
    layout.resize(test::id(1), 55.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{0.0, 7.0}));
    EXPECT_EQ(layout.items.at(0).heightInches(), 27.5);
}

TEST(RollResize, refusesWhatNeverFits) {
    RollLayout layout({artworkAt(3, 7, 50, 25)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(1), 55.1); }), tooWide);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(1), 0.0); }),
              "Artwork dimensions must be valid positive values in inches.");
    layout.widthInches = 57.0;
    layout.items[0].xInches = 2.0;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(1), 52.5); }),
              "The artwork width plus two 2.5-inch manual-trim borders must not exceed 57 inches. Change its size or "
              "rotate it explicitly.");
}

TEST(RollResize, looksForTheArtworkFirst) {
    RollLayout layout({artwork(50, 25)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(2), nan); }), notFound);
    layout.widthInches = 5.0;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(2), nan); }), badRollWidth);
    layout.schemaVersion = 2;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(2), nan); }), badVersion);
}

TEST(RollResize, refusesAPositionThatIsNoNumber) {
    RollLayout layout({artworkAt(nan, 0, 50, 25)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(1), 20.0); }), notNumbers);
}

TEST(RollResize, bringsAnArtworkBackOntoTheRoll) {
    RollLayout layout({artworkAt(-4, -6, 20, 10)});
    layout.resize(test::id(1), 30.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{0.0, 0.0}));
}

TEST(RollResize, refusesInChinese) {
    const test::InChinese chinese;
    RollLayout layout({artwork(50, 25)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(2), 1.0); }), "未找到此作品。");
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.resize(test::id(1), 56.0); }),
              "作品宽度加两侧各 2.5 英寸手裁白边不能超过 60 英寸。请缩小尺寸。");
}

// Rotate

TEST(RollRotate, keepsThePhysicalSizeAndTheScale) {
    RollLayout layout({artworkAt(5, 6, 10, 20)});
    layout.rotate(test::id(1));
    EXPECT_EQ(layout.items.at(0).widthInches, 20.0);
    EXPECT_EQ(layout.items.at(0).heightInches(), 10.0);
    EXPECT_EQ(layout.items.at(0).rotationQuarterTurns, 1);
    EXPECT_EQ(layout.items.at(0).scale(), 1.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{5.0, 6.0}));
}

TEST(RollRotate, comesBackAfterFourTurns) {
    RollLayout layout({artworkAt(1, 2, 10.001, 7.003)});
    layout.items[0].widthInches = 12.34567;
    layout.items[0].rotationQuarterTurns = 2;
    const double width = layout.items.at(0).widthInches;
    for (int turn = 0; turn < 4; ++turn) {
        layout.rotate(test::id(1));
        EXPECT_EQ(layout.items.at(0).rotationQuarterTurns, (3 + turn) % 4);
    }
    EXPECT_DOUBLE_EQ(layout.items.at(0).widthInches, width);
}

TEST(RollRotate, movesLeftByWhatTheRollNeeds) {
    RollLayout layout({artworkAt(40, 6, 10, 20)});
    layout.rotate(test::id(1));
    EXPECT_EQ(positionOf(layout, 0), (Point{35.0, 6.0}));
}

TEST(RollRotate, turnsLandscapeAndPortraitThatFit) {
    RollLayout layout({artwork(50, 10, 1), artwork(10, 50, 2), artwork(10, 56, 3)});
    layout.rotate(test::id(1));
    layout.rotate(test::id(2));
    EXPECT_EQ(layout.items.at(0).widthInches, 10.0);
    EXPECT_EQ(layout.items.at(1).widthInches, 50.0);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.rotate(test::id(3)); }), tooWide);
}

TEST(RollRotate, leavesAnArtworkUnturnedThatDoesNotLieAcrossANarrowRoll) {
    RollLayout layout({artwork(10, 30)}, 30.0);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.rotate(test::id(1)); }),
              "The artwork width plus two 2.5-inch manual-trim borders must not exceed 30 inches. Change its size or "
              "rotate it explicitly.");
}

TEST(RollRotate, refusesAnArtworkThatIsNotValidAsItStands) {
    RollLayout layout({artworkAt(50, 0, 10, 10)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.rotate(test::id(1)); }),
              "The complete manual-trim frame must lie within the 60-inch roll.");
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.rotate(test::id(9)); }), notFound);
    const test::InChinese chinese;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.rotate(test::id(1)); }),
              "完整的手裁框必须位于 60 英寸卷布之内。");
}

// Move

TEST(RollMove, keepsTheFrameOnTheRollWithoutComplaint) {
    RollLayout layout({artworkAt(5, 5, 10, 20)});
    layout.move(test::id(1), -3.0, -4.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{0.0, 0.0}));
    layout.move(test::id(1), 100.0, 1000.5);
    EXPECT_EQ(positionOf(layout, 0), (Point{45.0, 1000.5}));
    layout.move(test::id(1), 12.25, 3.0);
    EXPECT_EQ(positionOf(layout, 0), (Point{12.25, 3.0}));
}

TEST(RollMove, leavesNoNegativeZero) {
    RollLayout layout({artworkAt(5, 5, 10, 20)});
    layout.move(test::id(1), -0.0, -0.0);
    EXPECT_FALSE(std::signbit(layout.items.at(0).xInches));
    EXPECT_FALSE(std::signbit(layout.items.at(0).yInches));
}

TEST(RollMove, allowsOverlap) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(30, 0, 10, 10, 2)});
    layout.move(test::id(2), 1.0, 1.0);
    EXPECT_EQ(positionOf(layout, 1), (Point{1.0, 1.0}));
}

TEST(RollMove, refusesNumbersThatAreNone) {
    RollLayout layout({artworkAt(5, 5, 10, 20)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), nan, 0.0); }), notNumbers);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), 0.0, infinity); }), notNumbers);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(2), nan, 0.0); }), notFound);
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), 0.0, 1e17); }), imprecise);
    layout.items[0].widthInches = 56.0;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), 0.0, 0.0); }), tooWide);
    layout.schemaVersion = 0;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), 0.0, 0.0); }), badVersion);
}

TEST(RollMove, refusesInChinese) {
    const test::InChinese chinese;
    RollLayout layout({artworkAt(5, 5, 10, 20)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.move(test::id(1), nan, 0.0); }),
              "作品位置必须是有效数字。");
}

// Append

TEST(RollAppend, placesTheArtworkAtTheFirstVacancyAndGivesItsId) {
    RollLayout layout({artworkAt(0, 0, 25, 10, 1), artworkAt(0, 50, 25, 10, 2)});
    EXPECT_EQ(layout.append(artworkAt(7, 999, 25, 10, 3), 0.0), test::id(3));
    ASSERT_EQ(layout.items.size(), 3);
    EXPECT_EQ(positionOf(layout, 2), (Point{30.0, 0.0}));
    layout.append(artwork(25, 10, 4), 0.0);
    EXPECT_EQ(positionOf(layout, 3), (Point{0.0, 15.0}));
    EXPECT_EQ(positionOf(layout, 0), (Point{0.0, 0.0}));
    EXPECT_EQ(positionOf(layout, 1), (Point{0.0, 50.0}));
}

TEST(RollAppend, keepsTheGap) {
    RollLayout layout({artwork(20, 10, 1)});
    layout.append(artwork(20, 10, 2), 1.5);
    EXPECT_EQ(positionOf(layout, 1), (Point{26.5, 0.0}));
    layout.append(artwork(20, 10, 3), 1.5);
    EXPECT_EQ(positionOf(layout, 2), (Point{0.0, 16.5}));
}

TEST(RollAppend, keepsSizeAndTurn) {
    RollArtwork turned = artwork(10, 20);
    turned.rotationQuarterTurns = 3;
    turned.widthInches = 13.25;
    RollLayout layout;
    layout.append(turned, 0.0);
    EXPECT_EQ(layout.items.at(0), turned);
}

TEST(RollAppend, refusesGapStructureIdAndArtworkInThisOrder) {
    RollLayout layout({artworkAt(-1, 0, 10, 10, 1)});
    RollArtwork bad = artworkAt(0, nan, 10, 10, 1);
    const auto refusal = [&](double gap) {
        return untouchedRefusal(layout, [&](RollLayout& l) { l.append(bad, gap); });
    };
    EXPECT_EQ(refusal(-1.0), badGap);
    EXPECT_EQ(refusal(nan), badGap);
    EXPECT_EQ(refusal(0.0), "art1：Artwork positions must be valid nonnegative values in inches.");
    layout.items[0].xInches = 0.0;
    EXPECT_EQ(refusal(0.0), duplicateIDs);
    bad.id = test::id(2);
    EXPECT_EQ(refusal(0.0), "Artwork positions must be valid nonnegative values in inches.");
}

TEST(RollAppend, refusesAVacancyBeyondThePrecision) {
    RollLayout layout({artwork(55, 10, 1)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.append(artwork(55, 10, 2), 1e300); }), imprecise);
}

TEST(RollAppend, refusesInChinese) {
    const test::InChinese chinese;
    RollLayout layout({artwork(10, 10, 1)});
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.append(artwork(10, 10, 2), infinity); }),
              "作品间距必须是有效的非负数值（英寸）。");
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.append(artwork(10, 10, 1), 0.0); }), "作品 ID 重复。");
}

// What the operations share

TEST(RollIndex, isThatOfTheFirstArtworkWithTheId) {
    const RollLayout layout({artwork(10, 10, 1), artwork(10, 10, 2), artwork(20, 20, 2)});
    EXPECT_EQ(layout.index(test::id(2)), 1);
}

} // namespace
} // namespace orvex
