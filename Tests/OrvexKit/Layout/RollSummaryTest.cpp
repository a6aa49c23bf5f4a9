#include "Layout/RollSummary.h"

#include "LayoutFixtures.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::artworkAt;

TEST(RollUtilization, isThePartOfTheCanvasThatTrimFramesOrImagesCover) {
    const RollLayout layout({artworkAt(0, 0, 20, 10), artworkAt(25, 0, 10, 25, 2)});
    EXPECT_EQ(layout.lengthInches(), 30.0);
    EXPECT_EQ(utilizationPercent(layout), (25.0 * 15.0 + 15.0 * 30.0) / (60.0 * 30.0) * 100.0);
    EXPECT_EQ(imageUtilizationPercent(layout), (20.0 * 10.0 + 10.0 * 25.0) / (60.0 * 30.0) * 100.0);
}

TEST(RollUtilization, isNoneOfAnEmptyRollAndAllAtTheMost) {
    const RollLayout empty;
    EXPECT_EQ(utilizationPercent(empty), 0.0);
    EXPECT_EQ(imageUtilizationPercent(empty), 0.0);
    const RollLayout overlapping({artworkAt(0, 0, 55, 10), artworkAt(0, 0, 55, 10, 2)});
    EXPECT_EQ(utilizationPercent(overlapping), 100.0);
    EXPECT_EQ(imageUtilizationPercent(overlapping), 100.0);
}

} // namespace
} // namespace orvex
