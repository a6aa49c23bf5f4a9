#include "InChinese.h"
#include "PrintingTest.h"

namespace orvex {
namespace {

using test::readyState;
using test::stoppedState;
using test::waitFor;

/// The queue is read afresh just before the window opens.
class FreshReadiness : public test::PrintingTest {};

TEST_F(FreshReadiness, StoresTheStateThatItRead) {
    inWindow([this] {
        EXPECT_EQ(model->printerReadings().telemetry, readyState(queue));
        EXPECT_EQ(model->printerReadings().telemetryError, std::nullopt);
        return true;
    });
    prepare();
    PrinterReadings before = model->printerReadings();
    before.telemetryError = QStringLiteral("older");
    SessionBackdoor::set(model->printerReadings, before);
    print();
    EXPECT_EQ(windows, 1);
}

TEST_F(FreshReadiness, IsRefusedByAStoppedQueue) {
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(stoppedState(name));
    };
    prepare();
    print();
    expectRefused(stopped.toStdString());
    EXPECT_EQ(model->printerReadings().telemetry, stoppedState(queue));
}

TEST_F(FreshReadiness, IsRefusedByAQueueWhoseStateIsUnknown) {
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(PrinterTelemetrySnapshot{.queueName = name});
    };
    prepare();
    EXPECT_TRUE(model->canPrintCurrent());
    print();
    expectRefused(
        "The system queue could not be confirmed ready to accept jobs. Print was not opened. Refresh printers "
        "and check Canon or the system queue.");
}

TEST_F(FreshReadiness, IsRefusedIfTheQueueCannotBeRead) {
    const auto states = printUntilAsked();
    EXPECT_TRUE(temporaryFolders().isEmpty()); // no folder before the queue is known
    states->fail(QStringLiteral("No answer."));
    settle();
    expectRefused(unconfirmed.toStdString());
    EXPECT_EQ(model->printerReadings().telemetry, std::nullopt);
    EXPECT_EQ(model->printerReadings().telemetryError, QStringLiteral("No answer."));
}

TEST_F(FreshReadiness, IsRefusedInChineseIfTheQueueCannotBeRead) {
    const test::InChinese chinese;
    const auto states = printUntilAsked();
    states->fail(QStringLiteral("没有回应。"));
    settle();
    expectRefused(
        "无法在不更改设置的情况下确认系统打印队列可接收作业，未打开打印。请刷新打印机并检查系统打印队列。\n没有回应。",
        QStringLiteral("未提交打印。"));
}

TEST_F(FreshReadiness, TakesNoFailureOfAQueueThatIsNoLongerSelected) {
    const auto states = printUntilAsked();
    select(other);
    PrinterReadings known = model->printerReadings();
    known.telemetry = readyState(other);
    SessionBackdoor::set(model->printerReadings, known);
    states->fail(QStringLiteral("No answer."));
    settle();
    expectRefused(unconfirmed.toStdString());
    EXPECT_EQ(model->printerReadings(), known);
}

TEST_F(FreshReadiness, StopsBeforeTheWindowIfTheQueueWasStoppedDuringTheRender) {
    const auto states = printUntilAsked();
    answerUntilAskedAgain(states);
    ASSERT_EQ(temporaryFolders().size(), 1);
    const QDir print(folder.path(QStringLiteral("tmp/")) + temporaryFolders().first());
    EXPECT_EQ(print.entryList(QDir::Files), QStringList{QStringLiteral("orvex-卷布打印.pdf")});
    states->answer(stoppedState(queue));
    settle();
    EXPECT_TRUE(services.prints.isEmpty());
    expectRefused(stopped.toStdString());
}

TEST_F(FreshReadiness, ThatIsCancelledWhileItRendersLeavesNothing) {
    prepare();
    auto barrier = std::make_unique<test::Barrier>();
    model->printCurrentRoll();
    waitFor([this] { return !temporaryFolders().isEmpty(); });
    model->cancelOperation();
    barrier.reset();
    settle();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), QStringLiteral("Print preparation was cancelled. Printing has not been submitted."));
    EXPECT_TRUE(temporaryFolders().isEmpty());
    EXPECT_TRUE(services.prints.isEmpty());
}

TEST_F(FreshReadiness, OpensNoWindowIfItIsCancelledDuringTheLastLookAtTheQueue) {
    const test::InChinese chinese;
    const auto states = printUntilAsked();
    answerUntilAskedAgain(states);
    model->cancelOperation();
    states->answer(readyState(queue));
    settle();
    EXPECT_TRUE(services.prints.isEmpty());
    EXPECT_EQ(model->message(), QStringLiteral("已取消打印准备，未提交打印。"));
    EXPECT_TRUE(temporaryFolders().isEmpty());
}

} // namespace
} // namespace orvex
