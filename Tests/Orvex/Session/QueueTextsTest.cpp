#include "QueueTexts.h"

#include "InChinese.h"
#include "PrinterFixtures.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

PrinterReadings readingsWith(const QList<SystemPrintJob>& jobs, const QString& selected) {
    PrinterSnapshot printer = test::printer(QStringLiteral("W9400"));
    printer.jobs = jobs;
    return {.printers = {printer}, .selectedPrinterName = selected};
}

TEST(QueueTexts, SayThatNoPrinterIsSelected) {
    const QList<SystemPrintJob> jobs{{QStringLiteral("W9400-1"), QStringLiteral("W9400-1 ann 1024")}};
    EXPECT_EQ(QueueTexts::systemJobs({}), u"No printer selected.");
    EXPECT_EQ(QueueTexts::systemJobs(readingsWith(jobs, QStringLiteral("Gone"))), u"No printer selected.");
    const test::InChinese chinese;
    EXPECT_EQ(QueueTexts::systemJobs({}), u"未选择打印机。");
}

TEST(QueueTexts, ClaimNoMoreThanThatNoJobWasFound) {
    const PrinterReadings readings = readingsWith({}, QStringLiteral("W9400"));
    EXPECT_EQ(QueueTexts::systemJobs(readings),
              u"No unfinished jobs were found in this reading. Also check diagnostics for read errors.");
    const test::InChinese chinese;
    EXPECT_EQ(QueueTexts::systemJobs(readings), u"此次读取未发现未完成的作业。请同时查看诊断信息中的读取错误。");
}

TEST(QueueTexts, ShowEveryJobAsTheSystemGaveIt) {
    const QList<SystemPrintJob> jobs{{QStringLiteral("W9400-1"), QStringLiteral("W9400-1   ann  1024  <b>&")},
                                     {QStringLiteral("W9400-2"), QStringLiteral("W9400-2   bob  2048")}};
    EXPECT_EQ(QueueTexts::systemJobs(readingsWith(jobs, QStringLiteral("W9400"))),
              u"W9400-1   ann  1024  <b>&\nW9400-2   bob  2048");
}

} // namespace
} // namespace orvex
