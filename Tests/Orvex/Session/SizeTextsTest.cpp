#include "SizeTexts.h"

#include "InLocale.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using test::InLocale;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(BatchNumber, hasAtMostSixFractionDigitsAndNoGrouping) {
    EXPECT_EQ(batchNumber(60.0).toStdString(), "60");
    EXPECT_EQ(batchNumber(0.1234567).toStdString(), "0.123457");
    EXPECT_EQ(batchNumber(123456.5).toStdString(), "123456.5");
    const InLocale german("de_DE");
    EXPECT_EQ(batchNumber(123456.5).toStdString(), "123456,5");
}

TEST(ArtworkSizeText, showsTwoDigitsForAQuarterInch) {
    EXPECT_EQ(artworkSizeText(24.0).toStdString(), "24.00");
    EXPECT_EQ(artworkSizeText(12.5).toStdString(), "12.50");
    EXPECT_EQ(artworkSizeText(12.25).toStdString(), "12.25");
    EXPECT_EQ(artworkSizeText(0.75).toStdString(), "0.75");
    EXPECT_EQ(artworkSizeText(-2.5).toStdString(), "-2.50");
    EXPECT_EQ(artworkSizeText(0.0).toStdString(), "0.00");
    EXPECT_EQ(artworkSizeText(1234.0).toStdString(), "1234.00");
}

TEST(ArtworkSizeText, showsWhatAnotherSizeNeeds) {
    EXPECT_EQ(artworkSizeText(12.3).toStdString(), "12.3");
    EXPECT_EQ(artworkSizeText(12.125).toStdString(), "12.125");
    EXPECT_EQ(artworkSizeText(100.0 / 3.0).toStdString(), "33.333333");
}

TEST(ArtworkSizeText, takesABillionthOfAnInchForRounding) {
    EXPECT_EQ(artworkSizeText(12.25 + 0.9e-9).toStdString(), "12.25");
    EXPECT_EQ(artworkSizeText(12.5 - 0.9e-9).toStdString(), "12.50");
    EXPECT_EQ(artworkSizeText(12.5 + 2e-6).toStdString(), "12.500002");
    EXPECT_EQ(artworkSizeText(12.5 + 1.1e-9).toStdString(), "12.5");
}

TEST(ArtworkSizeText, showsNumbersThatAreNoSize) {
    EXPECT_EQ(artworkSizeText(infinity).toStdString(), "inf");
    EXPECT_EQ(artworkSizeText(std::numeric_limits<double>::quiet_NaN()).toStdString(), "nan");
    EXPECT_FALSE(artworkSizeText(std::numeric_limits<double>::max()).contains(u'.'));
}

TEST(ArtworkSizeText, usesTheCurrentLocale) {
    const InLocale german("de_DE");
    EXPECT_EQ(artworkSizeText(1024.0).toStdString(), "1024,00");
    EXPECT_EQ(artworkSizeText(12.3).toStdString(), "12,3");
}

TEST(InchesText, hasAtMostThreeFractionDigitsAndNoGrouping) {
    EXPECT_EQ(inchesText(60.0).toStdString(), "60");
    EXPECT_EQ(inchesText(39.37007874).toStdString(), "39.37");
    EXPECT_EQ(inchesText(1234.5678).toStdString(), "1234.568");
    const InLocale german("de_DE");
    EXPECT_EQ(inchesText(1234.5678).toStdString(), "1234,568");
}

} // namespace
} // namespace orvex
