#include "Layout/RollPacking.h"

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

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

/// An artwork by the size of its frame.
RollArtwork frame(double width, double height, unsigned number) {
    return artwork(width - 5.0, height - 5.0, number);
}

RollArtwork frameAt(double x, double y, double width, double height, unsigned number) {
    return artworkAt(x, y, width - 5.0, height - 5.0, number);
}

std::vector<Point> positions(const QList<RollArtwork>& items) {
    std::vector<Point> result;
    for (const RollArtwork& item : items) {
        result.push_back({item.xInches, item.yInches});
    }
    return result;
}

using Points = std::vector<Point>;

// autoArrange

TEST(AutoArrange, leavesAnEmptyLayoutAlone) {
    RollLayout layout({}, 42.0);
    layout.autoArrange(1.0);
    EXPECT_EQ(layout, RollLayout({}, 42.0));
}

TEST(AutoArrange, putsASingleArtworkAtTheCorner) {
    RollLayout layout({frameAt(12, 34, 30, 10, 1)});
    layout.autoArrange(3.0);
    EXPECT_EQ(positions(layout.items), (Points{{0, 0}}));
}

TEST(AutoArrange, putsTwoHalvesSideBySide) {
    RollLayout layout({frame(30, 10, 1), frame(30, 10, 2)});
    layout.autoArrange(0.0);
    EXPECT_EQ(positions(layout.items), (Points{{0, 0}, {30, 0}}));
    EXPECT_EQ(layout.lengthInches(), 10.0);
}

TEST(AutoArrange, putsTwoHalvesBelowEachOtherWhereTheGapNeedsIt) {
    RollLayout layout({frame(30, 10, 1), frame(30, 10, 2)});
    layout.autoArrange(1.0);
    EXPECT_EQ(positions(layout.items), (Points{{0, 0}, {0, 11}}));
}

TEST(AutoArrange, fillsTheSpaceBesideATallFrame) {
    RollLayout layout({frame(40, 30, 1), frame(20, 10, 2), frame(20, 10, 3)});
    EXPECT_EQ(RollLayout(*RollPacking::shelfArrangement(layout.items, 0.0, 60.0)).lengthInches(), 40.0);
    layout.autoArrange(0.0);
    EXPECT_EQ(layout.lengthInches(), 30.0);
    EXPECT_EQ(positions(layout.items), (Points{{0, 0}, {40, 0}, {40, 10}}));
}

TEST(AutoArrange, changesPositionsOnly) {
    RollLayout layout({frameAt(1, 2, 40, 30, 1), frameAt(3, 4, 20, 10, 2), frameAt(5, 6, 25, 60, 3)});
    layout.items[1].rotationQuarterTurns = 2;
    const RollLayout before = layout;
    layout.autoArrange(0.5);
    ASSERT_EQ(layout.items.size(), 3);
    for (qsizetype index = 0; index < 3; ++index) {
        RollArtwork arranged = layout.items.at(index);
        arranged.xInches = before.items.at(index).xInches;
        arranged.yInches = before.items.at(index).yInches;
        EXPECT_EQ(arranged, before.items.at(index));
    }
}

TEST(AutoArrange, changesNothingTheSecondTime) {
    RollLayout layout({frame(33, 21, 1), frame(20, 47, 2), frame(11, 8, 3), frame(27, 30, 4), frame(40, 9, 5)});
    layout.autoArrange(0.25);
    const Snapshot once(layout);
    layout.autoArrange(0.25);
    EXPECT_EQ(Snapshot(layout), once);
}

TEST(AutoArrange, keepsAPresentLayoutThatIsShorterThanItsOwnSolutions) {
    // Five frames in a pinwheel: no order of single placements finds it.
    const RollLayout pinwheel({frameAt(0, 0, 40, 20, 1), frameAt(40, 0, 20, 40, 2), frameAt(20, 40, 40, 20, 3),
                               frameAt(0, 20, 20, 40, 4), frameAt(20, 20, 20, 20, 5)});
    RollLayout scattered = pinwheel;
    for (RollArtwork& item : scattered.items) {
        item.yInches += 1000.0 * item.id.data1;
    }
    scattered.autoArrange(0.0);
    EXPECT_GT(scattered.lengthInches(), 60.0);
    RollLayout layout = pinwheel;
    layout.autoArrange(0.0);
    EXPECT_EQ(layout, pinwheel);
}

