#include "Layout/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace orvex {
namespace {

struct Shown {
    const char* name;
    double value;
    int maxFractionDigits;
    const char* locale;
    const char* expected;
};

void PrintTo(const Shown& param, std::ostream* out) {
    *out << param.name;
}

class NumberText : public ::testing::TestWithParam<Shown> {};

TEST_P(NumberText, isShownWithoutGroupingAndTrailingZeros) {
    const Shown& shown = GetParam();
    const QLocale locale(QString::fromUtf8(shown.locale));
    EXPECT_EQ(formatNumber(shown.value, locale, shown.maxFractionDigits).toStdString(), shown.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, NumberText,
    ::testing::Values(
        Shown{"wholeNumber", 60.0, 3, "en_US", "60"}, Shown{"endsInZeros", 1200.0, 3, "en_US", "1200"},
        Shown{"noGrouping", 1234567.5, 3, "en_US", "1234567.5"},
        Shown{"noGermanGrouping", 1234567.5, 3, "de_DE", "1234567,5"},
        Shown{"cutToDigits", 39.37007874015748, 3, "en_US", "39.37"},
        Shown{"german", 39.37007874015748, 3, "de_DE", "39,37"}, Shown{"chinese", 39.375, 2, "zh_CN", "39.38"},
        Shown{"roundsUpToWhole", 59.9996, 3, "en_US", "60"}, Shown{"sixDigits", 0.1234567, 6, "en_US", "0.123457"},
        Shown{"noDigits", 2.7, 0, "en_US", "3"}, Shown{"exactHalfGoesDownToEven", 0.0625, 3, "en_US", "0.062"},
        Shown{"exactHalfGoesUpToEven", 0.1875, 3, "en_US", "0.188"}, Shown{"exactHalfOfAWhole", -2.5, 0, "en_US", "-2"},
        Shown{"negative", -1.25, 3, "en_US", "-1.25"}, Shown{"negativeThatRoundsToZero", -0.0001, 3, "en_US", "0"},
        Shown{"negativeZero", -0.0, 3, "en_US", "0"}, Shown{"large", 1e22, 3, "en_US", "10000000000000000000000"},
        Shown{"arabicDigits", 1.5, 3, "ar_EG", "١٫٥"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(NumberText, usesTheCurrentLocaleByDefault) {
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const QString german = formatNumber(59.5, 3);
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(german.toStdString(), "59,5");
    EXPECT_EQ(formatNumber(59.5, 3).toStdString(), "59.5");
}

TEST(NumberText, showsNumbersThatAreNotFinite) {
    const QLocale english(QStringLiteral("en_US"));
    EXPECT_EQ(formatNumber(std::numeric_limits<double>::quiet_NaN(), english, 3).toStdString(), "nan");
    EXPECT_EQ(formatNumber(std::numeric_limits<double>::infinity(), english, 3).toStdString(), "inf");
}

TEST(FixedNumberText, keepsZerosAtItsEnd) {
    EXPECT_EQ(formatFixedNumber(24.0, 2).toStdString(), "24.00");
    EXPECT_EQ(formatFixedNumber(12.5, 2).toStdString(), "12.50");
    EXPECT_EQ(formatFixedNumber(99.96, 1).toStdString(), "100.0");
    EXPECT_EQ(formatFixedNumber(1234567.0, 1).toStdString(), "1234567.0");
    EXPECT_EQ(formatFixedNumber(2.7, 0).toStdString(), "3");
}

TEST(FixedNumberText, hasNoSignOnZero) {
    EXPECT_EQ(formatFixedNumber(-0.001, 2).toStdString(), "0.00");
    EXPECT_EQ(formatFixedNumber(-0.0, 1).toStdString(), "0.0");
    EXPECT_EQ(formatFixedNumber(-0.01, 2).toStdString(), "-0.01");
}

TEST(FixedNumberText, usesTheCurrentLocale) {
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const QString german = formatFixedNumber(24.0, 2);
    QLocale::setDefault(QLocale(QStringLiteral("ar_EG")));
    const QString arabic = formatFixedNumber(1.5, 2);
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(german.toStdString(), "24,00");
    EXPECT_EQ(arabic.toStdString(), "١٫٥٠");
}

TEST(FixedNumberText, showsNumbersThatAreNotFinite) {
    EXPECT_EQ(formatFixedNumber(std::numeric_limits<double>::infinity(), 2).toStdString(), "inf");
}

TEST(ParseWholeDouble, takesTheWholeTextOrNothing) {
    EXPECT_EQ(parseWholeDouble("24.5"), 24.5);
    EXPECT_EQ(parseWholeDouble("-1e-2"), -0.01);
    EXPECT_EQ(parseWholeDouble(""), std::nullopt);
    EXPECT_EQ(parseWholeDouble(" 1"), std::nullopt);
    EXPECT_EQ(parseWholeDouble("1 "), std::nullopt);
    EXPECT_EQ(parseWholeDouble("1,5"), std::nullopt);
    EXPECT_EQ(parseWholeDouble(QByteArray("1\0", 2)), std::nullopt);
}

TEST(ParseWholeDouble, givesInfinityBeyondTheRangeAndZeroBelowIt) {
    EXPECT_EQ(parseWholeDouble("1e999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseWholeDouble("1e-999"), 0.0);
}

} // namespace
} // namespace orvex
