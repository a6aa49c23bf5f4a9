#include "Layout/RollOptimization.h"

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

constexpr auto badRollWidth =
    "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch white borders.";

/// An artwork by the size of its frame.
RollArtwork frame(double width, double height, unsigned number) {
    return artwork(width - 5.0, height - 5.0, number);
}

RollArtwork turned(RollArtwork artwork, qint64 quarterTurns) {
    artwork.rotationQuarterTurns = quarterTurns;
    artwork.widthInches = artwork.naturalWidthInches();
    return artwork;
}

std::vector<qint64> rotations(const RollLayout& layout) {
    std::vector<qint64> result;
    for (const RollArtwork& item : layout.items) {
        result.push_back(item.rotationQuarterTurns);
    }
    return result;
}

using Rotations = std::vector<qint64>;
using Orders = std::vector<RollPacking::Order>;

// optimizeArrangement

TEST(OptimizeArrangement, isAutomaticPackingWithoutTurns) {
    const RollLayout layout({artwork(50, 10, 1), artwork(10, 50, 2), artwork(20, 30, 3)});
    RollLayout packed = layout;
    packed.autoArrange(0.5);
    RollLayout optimized = layout;
    optimized.optimizeArrangement(false, 0.5);
    EXPECT_EQ(optimized, packed);
    EXPECT_EQ(rotations(optimized), (Rotations{0, 0, 0}));
}

TEST(OptimizeArrangement, turnsAnArtworkThatSavesCanvasSo) {
    RollLayout layout({artwork(50, 10, 1), artwork(10, 50, 2)});
    layout.autoArrange(0.0);
    EXPECT_EQ(layout.lengthInches(), 70.0);
    layout.optimizeArrangement(true, 0.0);
    EXPECT_EQ(layout.lengthInches(), 30.0);
    EXPECT_EQ(rotations(layout), (Rotations{0, 1}));
    EXPECT_EQ(layout.items.at(1).widthInches, 50.0);
    EXPECT_EQ(layout.items.at(1).heightInches(), 10.0);
}

TEST(OptimizeArrangement, turnsNothingThatSavesNothing) {
    RollLayout layout({artwork(25, 10, 1), artwork(25, 10, 2)});
    layout.optimizeArrangement(true, 0.0);
    EXPECT_EQ(rotations(layout), (Rotations{0, 0}));
    EXPECT_EQ(layout.lengthInches(), 15.0);
}

TEST(OptimizeArrangement, turnsBackRatherThanFurther) {
    RollLayout layout({artwork(50, 10, 1), turned(artwork(50, 10, 2), 1), turned(artwork(50, 10, 3), 3)});
    layout.optimizeArrangement(true, 0.0);
    EXPECT_EQ(rotations(layout), (Rotations{0, 0, 2}));
    EXPECT_EQ(layout.lengthInches(), 45.0);
}

TEST(OptimizeArrangement, neverTurnsSquares) {
    RollLayout layout({artwork(20, 20, 1), turned(artwork(30, 30, 2), 3), artwork(15, 15, 3)});
    layout.optimizeArrangement(true, 0.25);
    EXPECT_EQ(rotations(layout), (Rotations{0, 3, 0}));
}

TEST(OptimizeArrangement, doesNotOfferATurnThatIsTooWideForTheRoll) {
    RollLayout layout({artwork(10, 56, 1), artwork(40, 10, 2)});
    layout.optimizeArrangement(true, 0.0);
    EXPECT_EQ(rotations(layout), (Rotations{0, 0}));
}

TEST(OptimizeArrangement, leavesAnEmptyRollEmpty) {
    RollLayout layout({}, 24.0);
    layout.optimizeArrangement(true, 1.0);
    EXPECT_EQ(layout, RollLayout({}, 24.0));
}