TEST(AutoArrange, arrangesALayoutWithBadPositions) {
    RollLayout layout({frameAt(nan, -infinity, 30, 10, 1), frameAt(-4, 1e300, 30, 10, 2)});
    layout.autoArrange(0.0);
    EXPECT_EQ(positions(layout.items), (Points{{0, 0}, {30, 0}}));
}

std::string arrangeRefusal(RollLayout& layout, double gap) {
    const Snapshot before(layout);
    const std::string refusal = refusalOf([&] { layout.autoArrange(gap); });
    EXPECT_EQ(Snapshot(layout), before);
    return refusal;
}

TEST(AutoArrange, refusesInTheOrderOfItsChecks) {
    RollLayout layout({frame(70, 10, 1), frame(30, 10, 1)}, 61.0);
    layout.schemaVersion = 2;
    for (const double gap : {-1.0, nan, infinity}) {
        EXPECT_EQ(arrangeRefusal(layout, gap), "Artwork spacing must be a valid nonnegative value in inches.");
    }
    EXPECT_EQ(arrangeRefusal(layout, 0.0), "This roll layout version is unsupported.");
    layout.schemaVersion = 1;
    EXPECT_EQ(arrangeRefusal(layout, 0.0), "Roll width must be a valid value greater than 5 and no more than 60 inches "
                                           "to retain both 2.5-inch white borders.");
    layout.widthInches = 60.0;
    EXPECT_EQ(arrangeRefusal(layout, 0.0), "Duplicate artwork IDs.");
    layout.items[1].id = test::id(2);
    EXPECT_EQ(arrangeRefusal(layout, 0.0),
              "The artwork width plus two 2.5-inch manual-trim borders must not exceed 60 inches. Reduce its size.");
}

TEST(AutoArrange, refusesAnArtworkThatIsWiderThanThisRollWithoutItsTitle) {
    RollLayout layout({frame(30, 10, 1)}, 29.5);
    EXPECT_EQ(arrangeRefusal(layout, 0.0),
              "The artwork width plus two 2.5-inch manual-trim borders must not exceed 29.5 inches. Change its size or "
              "rotate it explicitly.");
}

TEST(AutoArrange, refusesWhatNoCandidateCanPlace) {
    RollLayout layout({frame(60, 10, 1), frame(60, 10, 2)});
    EXPECT_EQ(arrangeRefusal(layout, 1e300),
              "Cannot arrange the layout at valid finite coordinates. The canvas was not changed.");
}

TEST(AutoArrange, refusesInChinese) {
    const test::InChinese chinese;
    RollLayout layout({frame(60, 10, 1), frame(60, 10, 2)});
    EXPECT_EQ(arrangeRefusal(layout, 1e300), "无法在有效的坐标范围内自动排版。画布未改动。");
    EXPECT_EQ(arrangeRefusal(layout, -1.0), "作品间距必须是有效的非负数值（英寸）。");
}

// shelfArrangement

TEST(ShelfArrangement, fillsRowsInListOrder) {
    const QList<RollArtwork> items{frame(30, 10, 1), frame(20, 25, 2), frame(15, 10, 3), frame(50, 8, 4)};
    const auto shelf = RollPacking::shelfArrangement(items, 1.0, 60.0);
    ASSERT_TRUE(shelf);
    EXPECT_EQ(positions(*shelf), (Points{{0, 0}, {31, 0}, {0, 26}, {0, 37}}));
}

TEST(ShelfArrangement, givesAnEmptyListBack) {
    EXPECT_EQ(RollPacking::shelfArrangement({}, 1.0, 60.0), QList<RollArtwork>());
}

TEST(ShelfArrangement, fillsARowByTheTolerance) {
    RollArtwork wider = frame(30, 10, 2);
    wider.widthInches = 25.0000000005;
    const auto shelf = RollPacking::shelfArrangement({frame(30, 10, 1), wider}, 0.0, 60.0);
    ASSERT_TRUE(shelf);
    EXPECT_EQ(positions(*shelf), (Points{{0, 0}, {30, 0}}));
}

TEST(ShelfArrangement, isAbsentBeyondThePrecision) {
    EXPECT_EQ(RollPacking::shelfArrangement({frame(60, 10, 1), frame(60, 10, 2)}, 1e300, 60.0), std::nullopt);
}

// packingOrders

using Orders = std::vector<RollPacking::Order>;

