#include "TelemetryTexts.h"

#include "InChinese.h"
#include "PanelTexts.h"
#include "PrinterFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvex {

/// How googletest shows a row.
namespace TelemetryTexts {
static void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.label.toStdString() << ": " << row.value.toStdString();
}
} // namespace TelemetryTexts

namespace {

using Row = TelemetryTexts::Row;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const QString queue = QStringLiteral("W9400");

Row row(const char* label, const char* value) {
    return {QString::fromUtf8(label), QString::fromUtf8(value)};
}

/// The value of the queue's state.
std::string shownState(const std::optional<qint64>& state) {
    return TelemetryTexts::rows({.queueName = queue, .queueState = state}).first().value.toStdString();
}

Row shownMarker(const PrinterMarkerTelemetry& marker) {
    return TelemetryTexts::rows({.queueName = queue, .markers = {marker}}).last();
}

TEST(TelemetryRows, SayWhatIsNotProvided) {
    EXPECT_THAT(TelemetryTexts::rows({.queueName = queue}),
                ElementsAre(row("Queue state", "Not provided"), row("Queued jobs", "Not provided"),
                            row("Maintenance cartridge", "Not provided"), row("Printhead", "Not provided")));
    const test::InChinese chinese;
    EXPECT_THAT(TelemetryTexts::rows({.queueName = queue}),
                ElementsAre(row("队列状态", "未提供"), row("排队作业数", "未提供"), row("维护墨盒", "未提供"),
                            row("打印头", "未提供")));
}

TEST(TelemetryRows, TellTheStateOfTheQueue) {
    EXPECT_EQ(shownState(3), "Idle");
    EXPECT_EQ(shownState(4), "Processing");
    EXPECT_EQ(shownState(5), "Stopped");
    EXPECT_EQ(shownState(0), "Unknown (0)");
    EXPECT_EQ(shownState(6), "Unknown (6)");
    EXPECT_EQ(shownState(-2), "Unknown (-2)");
    const test::InChinese chinese;
    EXPECT_EQ(shownState(3), "空闲");
    EXPECT_EQ(shownState(4), "正在处理");
    EXPECT_EQ(shownState(5), "已停止");
    EXPECT_EQ(shownState(6), "未知（6）");
}

TEST(TelemetryRows, CountTheJobs) {
    EXPECT_EQ(TelemetryTexts::rows({.queueName = queue, .queuedJobCount = 0}).at(1), row("Queued jobs", "0"));
    EXPECT_EQ(TelemetryTexts::rows({.queueName = queue, .queuedJobCount = 12}).at(1), row("Queued jobs", "12"));
}

TEST(TelemetryRows, GiveEverySupplyItsLevelInOrder) {
    const PrinterTelemetrySnapshot telemetry{
        .queueName = queue,
        .markers = {{.index = 0, .name = QStringLiteral("Matte Black"), .level = 64}, {.index = 1, .level = 100}}};
    const QList<Row> rows = TelemetryTexts::rows(telemetry);
    ASSERT_EQ(rows.size(), 6);
    EXPECT_EQ(rows.at(4), row("Matte Black", "64%"));
    EXPECT_EQ(rows.at(5), row("Supply 1", "100%"));
}

TEST(TelemetryRows, ShowNoLevelThatIsNoPercentageAsOne) {
    EXPECT_EQ(shownMarker({.index = 2, .level = 0}), row("Supply 2", "0%"));
    EXPECT_EQ(shownMarker({.index = 2, .level = -1}), row("Supply 2", "Unknown (-1)"));
    EXPECT_EQ(shownMarker({.index = 2, .level = -3}), row("Supply 2", "Unknown (-3)"));
    EXPECT_EQ(shownMarker({.index = 2, .level = 101}), row("Supply 2", "Unknown (101)"));
    EXPECT_EQ(shownMarker({.index = 2}), row("Supply 2", "Not provided"));
    const test::InChinese chinese;
    EXPECT_EQ(shownMarker({.index = 2, .level = -1}), row("耗材 2", "未知（-1）"));
}

TEST(TelemetryRows, LeaveTheNameOfASupplyAsItIs) {
    EXPECT_EQ(shownMarker({.index = 0, .name = QStringLiteral("<b>%1 & ink"), .level = 5}), row("<b>%1 & ink", "5%"));
    EXPECT_EQ(shownMarker({.index = 0, .name = QStringLiteral(" "), .level = 5}), row("Supply 0", "5%"));
}

TEST(TelemetryReports, AreWhatTheQueueSaysOfItself) {
    EXPECT_THAT(TelemetryTexts::reports({.queueName = queue}), IsEmpty());
    const PrinterTelemetrySnapshot telemetry{
        .queueName = queue,
        .queueMessage = QStringLiteral("Out of canvas"),
        .queueReasons = {QStringLiteral("media-empty-error"), QStringLiteral("paused")}};
    EXPECT_EQ(
        TelemetryTexts::reports(telemetry),
        (QStringList{QStringLiteral("Queue reports: media-empty-error, paused"), QStringLiteral("Out of canvas")}));
    const test::InChinese chinese;
    EXPECT_EQ(TelemetryTexts::reports(telemetry).first(), u"队列报告：media-empty-error、paused");
}

TEST(TelemetryReports, AreNotBlank) {
    EXPECT_THAT(TelemetryTexts::reports({.queueName = queue, .queueMessage = QStringLiteral(" \n")}), IsEmpty());
}

TEST(TelemetryTexts, SayWhenTheReadingWasMade) {
    const PrinterTelemetrySnapshot telemetry{.queueName = queue, .sampledAt = {816937500.0}};
    EXPECT_EQ(TelemetryTexts::sampled(telemetry), QStringLiteral("Sampled: ") + orvexDateTime({816937500.0}));
    const test::InChinese chinese;
    EXPECT_EQ(TelemetryTexts::sampled(telemetry), QStringLiteral("读取时间：") + orvexDateTime({816937500.0}));
}

TEST(TelemetryTexts, SayThatLevelsAreMissing) {
    EXPECT_EQ(TelemetryTexts::missingLevels({.queueName = queue}),
              u"This interface did not provide ink or maintenance cartridge levels. Missing information is not shown "
              u"as normal.");
    EXPECT_EQ(TelemetryTexts::missingLevels({.queueName = queue, .markers = {{.index = 0}}}), std::nullopt);
    const test::InChinese chinese;
    EXPECT_EQ(TelemetryTexts::missingLevels({.queueName = queue}),
              u"此接口未提供墨水或维护墨盒余量。缺失的信息不会显示为正常。");
}

TEST(TelemetryTexts, SayWhyThereIsNoReading) {
    EXPECT_EQ(TelemetryTexts::unavailability({}), u"Device information has not been read.");
    EXPECT_EQ(TelemetryTexts::unavailability({.telemetry = test::readyState(queue)}), std::nullopt);
    EXPECT_EQ(TelemetryTexts::unavailability({.telemetryError = QStringLiteral("no %1 answer")}),
              u"Could not read status: no %1 answer");
    EXPECT_EQ(TelemetryTexts::unavailability(
                  {.telemetry = test::readyState(queue), .telemetryError = QStringLiteral("no answer")}),
              u"Could not read status: no answer");
    const test::InChinese chinese;
    EXPECT_EQ(TelemetryTexts::unavailability({}), u"尚未读取设备信息。");
    EXPECT_EQ(TelemetryTexts::unavailability({.telemetryError = QStringLiteral("无应答")}), u"无法读取状态：无应答");
}

} // namespace
} // namespace orvex