TEST(OptimizeArrangement, passesOnWhatPackingRefuses) {
    RollLayout layout({artwork(10, 10, 1), artwork(10, 10, 1)});
    const auto optimize = [](RollLayout& l) { l.optimizeArrangement(true, 0.0); };
    EXPECT_EQ(untouchedRefusal(layout, optimize), "Duplicate artwork IDs.");
    layout.schemaVersion = 2;
    EXPECT_EQ(untouchedRefusal(layout, optimize), "This roll layout version is unsupported.");
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.optimizeArrangement(true, nan); }),
              "Artwork spacing must be a valid nonnegative value in inches.");
    RollLayout narrow({artwork(20, 10, 1)}, 24.0);
    EXPECT_EQ(untouchedRefusal(narrow, optimize),
              "The artwork width plus two 2.5-inch manual-trim borders must not exceed 24 inches. Change its size or "
              "rotate it explicitly.");
}

TEST(OptimizeArrangement, packsTenThousandEqualArtworks) {
    RollLayout layout;
    for (unsigned number = 0; number < 10'000; ++number) {
        layout.items.append(artwork(15, 10, number));
    }
    layout.optimizeArrangement(true, 0.0);
    // Three frames of 20 x 15 inches to a row.
    EXPECT_EQ(layout.lengthInches(), 3334 * 15.0);
    EXPECT_EQ(rotations(layout), Rotations(10'000, 0));
}

TEST(OptimizeArrangement, copesWithEveryLengthThatAnArtworkCanHave) {
    // So long that no coordinate beyond it is told from its neighbours to a thousandth of an inch.
    RollLayout layout({artwork(10, 1e12, 1), artwork(20, 30, 2), artwork(10, 1e9, 3)});
    layout.optimizeArrangement(true, 0.5);
    EXPECT_EQ(layout.lengthInches(), 1e12 + 5.0);
    EXPECT_EQ(test::messageOf(layout.exportValidationError()), "(none)");
}

// The parts of the search

TEST(BeamWidth, narrowsWithTheNumberOfArtworks) {
    EXPECT_EQ(RollOptimization::beamWidth(0), 6U);
    EXPECT_EQ(RollOptimization::beamWidth(50), 6U);
    EXPECT_EQ(RollOptimization::beamWidth(51), 2U);
    EXPECT_EQ(RollOptimization::beamWidth(100), 2U);
    EXPECT_EQ(RollOptimization::beamWidth(101), 1U);
}

TEST(OptimizedPackingOrders, addTheLongerAndTheShorterSide) {
    const auto orders = RollOptimization::optimizedPackingOrders(
        {frame(20, 20, 1), frame(8, 60, 2), frame(40, 7, 3), frame(35, 40, 4)});
    ASSERT_EQ(orders.size(), 8U);
    EXPECT_EQ(orders[6], (RollPacking::Order{1, 2, 3, 0})); // 60, 40 and 40, 20
    EXPECT_EQ(orders[7], (RollPacking::Order{3, 0, 1, 2})); // 35, 20, 8, 7
}

TEST(OptimizedPackingOrders, dropRepetitions) {
    EXPECT_EQ(RollOptimization::optimizedPackingOrders({frame(10, 20, 1), frame(20, 10, 2)}), (Orders{{0, 1}, {1, 0}}));
    EXPECT_EQ(RollOptimization::optimizedPackingOrders({}), (Orders{{}}));
}

TEST(RotatingVariants, areTheArtworkAndItsTurnUnlessItIsASquareOrTooWide) {
    const auto variants = RollOptimization::variants(
        {artwork(30, 20, 1), artwork(20, 20, 2), artwork(20, 56, 3), artwork(20, 20 + 1e-3, 4)}, 60.0);
    ASSERT_EQ(variants.size(), 4U);
    ASSERT_EQ(variants[0].size(), 2U);
    EXPECT_FALSE(variants[0][0].isTurned);
    EXPECT_EQ(variants[0][0].frame, (Size{35, 25}));
    EXPECT_TRUE(variants[0][1].isTurned);
    EXPECT_EQ(variants[0][1].frame, (Size{25, 35}));
    EXPECT_EQ(variants[0][1].artwork.rotationQuarterTurns, 1);
    EXPECT_EQ(variants[1].size(), 1U);
    EXPECT_EQ(variants[2].size(), 1U);
    EXPECT_EQ(variants[3].size(), 2U);
}

TEST(RotatingVariants, takeForASquareWhatIsOneByTheTolerance) {
    RollArtwork almost = artwork(1000, 1000.0001);
    almost.pixelWidth = 10'000'000;
    almost.pixelHeight = 10'000'001;
    almost.widthInches = 0.004; // 4e-10 inches less than its height
    EXPECT_EQ(RollOptimization::variants({almost}, 60.0).at(0).size(), 1U);
    almost.widthInches = 0.04;
    EXPECT_EQ(RollOptimization::variants({almost}, 60.0).at(0).size(), 2U);
}

TEST(RotatingArrangements, areNoneIfAnArtworkFindsNoPlace) {
    const auto variants = RollOptimization::variants({artwork(10, 10, 1), artwork(10, 20, 2)}, 60.0);
    EXPECT_TRUE(
        RollOptimization::rotatingArrangements(variants, {0, 1}, {.gap = 1e300, .rollWidth = 60.0, .beamWidth = 6})
            .empty());
}

TEST(RotatingArrangements, areAsManyAsTheBeamIsWide) {
    const auto variants = RollOptimization::variants({artwork(10, 20, 1), artwork(10, 20, 2)}, 60.0);
    const auto arrangements = [&](std::size_t beamWidth) {
        return RollOptimization::rotatingArrangements(variants, {0, 1},
                                                      {.gap = 0.0, .rollWidth = 60.0, .beamWidth = beamWidth});
    };
    EXPECT_EQ(arrangements(6).size(), 4U);
    EXPECT_EQ(arrangements(2).size(), 2U);
    EXPECT_EQ(rotations(RollLayout(arrangements(1).at(0))), (Rotations{1, 1})); // the shorter roll
}

TEST(PrefersOptimized, looksAtTheLengthThenTheTurnsThenTheCompactness) {
    using RollOptimization::prefersOptimized;
    const QList<RollArtwork> original{artworkAt(0, 0, 10, 10, 1), artworkAt(0, 15, 10, 10, 2)};
    QList<RollArtwork> shorter = original;
    shorter[1].yInches -= 2e-9;
    QList<RollArtwork> turnedOnce = original;
    turnedOnce[0].rotationQuarterTurns = 2;
    QList<RollArtwork> longer = original;
    longer[1].yInches += 1e-12;
    QList<RollArtwork> farther = original;
    farther[1].xInches = 1.0;
    EXPECT_TRUE(prefersOptimized(shorter, original, original));
    EXPECT_FALSE(prefersOptimized(longer, original, original)) << "any greater length loses";
    EXPECT_FALSE(prefersOptimized(original, turnedOnce, turnedOnce));
    EXPECT_TRUE(prefersOptimized(original, turnedOnce, original));
    EXPECT_TRUE(prefersOptimized(original, farther, original));
    EXPECT_FALSE(prefersOptimized(original, original, original));
    EXPECT_FALSE(prefersOptimized({}, {}, {}));
}

// changeRollWidth

TEST(ChangeRollWidth, looksAtTheNewWidthFirst) {
    RollLayout layout({artwork(10, 10, 1), artwork(10, 10, 1)}, 70.0);
    layout.schemaVersion = 2;
    const auto to = [&](double width) {
        return untouchedRefusal(layout, [&](RollLayout& l) { l.changeRollWidth(width, true); });
    };
    for (const double bad : {70.0, 5.0, nan, infinity, -infinity, 60.0000000001}) {
        EXPECT_EQ(to(bad), badRollWidth);
    }
    EXPECT_EQ(to(40), "This roll layout version is unsupported.");
    layout.schemaVersion = 1;
    EXPECT_EQ(to(40), badRollWidth);
    layout.widthInches = 60.0;
    EXPECT_EQ(to(40), "Duplicate artwork IDs.");
}

TEST(ChangeRollWidth, namesTheFirstArtworkThatIsInvalidInItself) {
    RollLayout layout({artwork(50, 10, 1), artwork(10, 10, 2)});
    layout.items[1].rotationQuarterTurns = 4;
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.changeRollWidth(20, false); }),
              "art2：Rotation must be 0, 90, 180 or 270 degrees.");
}