TEST(PackingOrders, areSixAtMost) {
    EXPECT_EQ(RollPacking::packingOrders(
                  {frame(10, 30, 1), frame(40, 7, 2), frame(20, 20, 3), frame(12, 28, 4), frame(45, 6, 5)}),
              (Orders{{0, 1, 2, 3, 4},    // as they stand
                      {0, 3, 2, 1, 4},    // tallest first
                      {4, 1, 2, 3, 0},    // widest first
                      {2, 3, 0, 1, 4},    // largest first
                                          // shortest first repeats the widest first
                      {4, 1, 0, 3, 2}})); // smallest first
    EXPECT_EQ(
        RollPacking::packingOrders({frame(20, 20, 1), frame(10, 30, 2), frame(40, 7, 3), frame(35, 40, 4)}).size(), 6U);
}

TEST(PackingOrders, breakTiesByTheSecondaryDescendingThenByIndex) {
    EXPECT_EQ(RollPacking::packingOrders({frame(10, 20, 1), frame(30, 20, 2), frame(10, 20, 3), frame(30, 8, 4)}),
              (Orders{{0, 1, 2, 3},
                      {1, 0, 2, 3},    // heights descending, widths descending
                      {1, 3, 0, 2},    // widths descending, heights descending; areas the same
                      {3, 1, 0, 2},    // heights ascending, widths still descending
                      {0, 2, 3, 1}})); // areas ascending
}

TEST(PackingOrders, areOneForEqualSizesAndForNone) {
    EXPECT_EQ(RollPacking::packingOrders({frame(10, 20, 1), frame(10, 20, 2)}), (Orders{{0, 1}}));
    EXPECT_EQ(RollPacking::packingOrders({}), (Orders{{}}));
}

// compactArrangement

TEST(CompactArrangement, placesTheArtworksInTheOrderGiven) {
    const auto arranged =
        RollPacking::compactArrangement({frame(40, 10, 1), frame(30, 20, 2), frame(20, 5.5, 3)}, {1, 0, 2}, 0.0, 60.0);
    ASSERT_TRUE(arranged);
    EXPECT_EQ(positions(*arranged), (Points{{0, 20}, {0, 0}, {30, 0}}));
}

TEST(CompactArrangement, isAbsentIfAnArtworkFindsNoPlace) {
    EXPECT_EQ(RollPacking::compactArrangement({frame(40, 10, 1)}, {0}, 0.0, 39.0), std::nullopt);
    EXPECT_EQ(RollPacking::compactArrangement({frame(60, 10, 1), frame(60, 10, 2)}, {0, 1}, 1e300, 60.0), std::nullopt);
}

// vacancy

using Occupied = RollPacking::Occupied;

TEST(Vacancy, isTheCornerOfAnEmptyRoll) {
    EXPECT_EQ(RollPacking::vacancy(10, 10, {}, 5.0, 60.0), (Point{0, 0}));
}

TEST(Vacancy, isOnlyAtZeroForAFrameAsWideAsTheRoll) {
    EXPECT_EQ(RollPacking::vacancy(60, 10, {{0, 0, 0, 10, 12}}, 0.0, 60.0), (Point{0, 12}));
    EXPECT_EQ(RollPacking::vacancy(60.0000000005, 10, {{0, 0, 0, 10, 12}}, 0.0, 60.0), (Point{0, 12}));
}

TEST(Vacancy, isAbsentForAFrameThatCannotBePlaced) {
    EXPECT_EQ(RollPacking::vacancy(60.00000001, 10, {}, 0.0, 60.0), std::nullopt);
    for (const double bad : {0.0, -1.0, nan, infinity}) {
        EXPECT_EQ(RollPacking::vacancy(bad, 10, {}, 0.0, 60.0), std::nullopt);
        EXPECT_EQ(RollPacking::vacancy(10, bad, {}, 0.0, 60.0), std::nullopt);
    }
}

TEST(Vacancy, isAbsentWhereNoCoordinateIsFinite) {
    EXPECT_EQ(RollPacking::vacancy(60, 10, {{0, 0, 0, 60, largest}}, largest, 60.0), std::nullopt);
    EXPECT_EQ(RollPacking::vacancy(60, largest, {{0, 0, 0, 60, largest}}, 0.0, 60.0), std::nullopt);
}

TEST(Vacancy, isTheLowestThenTheLeftmostPlace) {
    const Occupied boxes{{0, 0, 0, 20, 20}, {1, 20, 0, 20, 10}, {2, 40, 0, 20, 10}};
    EXPECT_EQ(RollPacking::vacancy(20, 5, boxes, 0.0, 60.0), (Point{20, 10}));
    EXPECT_EQ(RollPacking::vacancy(41, 5, boxes, 0.0, 60.0), (Point{0, 20}));
}

