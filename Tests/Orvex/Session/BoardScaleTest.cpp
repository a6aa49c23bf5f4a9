#include "BoardScale.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

TEST(BoardScale, TheRollFitsTheContainerWithRoomForTheRulersAtZoomOne) {
    EXPECT_EQ(BoardScale::pointsPerInch(648.0, 60.0, 1.0), 10.0);
    EXPECT_EQ(BoardScale::pointsPerInch(648.0, 60.0, 0.2), 2.0);
    EXPECT_EQ(BoardScale::pointsPerInch(648.0, 60.0, 3.0), 30.0);
}

TEST(BoardScale, ANarrowContainerStillShowsAPointForEachInch) {
    EXPECT_EQ(BoardScale::pointsPerInch(60.0, 60.0, 1.0), 1.0);
    EXPECT_EQ(BoardScale::pointsPerInch(0.0, 60.0, 2.0), 2.0);
}

TEST(BoardScale, TheCanvasDoesNotBecomeShorterDuringAGesture) {
    EXPECT_EQ(BoardScale::shownLengthInches(20.0, std::nullopt), 20.0);
    EXPECT_EQ(BoardScale::shownLengthInches(20.0, 30.0), 30.0);
    EXPECT_EQ(BoardScale::shownLengthInches(40.0, 30.0), 40.0);
}

TEST(BoardScale, MarksAcrossTheRollStandEveryFiveInchesUpToItsWidth) {
    EXPECT_EQ(BoardScale::horizontalMarks(20.0), (QList<double>{0.0, 5.0, 10.0, 15.0, 20.0}));
    EXPECT_EQ(BoardScale::horizontalMarks(24.9), (QList<double>{0.0, 5.0, 10.0, 15.0, 20.0}));
}

TEST(BoardScale, MarksAlongTheRollStandFartherApartOnLongOnes) {
    EXPECT_EQ(BoardScale::verticalMarks(12.0), (QList<double>{0.0, 5.0, 10.0}));
    EXPECT_EQ(BoardScale::verticalMarks(999.0).size(), 200);
    EXPECT_EQ(BoardScale::verticalMarks(1000.0)[1], 10.0);
    EXPECT_EQ(BoardScale::verticalMarks(9999.0).last(), 9990.0);
    EXPECT_EQ(BoardScale::verticalMarks(10000.0)[1], 100.0);
}

TEST(BoardScale, ACanvasWithoutLengthHasTheMarkOfItsStart) {
    EXPECT_EQ(BoardScale::verticalMarks(0.0), (QList<double>{0.0}));
}

TEST(BoardScale, MarksStayFewHoweverLongTheRollIs) {
    EXPECT_LE(BoardScale::verticalMarks(1e300).size(), 1001);
    EXPECT_TRUE(BoardScale::verticalMarks(std::numeric_limits<double>::infinity()).isEmpty());
    EXPECT_TRUE(BoardScale::verticalMarks(std::numeric_limits<double>::quiet_NaN()).isEmpty());
}

} // namespace orvex
