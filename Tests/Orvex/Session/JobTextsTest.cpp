#include "JobTexts.h"

#include "InChinese.h"
#include "InLocale.h"
#include "PanelTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

constexpr platform::Timestamp morning{816937500.0};

std::vector<std::string> linesOf(const StagedJob& job) {
    std::vector<std::string> lines;
    for (const QString& line : JobTexts::lines(job)) {
        lines.push_back(line.toStdString());
    }
    return lines;
}

std::string date() {
    return orvexDateTime(morning).toStdString();
}

StagedJob rollJob() {
    RollLayout layout;
    layout.items = {RollArtwork(), RollArtwork()};
    return {.id = QUuid::createUuid(),
            .title = QStringLiteral("Roll"),
            .printerName = QStringLiteral("W9400"),
            .createdAt = morning,
            .sourceProfile = {},
            .colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged},
            .driverQuality = DriverOptionSelection{QStringLiteral("Resolution"), QStringLiteral("1200dpi")},
            .presetName = QStringLiteral("Gallery"),
            .canvasMediaName = QStringLiteral("Matte canvas"),
            .rollLayout = layout};
}

/// A record of a version that kept no more than this.
StagedJob oldJob() {
    return {.id = QUuid::createUuid(),
            .title = QStringLiteral("Old"),
            .printerName = {},
            .createdAt = morning,
            .sourceProfile = {}};
}

TEST(JobTexts, TellAllThatIsKnownOfARoll) {
    EXPECT_THAT(
        linesOf(rollJob()),
        ElementsAre(date(), "W9400", "2 artworks · 2.5-inch border on each side · Outer trim guides included in PDF",
                    "Matte canvas", label(ColorManagementMode::appManaged).toStdString(), "1200dpi", "Gallery"));
    const test::InChinese chinese;
    EXPECT_THAT(linesOf(rollJob()),
                ElementsAre(date(), "W9400", "2 幅作品 · 每幅四周 2.5 英寸白边 · PDF 含外沿裁剪虚线", "Matte canvas",
                            label(ColorManagementMode::appManaged).toStdString(), "1200dpi", "Gallery"));
}

TEST(JobTexts, SayInWordsWhatAnOldRecordDoesNotHold) {
    EXPECT_THAT(linesOf(oldJob()),
                ElementsAre(date(), "No printer specified", "Actual PDF margin: 0.394 in. The saved file is unchanged.",
                            "No media recorded in this older job", "Legacy default workflow",
                            "Use Canon quality settings"));
    const test::InChinese chinese;
    EXPECT_THAT(linesOf(oldJob()),
                ElementsAre(date(), "未指定打印机", "PDF 实际边距：0.394 英寸。已保存的文件保持不变。",
                            "此旧作业未记录介质", "旧版默认流程", "沿用佳能质量设置"));
}

TEST(JobTexts, ShowTheMarginAsTheUsersLocaleWritesNumbers) {
    const test::InLocale german("de_DE");
    EXPECT_THAT(linesOf(oldJob()), Contains("Actual PDF margin: 0,394 in. The saved file is unchanged."));
}

TEST(JobTexts, HaveNoEmptyLine) {
    StagedJob job = oldJob();
    job.printerName = QStringLiteral("  ");
    job.createdAt = {std::numeric_limits<double>::infinity()};
    job.canvasMediaName = QString();
    job.driverQuality = DriverOptionSelection{QStringLiteral("Resolution"), QString()};
    job.presetName = QString();
    EXPECT_THAT(linesOf(job),
                ElementsAre("No printer specified", "Actual PDF margin: 0.394 in. The saved file is unchanged.",
                            "No media recorded in this older job", "Legacy default workflow",
                            "Use Canon quality settings"));
}

TEST(JobTexts, LeaveNamesAsTheyAre) {
    StagedJob job = rollJob();
    job.printerName = QStringLiteral("%1 <b>&&");
    EXPECT_THAT(linesOf(job), Contains("%1 <b>&&"));
    EXPECT_THAT(linesOf(job), Not(Contains("No printer specified")));
}

} // namespace
} // namespace orvex
