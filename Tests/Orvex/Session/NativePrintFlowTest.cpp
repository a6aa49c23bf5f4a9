#include "InChinese.h"
#include "PDF/PdfText.h"
#include "PrintingTest.h"

#include <QRegularExpression>

namespace orvex {
namespace {

using test::hold;
using test::readyState;
using test::stoppedState;
using test::waitFor;

class Printing : public test::PrintingTest {};

// Whether the command is offered

class PrintCommand : public Printing {
protected:
    PrintCommand() { prepare(); }

    void know(const PrinterTelemetrySnapshot& state) {
        PrinterReadings printers = model->printerReadings();
        printers.telemetry = state;
        SessionBackdoor::set(model->printerReadings, printers);
    }
};

TEST_F(PrintCommand, IsOfferedForAQueueWhoseStateIsNotKnown) {
    EXPECT_EQ(model->cachedNativePrintReadiness(), std::nullopt);
    EXPECT_TRUE(model->canPrintCurrent());
    PrinterTelemetrySnapshot state = readyState(queue);
    state.queueState.reset();
    know(state);
    EXPECT_EQ(model->cachedNativePrintReadiness()->state, NativePrintReadinessState::unknown);
    EXPECT_TRUE(model->canPrintCurrent());
}

TEST_F(PrintCommand, IsNotOfferedForAQueueThatWasStoppedJustNow) {
    know(stoppedState(queue));
    EXPECT_FALSE(model->canPrintCurrent());
    services.clock.secondsSince2001 += 45.0;
    EXPECT_FALSE(model->canPrintCurrent());
    services.clock.secondsSince2001 += 0.125;
    EXPECT_EQ(model->cachedNativePrintReadiness(), std::nullopt);
    EXPECT_TRUE(model->canPrintCurrent());
}

TEST_F(PrintCommand, IsOfferedWhereAnotherQueueWasStopped) {
    know(stoppedState(other));
    EXPECT_TRUE(model->canPrintCurrent());
}

TEST_F(PrintCommand, IsNotOfferedWhileSomethingElseIsGoingOn) {
    ASSERT_TRUE(model->canPrintCurrent());
    SessionBackdoor::set(model->busy, true);
    EXPECT_FALSE(model->canPrintCurrent());
    SessionBackdoor::set(model->busy, false);
    model->setBatchSizingPresented(true);
    EXPECT_FALSE(model->canPrintCurrent());
    model->setBatchSizingPresented(false);
    EXPECT_TRUE(model->canPrintCurrent());
}

TEST_F(PrintCommand, IsNotOfferedWithoutAPrinterOrSomethingToPrint) {
    select({});
    EXPECT_FALSE(model->canPrintCurrent());
    select(queue);
    SessionBackdoor::set(model->rollLayout, RollLayout());
    EXPECT_FALSE(model->canPrintCurrent());
}

TEST_F(Printing, IsNotOfferedAfterTheClickAndWhileItGoesOn) {
    const auto states = hold(readings.readTelemetry);
    prepare();
    model->printCurrentRoll();
    EXPECT_FALSE(model->busy());
    EXPECT_FALSE(model->canPrintCurrent());
    waitFor([&] { return states->isAwaited(); });
    EXPECT_TRUE(model->busy());
    EXPECT_FALSE(model->canPrintCurrent());
    states->fail(QStringLiteral("No answer."));
    settle();
    EXPECT_TRUE(model->canPrintCurrent());
}

TEST_F(PrintCommand, IsAnnouncedToBeOffAtTheClickAndOfferedAgainAtTheEnd) {
    QStringList announced;
    settle();
    QObject::connect(model.get(), &OrvexModel::changed, model.get(), [&] {
        announced.append(model->busy()              ? QStringLiteral("busy")
                         : model->canPrintCurrent() ? QStringLiteral("offered")
                                                    : QStringLiteral("off"));
    });
    print();
    ASSERT_EQ(services.prints.size(), 1);
    EXPECT_EQ(announced.value(0), QStringLiteral("off"));
    EXPECT_EQ(announced.value(1), QStringLiteral("busy"));
    EXPECT_EQ(announced.last(), QStringLiteral("offered"));
}

TEST_F(PrintCommand, IsAnnouncedToBeOverEvenIfNothingElseHasChanged) {
    SessionBackdoor::set(model->rollLayout, RollLayout());
    print(); // tells the issue, so that the next click has no news
    int announced = 0;
    QObject::connect(model.get(), &OrvexModel::changed, model.get(), [&announced] { ++announced; });
    settle();
    ASSERT_EQ(announced, 0);
    model->printCurrentRoll();
    settle();
    EXPECT_EQ(announced, 2) << "at the click and at its end";
}

TEST_F(PrintCommand, SaysNothingWhileItIsLocked) {
    const QString message = model->message();
    bool isCommitted = false;
    services.onCommitEditing = [&isCommitted] { isCommitted = true; };
    model->setBatchSizingPresented(true);
    model->printCurrentRoll();
    model->setBatchSizingPresented(false);
    SessionBackdoor::set(model->busy, true);
    model->printCurrentRoll();
    SessionBackdoor::set(model->busy, false);
    settle();
    EXPECT_FALSE(isCommitted);
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(services.prints.isEmpty());
}

// The roll

TEST_F(Printing, OpensTheWindowWithTheRollAsAPdf) {
    inWindow([this] {
        EXPECT_EQ(services.prints.size(), 1);
        const NativePrintRequest& request = services.prints[0];
        EXPECT_EQ(request.queueName, queue);
        EXPECT_EQ(request.jobTitle, QStringLiteral("orvex · 1 artworks"));
        EXPECT_EQ(request.widthInches, 60.0);
        EXPECT_EQ(request.heightInches, 13.0);
        EXPECT_EQ(request.workflow, ColorWorkflow());
        const QString pdf = request.pdfURL.toLocalFile();
        const QRegularExpression place(QStringLiteral("^%1/orvex-print-[0-9A-F-]{36}/orvex-卷布打印\\.pdf$")
                                           .arg(QRegularExpression::escape(folder.path(QStringLiteral("tmp")))));
        EXPECT_TRUE(place.match(pdf).hasMatch()) << pdf.toStdString();
        EXPECT_TRUE(
            test::TemporaryFolder::read(pdf).contains(platform::pdfTextString(QStringLiteral("orvex · Roll layout"))));
        EXPECT_TRUE(model->busy());
        EXPECT_EQ(model->message(), review);
        return true;
    });
    prepare();
    print();
    EXPECT_EQ(windows, 1);
    EXPECT_EQ(model->message(), finished);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(temporaryFolders().isEmpty());
    EXPECT_FALSE(model->busy());
}

TEST_F(Printing, SpeaksChinese) {
    const test::InChinese chinese;
    inWindow([this] {
        EXPECT_EQ(services.prints[0].jobTitle, QStringLiteral("orvex · 1 幅作品"));
        const QString pdf = services.prints[0].pdfURL.toLocalFile();
        EXPECT_TRUE(pdf.endsWith(QStringLiteral("/orvex-卷布打印.pdf")));
        EXPECT_TRUE(
            test::TemporaryFolder::read(pdf).contains(platform::pdfTextString(QStringLiteral("orvex · 卷布排版"))));
        EXPECT_EQ(model->message(),
                  QStringLiteral("请在系统打印窗口核对纸张、100% 实际尺寸、画布、颜色和裁切设置，再点击打印。"));
        return true;
    });
    const auto states = printUntilAsked();
    EXPECT_EQ(model->message(), QStringLiteral("正在生成原始分辨率的卷布打印文件…"));
    answerUntilAskedAgain(states);
    states->answer(readyState(queue));
    waitFor([this] { return windows == 1; });
    EXPECT_EQ(model->message(),
              QStringLiteral("系统打印流程已结束。请在系统打印队列查看作业状态，并在打印机上确认实物完成。"));
    waitFor([&] { return states->isAwaited(); });
    states->answer(readyState(queue));
}

TEST_F(Printing, ThatIsCancelledInTheWindowIsNoError) {
    inWindow([] { return false; });
    prepare();
    print();
    EXPECT_EQ(windows, 1);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(),
              QStringLiteral("Printing was not submitted or was cancelled. Local artwork and PDFs are unchanged."));
    EXPECT_TRUE(temporaryFolders().isEmpty());
    const test::InChinese chinese;
    print();
    EXPECT_EQ(model->message(), QStringLiteral("打印未提交或已取消。本地作品和 PDF 保持不变。"));
}

TEST_F(Printing, LooksAtThePrintersAfterTheWindow) {
    const auto passes = hold(readings.discoverQueues);
    inWindow([] { return false; });
    prepare();
    model->printCurrentRoll();
    waitFor([&] { return passes->isAwaited(); });
    EXPECT_EQ(windows, 1);
    EXPECT_FALSE(model->busy());
    passes->answer({test::printer(queue)});
}

TEST_F(Printing, CommitsAnEditBeforeItReadsTheCanvas) {
    inWindow([] { return true; });
    prepare();
    services.onCommitEditing = [this] {
        const QUuid id = model->rollLayout().items.first().id;
        // A field gives its value away from the event loop.
        QMetaObject::invokeMethod(
            model.get(), [this, id] { model->resizeArtwork(id, 24.0, QuarterInchArtworkSizing::Dimension::width); },
            Qt::QueuedConnection);
    };
    print();
    ASSERT_EQ(services.prints.size(), 1);
    EXPECT_EQ(services.prints[0].heightInches, 21.0);
}

TEST_F(Printing, TakesTwoFastClicksForOne) {
    int commits = 0;
    inWindow([] { return true; });
    prepare();
    services.onCommitEditing = [&commits] { ++commits; };
    model->printCurrentRoll();
    model->printCurrentRoll();
    waitFor([this] { return windows > 0; });
    settle();
    EXPECT_EQ(commits, 1);
    EXPECT_EQ(services.prints.size(), 1);
}

TEST_F(Printing, TakesNoClickWhileItPrepares) {
    inWindow([] { return true; });
    const auto states = printUntilAsked();
    EXPECT_EQ(model->message(), QStringLiteral("Preparing an original-resolution print file for the roll…"));
    model->printCurrentRoll();
    QCoreApplication::processEvents();
    EXPECT_EQ(states->count(), 1U);
    states->fail(QStringLiteral("No answer."));
    settle();
    EXPECT_EQ(windows, 0);
}

TEST_F(Printing, GivesWayToWorkThatBeganInTheMeantime) {
    prepare();
    const QString message = model->message();
    model->printCurrentRoll();
    SessionBackdoor::set(model->busy, true);
    QCoreApplication::processEvents();
    SessionBackdoor::set(model->busy, false);
    settle();
    EXPECT_TRUE(services.prints.isEmpty());
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_TRUE(model->canPrintCurrent()); // the click is forgotten
}

TEST_F(Printing, IsNotReachedByLaterEdits) {
    inWindow([] { return true; });
    const auto states = printUntilAsked();
    SessionBackdoor::set(model->rollLayout, RollLayout());
    model->setColorManagementMode(ColorManagementMode::appManaged);
    select(other);
    answerUntilAskedAgain(states);
    states->answer(readyState(queue));
    waitFor([this] { return windows == 1; });
    ASSERT_EQ(services.prints.size(), 1);
    EXPECT_EQ(services.prints[0].queueName, queue);
    EXPECT_EQ(services.prints[0].heightInches, 13.0);
    EXPECT_EQ(services.prints[0].jobTitle, QStringLiteral("orvex · 1 artworks"));
    EXPECT_EQ(services.prints[0].workflow, ColorWorkflow());
    EXPECT_EQ(model->printerReadings().telemetry, std::nullopt); // of a queue that is no longer selected
    waitFor([&] { return states->isAwaited(); });
    states->answer(readyState(other));
}

TEST_F(Printing, IsRefusedWithAnIssueOfTheRoll) {
    start();
    select(queue);
    const QString message = model->message();
    const auto issue = model->rollExportIssue();
    ASSERT_TRUE(issue);
    print();
    expectRefused(issue->toStdString(), message);
}

TEST_F(Printing, IsRefusedWithoutAPrinter) {
    prepare();
    select({});
    const QString message = model->message();
    print();
    expectRefused("Select a configured printer first.", message);
    const test::InChinese chinese;
    model->dismissError();
    print();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("请先选择已配置的打印机。"));
}

