#include "CUPSService.h"

#include "CUPSInspectionError.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Timeout {
    const char* name;
    double given;
    double held;
};

void PrintTo(const Timeout& row, std::ostream* out) {
    *out << row.name;
}

class TimeoutTest : public ::testing::TestWithParam<Timeout> {};

struct Limit {
    const char* name;
    qint64 given;
    qint64 held;
};

void PrintTo(const Limit& row, std::ostream* out) {
    *out << row.name;
}

class LimitTest : public ::testing::TestWithParam<Limit> {};

} // namespace

TEST_P(TimeoutTest, IsKeptWithinItsBounds) {
    EXPECT_EQ(CUPSService(GetParam().given, 262144).timeout(), GetParam().held);
}

INSTANTIATE_TEST_SUITE_P(CUPSService, TimeoutTest,
                         ::testing::Values(Timeout{"Shortest", 0.2, 0.2}, Timeout{"Longest", 30.0, 30.0},
                                           Timeout{"Usual", 6.0, 6.0},
                                           Timeout{"JustTooShort", 0.19999999999999998, 0.2},
                                           Timeout{"JustLongEnough", 0.20000000000000004, 0.20000000000000004},
                                           Timeout{"JustShortEnough", 29.999999999999996, 29.999999999999996},
                                           Timeout{"JustTooLong", 30.000000000000004, 30.0}, Timeout{"Zero", 0.0, 0.2},
                                           Timeout{"Negative", -6.0, 0.2}, Timeout{"Minute", 60.0, 30.0},
                                           Timeout{"Endless", infinity, 30.0},
                                           Timeout{"NegativelyEndless", -infinity, 0.2}),
                         test::RowName());

TEST(CUPSService, HoldsATimeoutWithinTheBoundsWhateverItIsGiven) {
    const double held = CUPSService(std::numeric_limits<double>::quiet_NaN(), 262144).timeout();
    EXPECT_GE(held, 0.2);
    EXPECT_LE(held, 30.0);
}

TEST_P(LimitTest, IsKeptWithinItsBounds) {
    EXPECT_EQ(CUPSService(6.0, GetParam().given).outputLimit(), GetParam().held);
}

INSTANTIATE_TEST_SUITE_P(CUPSService, LimitTest,
                         ::testing::Values(Limit{"Smallest", 1024, 1024}, Limit{"Largest", 1048576, 1048576},
                                           Limit{"Usual", 262144, 262144}, Limit{"JustTooSmall", 1023, 1024},
                                           Limit{"JustLargeEnough", 1025, 1025},
                                           Limit{"JustSmallEnough", 1048575, 1048575},
                                           Limit{"JustTooLarge", 1048577, 1048576}, Limit{"Zero", 0, 1024},
                                           Limit{"Negative", -1, 1024},
                                           Limit{"TheLeast", std::numeric_limits<qint64>::min(), 1024},
                                           Limit{"TheMost", std::numeric_limits<qint64>::max(), 1048576}),
                         test::RowName());

TEST(CUPSService, KeepsBothLimitsOfItsOwn) {
    const CUPSService least(0, 0);
    EXPECT_EQ(least.timeout(), 0.2);
    EXPECT_EQ(least.outputLimit(), 1024);
    const CUPSService most(60, 10000000);
    EXPECT_EQ(most.timeout(), 30.0);
    EXPECT_EQ(most.outputLimit(), 1048576);
}

TEST(CUPSInspectionError, ShowsItsMessageAsItStands) {
    const QString message = test::text("Cannot read %1\n卷纸");
    EXPECT_EQ(CUPSInspectionError::inspectionFailed(message).message(), message);
    EXPECT_STREQ(CUPSInspectionError::inspectionFailed(message).what(), "Cannot read %1\n卷纸");
}

} // namespace orvex