TEST(ChangeRollWidth, refusesByNameWhatDoesNotFitAndChangesNothing) {
    RollLayout layout({artworkAt(0, 0, 50, 10, 1), artworkAt(0, 15, 10, 10, 2), artworkAt(0, 30, 30, 40, 3)});
    const auto narrow = [&](bool allowQuarterTurns) {
        return untouchedRefusal(layout, [&](RollLayout& l) { l.changeRollWidth(24.5, allowQuarterTurns); });
    };
    EXPECT_EQ(narrow(false), "These artworks cannot fit a 24.5-inch roll at their current print sizes with 2.5-inch "
                             "borders on every side: art1, art3. Change their sizes first. The roll width and "
                             "layout were not changed.");
    EXPECT_EQ(narrow(true), "These artworks cannot fit a 24.5-inch roll at their current print sizes with 2.5-inch "
                            "borders on every side: art3. Change their sizes first. The roll width and layout were "
                            "not changed.");
    const test::InChinese chinese;
    EXPECT_EQ(narrow(false), "以下作品按当前打印尺寸加四边各 2.5 英寸白边，无法放入 24.5 英寸卷布：art1、art3。"
                             "请先修改其尺寸。卷布宽度和排版均未改动。");
}

TEST(ChangeRollWidth, turnsOnlyWhatMustBeTurnedAndPacks) {
    RollLayout layout({artworkAt(0, 40, 30, 10, 1), artworkAt(0, 90, 10, 15, 2)});
    layout.changeRollWidth(20.0, true);
    EXPECT_EQ(layout.widthInches, 20.0);
    EXPECT_EQ(rotations(layout), (Rotations{1, 1})); // the second one saves canvas so
    EXPECT_EQ(layout.items.at(0).widthInches, 10.0);
    EXPECT_EQ(layout.lengthInches(), 50.0);
}

