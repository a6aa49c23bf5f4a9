#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::artworkAt;

TEST(RollRemoval, deletesEveryArtworkWithTheIdAndMovesNoOther) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(15, 0, 10, 10, 2), artworkAt(30, 0, 10, 10, 1),
                       artworkAt(0, 15, 10, 10, 3)});
    layout.remove(test::id(1));
    EXPECT_EQ(layout, RollLayout({artworkAt(15, 0, 10, 10, 2), artworkAt(0, 15, 10, 10, 3)}));
}

TEST(RollRemoval, changesNothingForAnUnknownId) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1)}, 70.0);
    layout.schemaVersion = 9;
    const test::Snapshot before(layout);
    layout.remove(test::id(2));
    EXPECT_EQ(test::Snapshot(layout), before);
}

TEST(RollRemoval, doesNotAskWhetherTheLayoutIsValid) {
    RollLayout layout({artworkAt(-5, 0, 10, 10, 1)}, 70.0);
    layout.remove(test::id(1));
    EXPECT_TRUE(layout.items.isEmpty());
}

TEST(RollRemovalWithPacking, arrangesTheOthersAnew) {
    RollLayout layout({artworkAt(0, 0, 50, 10, 1), artworkAt(0, 15, 20, 20, 2), artworkAt(0, 40, 10, 50, 3)});
    EXPECT_TRUE(layout.removeAndOptimize(test::id(2), true, 0.0));
    ASSERT_EQ(layout.items.size(), 2);
    EXPECT_EQ(layout.items.at(1).id, test::id(3));
    EXPECT_EQ(layout.items.at(1).rotationQuarterTurns, 1);
    EXPECT_EQ(layout.lengthInches(), 30.0);
}

TEST(RollRemovalWithPacking, leavesAnEmptyRollBehindTheLastArtwork) {
    RollLayout layout({artworkAt(3, 4, 10, 10, 1)}, 42.0);
    EXPECT_TRUE(layout.removeAndOptimize(test::id(1), true, 0.5));
    EXPECT_EQ(layout, RollLayout({}, 42.0));
}

TEST(RollRemovalWithPacking, changesNothingForAnUnknownIdWhateverTheLayout) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(0, 0, 10, 10, 1)}, 70.0);
    layout.schemaVersion = 9;
    const test::Snapshot before(layout);
    EXPECT_FALSE(layout.removeAndOptimize(test::id(2), true, -1.0));
    EXPECT_EQ(test::Snapshot(layout), before);
}

TEST(RollRemovalWithPacking, removesNothingFromALayoutWithRepeatedIds) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(20, 0, 10, 10, 1)});
    const auto removal = [](RollLayout& l) { l.removeAndOptimize(test::id(1), true, 0.0); };
    EXPECT_EQ(test::untouchedRefusal(layout, removal),
              "Duplicate artwork IDs. No artwork was removed and the layout was not changed.");
    const test::InChinese chinese;
    EXPECT_EQ(test::untouchedRefusal(layout, removal), "作品 ID 重复。未移除任何作品，排版未改动。");
}

TEST(RollRemovalWithPacking, keepsTheArtworkIfTheOthersCannotBePacked) {
    RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(20, 0, 10, 10, 2)});
    layout.items[1].rotationQuarterTurns = 7;
    EXPECT_EQ(test::untouchedRefusal(layout, [](RollLayout& l) { l.removeAndOptimize(test::id(1), true, 0.0); }),
              "Rotation must be 0, 90, 180 or 270 degrees.");
}

} // namespace
} // namespace orvex
