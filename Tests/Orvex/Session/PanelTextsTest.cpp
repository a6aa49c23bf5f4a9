#include "PanelTexts.h"

#include "InChinese.h"
#include "InLocale.h"
#include "InformationDictionary.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>

namespace orvex {
namespace {

using test::InChinese;

/// The local time zone for as long as this lives.
class InTimeZone {
public:
    explicit InTimeZone(const char* name) : before_(qgetenv("TZ")) { set(name); }

    ~InTimeZone() { set(before_); }

    InTimeZone(const InTimeZone&) = delete;
    InTimeZone& operator=(const InTimeZone&) = delete;

private:
    static void set(const QByteArray& name) {
        name.isEmpty() ? qunsetenv("TZ") : qputenv("TZ", name);
        ::tzset();
    }

    QByteArray before_;
};

/// 2026-11-21 07:05:00 UTC.
constexpr platform::Timestamp morning{816937500.0};

TEST(PaperSourceLabel, isEnglishForTheStoredWords) {
    EXPECT_EQ(paperSourceLabel(QStringLiteral("卷纸")).toStdString(), "Roll");
    EXPECT_EQ(paperSourceLabel(QStringLiteral("单张纸")).toStdString(), "Cut sheet");
}

TEST(PaperSourceLabel, isTheStoredWordInChinese) {
    const InChinese chinese;
    EXPECT_EQ(paperSourceLabel(QStringLiteral("卷纸")).toStdString(), "卷纸");
    EXPECT_EQ(paperSourceLabel(QStringLiteral("单张纸")).toStdString(), "单张纸");
}

TEST(PaperSourceLabel, leavesAnyOtherValue) {
    for (const char* value : {"", "Roll", "卷纸 ", "Tray 2"}) {
        EXPECT_EQ(paperSourceLabel(QString::fromUtf8(value)).toStdString(), value);
        const InChinese chinese;
        EXPECT_EQ(paperSourceLabel(QString::fromUtf8(value)).toStdString(), value);
    }
}

TEST(OrvexDateTime, isInTheFormOfTheLanguage) {
    const InTimeZone zone("UTC");
    const test::InLocale german("de_DE"); // the language decides, not the locale of numbers
    EXPECT_EQ(orvexDateTime(morning).toStdString(), "11/21/26 7:05 AM");
    const InChinese chinese;
    EXPECT_EQ(orvexDateTime(morning).toStdString(), "2026/11/21 07:05");
}

TEST(OrvexDateTime, isInTheLocalTimeZone) {
    const InTimeZone zone("<+08>-8"); // eight hours ahead of UTC; POSIX counts to the west
    EXPECT_EQ(orvexDateTime(morning).toStdString(), "11/21/26 3:05 PM");
}

TEST(OrvexDateTime, staysInTheMinuteThatHasBegun) {
    const InTimeZone zone("UTC");
    EXPECT_EQ(orvexDateTime({0.0}).toStdString(), "1/1/01 12:00 AM");
    EXPECT_EQ(orvexDateTime({59.9999}).toStdString(), "1/1/01 12:00 AM");
    EXPECT_EQ(orvexDateTime({-0.0001}).toStdString(), "12/31/00 11:59 PM");
}

TEST(OrvexDateTime, isEmptyForWhatNoCalendarReaches) {
    EXPECT_EQ(orvexDateTime({1e300}).toStdString(), "");
    EXPECT_EQ(orvexDateTime({-1e300}).toStdString(), "");
    EXPECT_EQ(orvexDateTime({std::numeric_limits<double>::quiet_NaN()}).toStdString(), "");
    EXPECT_EQ(orvexDateTime({std::numeric_limits<double>::infinity()}).toStdString(), "");
}

TEST(AppVersion, isThatOfTheInformationDictionary) {
    const auto built = informationDictionaryText("CFBundleShortVersionString");
    ASSERT_TRUE(built);
    EXPECT_EQ(built->toStdString(), ORVEX_VERSION);
    EXPECT_EQ(appVersion().toStdString(), ORVEX_VERSION);
    EXPECT_EQ(appVersion(QStringLiteral("1.2.3")).toStdString(), "1.2.3");
}

TEST(AppVersion, isToldEvenWithoutADictionary) {
    EXPECT_EQ(appVersion(std::nullopt).toStdString(), "0.8.4");
}

} // namespace
} // namespace orvex