TEST(Vacancy, usesAHoleThatTheFrameFits) {
    const Occupied boxes{{0, 0, 0, 60, 10}, {1, 0, 20, 60, 10}};
    EXPECT_EQ(RollPacking::vacancy(30, 10, boxes, 0.0, 60.0), (Point{0, 10}));
    EXPECT_EQ(RollPacking::vacancy(30, 10.0000000005, boxes, 0.0, 60.0), (Point{0, 10}));
    EXPECT_EQ(RollPacking::vacancy(30, 10.00000001, boxes, 0.0, 60.0), (Point{0, 30}));
    EXPECT_EQ(RollPacking::vacancy(30, 6, boxes, 2.0, 60.0), (Point{0, 12}));
    EXPECT_EQ(RollPacking::vacancy(30, 6.5, boxes, 2.0, 60.0), (Point{0, 32}));
}

TEST(Vacancy, standsAgainstTheLeftSideOfABox) {
    const Occupied boxes{{0, 0, 0, 30, 10}, {1, 50, 0, 10, 40}};
    EXPECT_EQ(RollPacking::vacancy(20, 10, boxes, 0.0, 60.0), (Point{30, 0}));
    EXPECT_EQ(RollPacking::vacancy(19, 10, boxes, 1.0, 60.0), (Point{0, 11}));
    EXPECT_EQ(RollPacking::vacancy(18, 10, boxes, 1.0, 60.0), (Point{31, 0}));
}

TEST(Vacancy, prefersTheLeftOfPlacesThatAreEquallyHighByTheTolerance) {
    const Occupied boxes{{0, 0, 0, 30, 10.0000000005}, {1, 30, 0, 30, 10}};
    EXPECT_EQ(RollPacking::vacancy(30, 5, boxes, 0.0, 60.0), (Point{0, 10.0000000005}));
}

// isMoreCompact

QList<RollArtwork> pairAt(Point first, Point second) {
    return {frameAt(first.x, first.y, 10, 10, 1), frameAt(second.x, second.y, 10, 10, 2)};
}

TEST(IsMoreCompact, comparesTheLengthExactly) {
    const auto longer = pairAt({0, 0}, {0, 20 + 1e-12});
    const auto shorter = pairAt({0, 20}, {30, 20});
    EXPECT_TRUE(RollPacking::isMoreCompact(shorter, longer));
    EXPECT_FALSE(RollPacking::isMoreCompact(longer, shorter));
}

TEST(IsMoreCompact, thenTheSumOfYWithTheTolerance) {
    const auto lower = pairAt({0, 5}, {40, 20});
    const auto higher = pairAt({0, 4}, {50, 20});
    EXPECT_TRUE(RollPacking::isMoreCompact(higher, lower));
    EXPECT_FALSE(RollPacking::isMoreCompact(lower, higher));
    const auto almost = pairAt({0, 5 - 1e-12}, {41, 20});
    EXPECT_FALSE(RollPacking::isMoreCompact(almost, lower)); // A tie in y: the sum of x decides.
    EXPECT_TRUE(RollPacking::isMoreCompact(lower, almost));
}

TEST(IsMoreCompact, thenTheSumOfX) {
    EXPECT_TRUE(RollPacking::isMoreCompact(pairAt({9, 0}, {20, 20}), pairAt({10, 0}, {20, 20})));
    EXPECT_FALSE(RollPacking::isMoreCompact(pairAt({10, 0}, {20, 20}), pairAt({9, 0}, {20, 20})));
}

TEST(IsMoreCompact, thenTheListPositionByPosition) {
    const auto first = pairAt({0, 0}, {20, 20});
    const auto swapped = pairAt({20, 20}, {0, 0});
    EXPECT_TRUE(RollPacking::isMoreCompact(first, swapped));
    EXPECT_FALSE(RollPacking::isMoreCompact(swapped, first));
    EXPECT_TRUE(RollPacking::isMoreCompact(pairAt({0, 20}, {20, 20}), pairAt({20, 20}, {0, 20})));
    EXPECT_FALSE(RollPacking::isMoreCompact(first, first));
    EXPECT_FALSE(RollPacking::isMoreCompact({}, {}));
}

} // namespace
} // namespace orvex
