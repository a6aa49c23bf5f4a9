#include "InChinese.h"
#include "PrintingTest.h"

namespace orvex {
namespace {

using test::hold;
using test::readyState;
using test::stoppedState;
using test::waitFor;

class PrintingAJob : public test::PrintingTest {
protected:
    [[nodiscard]] static StagedJob job() {
        StagedJob job;
        job.id = QUuid(QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"));
        job.title = QStringLiteral("Autumn");
        job.printerName = other;
        job.settings.widthMM = 1524.0;
        job.settings.heightMM = 508.0;
        job.colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged,
                                          .intent = ColorRenderingIntent::saturation,
                                          .driverColorCorrectionDisabledConfirmed = true};
        return job;
    }

    void printJob(const StagedJob& printed = job()) {
        model->printSavedJob(printed);
        settle();
    }
};

TEST_F(PrintingAJob, OpensTheWindowWithItsPdfOnTheSelectedQueue) {
    inWindow([this] {
        EXPECT_EQ(model->message(), review);
        EXPECT_TRUE(model->busy());
        return true;
    });
    start();
    select(queue);
    printJob();
    EXPECT_EQ(windows, 1);
    const NativePrintRequest expected{
        .pdfURL = QUrl::fromLocalFile(stored(QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4.pdf"))),
        .queueName = queue,
        .jobTitle = QStringLiteral("Autumn"),
        .widthInches = 60.0,
        .heightInches = 20.0,
        .workflow = *job().colorWorkflow};
    EXPECT_EQ(services.prints, QList{expected});
    EXPECT_EQ(model->message(), finished);
    EXPECT_TRUE(temporaryFolders().isEmpty());
    EXPECT_FALSE(model->busy());
}

TEST_F(PrintingAJob, GoesToItsOwnQueueWhereNoneIsSelected) {
    inWindow([] { return true; });
    readings.discoverQueues = test::findingQueues({});
    start();
    printJob();
    ASSERT_EQ(services.prints.size(), 1);
    EXPECT_EQ(services.prints[0].queueName, other);
    EXPECT_EQ(model->printerReadings().telemetry, std::nullopt); // that is not the selected queue
}

TEST_F(PrintingAJob, IsRefusedWithoutAnyQueue) {
    start();
    const QString message = model->message();
    StagedJob homeless = job();
    homeless.printerName.clear();
    printJob(homeless);
    expectRefused("Select a configured printer first.", message);
}

TEST_F(PrintingAJob, LetsTheDriverManageTheColoursOfAnOldRecord) {
    inWindow([] { return true; });
    start();
    select(queue);
    StagedJob old = job();
    old.colorWorkflow.reset();
    printJob(old);
    ASSERT_EQ(services.prints.size(), 1);
    EXPECT_EQ(services.prints[0].workflow, ColorWorkflow());
}

TEST_F(PrintingAJob, IsRefusedByAStoppedQueue) {
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(stoppedState(name));
    };
    start();
    select(queue);
    printJob();
    EXPECT_TRUE(services.prints.isEmpty());
    expectRefused(stopped.toStdString(), unchanged);
    const test::InChinese chinese;
    printJob();
    EXPECT_EQ(model->message(), QStringLiteral("未提交打印，已保存的 PDF 保持不变。"));
}

TEST_F(PrintingAJob, IsRefusedByTheChecksOfTheWindow) {
    services.printRefusal = QStringLiteral("The PDF is gone.");
    start();
    select(queue);
    printJob();
    expectRefused("The PDF is gone.", unchanged);
}

TEST_F(PrintingAJob, SaysNothingWhileItIsLocked) {
    start();
    select(queue);
    const QString message = model->message();
    model->setBatchSizingPresented(true);
    model->printSavedJob(job());
    model->setBatchSizingPresented(false);
    SessionBackdoor::set(model->busy, true);
    model->printSavedJob(job());
    SessionBackdoor::set(model->busy, false);
    settle();
    EXPECT_TRUE(services.prints.isEmpty());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(PrintingAJob, IsNotPossibleWithoutTheQueue) {
    QDir().mkpath(stored(QStringLiteral("queue.json")));
    start();
    ASSERT_FALSE(model->queueAvailable());
    model->dismissError();
    const QString message = model->message();
    StagedJob homeless = job();
    homeless.printerName.clear();
    printJob(homeless);
    printJob();
    EXPECT_TRUE(services.prints.isEmpty());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

// A session that is closed in the middle

class ClosedPrinting : public PrintingAJob {
protected:
    /// Closes the session while it waits for the `number`th reading of the queue's state.
    void closeAtReading(std::size_t number, bool answersAfterAll) {
        const auto states = hold(readings.readTelemetry);
        prepare();
        model->printCurrentRoll();
        while (states->count() < number) {
            waitFor([&] { return states->isAwaited(); });
            if (states->count() < number) {
                states->answer(readyState(queue));
            }
        }
        if (answersAfterAll) {
            states->partingAnswer = readyState(queue);
        }
        model.reset();
        EXPECT_TRUE(services.prints.isEmpty());
        EXPECT_TRUE(temporaryFolders().isEmpty());
    }
};

TEST_F(ClosedPrinting, GivesUpTheFirstReading) {
    closeAtReading(1, false);
}

TEST_F(ClosedPrinting, RendersNothingAfterTheFirstReading) {
    closeAtReading(1, true);
}

TEST_F(ClosedPrinting, GivesUpTheLastReading) {
    closeAtReading(2, false);
}

TEST_F(ClosedPrinting, OpensNoWindowAfterTheLastReading) {
    closeAtReading(2, true);
}

TEST_F(ClosedPrinting, GivesUpTheRender) {
    prepare();
    auto barrier = std::make_unique<test::Barrier>();
    model->printCurrentRoll();
    waitFor([this] { return !temporaryFolders().isEmpty(); });
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&barrier] { barrier.reset(); }, Qt::QueuedConnection);
    model.reset();
    EXPECT_TRUE(services.prints.isEmpty());
    EXPECT_TRUE(temporaryFolders().isEmpty());
}

TEST_F(ClosedPrinting, ForgetsAClick) {
    prepare();
    model->printCurrentRoll();
    model.reset();
    EXPECT_TRUE(services.prints.isEmpty());
}

TEST_F(ClosedPrinting, OpensNoWindowForAJob) {
    const auto states = hold(readings.readTelemetry);
    states->partingAnswer = readyState(queue);
    start();
    select(queue);
    model->printSavedJob(job());
    ASSERT_TRUE(states->isAwaited());
    model.reset();
    EXPECT_TRUE(services.prints.isEmpty());
}

} // namespace
} // namespace orvex