TEST_F(Printing, IsRefusedByTheChecksOfTheWindow) {
    services.printRefusal = QStringLiteral("The queue is gone.");
    prepare();
    print();
    EXPECT_EQ(services.prints.size(), 1);
    expectRefused("The queue is gone.");
}

TEST_F(Printing, IsRefusedIfTheRollCannotBeRendered) {
    prepare();
    QFile::remove(folder.path(QStringLiteral("pictures/a.png")));
    print();
    EXPECT_TRUE(services.prints.isEmpty());
    ASSERT_TRUE(model->errorMessage());
    expectRefused(model->errorMessage()->toStdString());
}

TEST_F(Printing, IsRefusedWithoutATemporaryFolder) {
    prepare();
    QDir(folder.path(QStringLiteral("tmp"))).removeRecursively();
    print();
    ASSERT_TRUE(model->errorMessage());
    expectRefused(model->errorMessage()->toStdString());
}

// Colours

TEST_F(Printing, ConvertsTheColoursToTheProfileThatWasChosen) {
    inWindow([this] {
        EXPECT_EQ(services.prints[0].workflow.mode, ColorManagementMode::appManaged);
        return true;
    });
    start();
    import({picture(QStringLiteral("tagged.png"), 120, 80, 10, samples::sRgbProfile())});
    select(queue);
    const samples::Bytes& bytes = samples::pressProfile();
    services.chosenFiles.push_back(
        {QUrl::fromLocalFile(folder.write(QStringLiteral("press.icc"),
                                          QByteArray(reinterpret_cast<const char*>(bytes.data()), // NOLINT
                                                     static_cast<qsizetype>(bytes.size()))))});
    model->inspectICC();
    model->setColorManagementMode(ColorManagementMode::appManaged);
    model->setDriverColorCorrectionDisabledConfirmed(true);
    ASSERT_EQ(model->rollExportIssue(), std::nullopt);
    print();
    EXPECT_EQ(windows, 1);
    QDir(stored(QStringLiteral("presets/profiles"))).removeRecursively();
    print();
    EXPECT_EQ(windows, 1);
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(model->message(), notSubmitted);
    EXPECT_TRUE(temporaryFolders().isEmpty());
}

} // namespace
} // namespace orvex