TEST(ChangeRollWidth, packsAnewWithoutAGapWhenTheWidthIsTheSame) {
    RollLayout layout({artworkAt(0, 0, 20, 10, 1), artworkAt(0, 30, 20, 10, 2)});
    layout.changeRollWidth(60.0, false);
    EXPECT_EQ(layout.items.at(1).xInches, 25.0);
    EXPECT_EQ(layout.lengthInches(), 15.0);
}

TEST(ChangeRollWidth, keepsAFrameThatIsTooWideByTheToleranceOnly) {
    RollLayout layout({artwork(19, 10, 1)});
    layout.changeRollWidth(24.0 - 5e-10, true);
    EXPECT_EQ(rotations(layout), (Rotations{0}));
    EXPECT_EQ(untouchedRefusal(layout, [](RollLayout& l) { l.changeRollWidth(24.0 - 2e-9, false); }),
              "These artworks cannot fit a 24-inch roll at their current print sizes with 2.5-inch borders on every "
              "side: art1. Change their sizes first. The roll width and layout were not changed.");
}

TEST(ChangeRollWidth, changesTheWidthOfAnEmptyRoll) {
    RollLayout layout;
    layout.changeRollWidth(42.0, false);
    EXPECT_EQ(layout, RollLayout({}, 42.0));
}

} // namespace
} // namespace orvex
