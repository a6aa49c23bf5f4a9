#include "BoardZoom.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(BoardZoom, growsAndShrinksByAQuarter) {
    EXPECT_EQ(BoardZoom::zoomedIn(BoardZoom::fit), 1.25);
    EXPECT_EQ(BoardZoom::zoomedIn(1.25), 1.5625);
    EXPECT_EQ(BoardZoom::zoomedOut(BoardZoom::fit), 0.8);
}

TEST(BoardZoom, stopsAtItsLimits) {
    EXPECT_EQ(BoardZoom::zoomedIn(2.9), 3.0);
    EXPECT_EQ(BoardZoom::zoomedIn(3.0), 3.0);
    EXPECT_EQ(BoardZoom::zoomedOut(0.21), 0.2);
    EXPECT_EQ(BoardZoom::zoomedOut(0.2), 0.2);
}

TEST(BoardZoom, isShownInWholePercent) {
    EXPECT_EQ(BoardZoom::text(BoardZoom::fit).toStdString(), "100%");
    EXPECT_EQ(BoardZoom::text(1.5625).toStdString(), "156%");
    EXPECT_EQ(BoardZoom::text(0.2).toStdString(), "20%");
    EXPECT_EQ(BoardZoom::text(3.0).toStdString(), "300%");
}

} // namespace
} // namespace orvex
