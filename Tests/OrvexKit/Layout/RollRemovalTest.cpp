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

} // namespace
} // namespace orvex
