#include "HeldReading.h"
#include "InChinese.h"
#include "RefreshTest.h"

namespace orvex {
namespace {

using test::hold;
using test::printer;
using test::readyState;
using test::waitFor;

const QMap<QString, Size> papers{{QStringLiteral("A4"), Size{595.0, 842.0}}};

class Refresh : public test::RefreshTest {
protected:
    /// Begins a pass, and waits until it asks for what the test holds.
    void refreshUntilAsked(const auto& held) {
        model->refresh();
        waitFor([&] { return held->isAwaited(); });
    }

    /// Starts the session, and selects another printer while a pass waits for what the test holds.
    void selectOtherDuringPass(const auto& held) {
        start();
        refreshUntilAsked(held);
        model->selectPrinter(other);
    }
};

// One pass

TEST_F(Refresh, WithoutPrintersSelectsNothingAndStillChecksTheSettings) {
    int checks = 0;
    readings = test::quietReadings();
    readings.captureSettings = [&checks](const QList<QUrl>&, const std::stop_token&) {
        ++checks;
        return QtFuture::makeReadyFuture(ProtectedSettingsSnapshot());
    };
    start();
    PrinterReadings before;
    before.telemetry = readyState(queue);
    before.telemetryError = QStringLiteral("as before");
    SessionBackdoor::set(model->printerReadings, before);
    refresh();
    EXPECT_EQ(printers().printers, QList<PrinterSnapshot>());
    EXPECT_EQ(printers().selectedPrinterName, QString());
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError, QStringLiteral("as before"));
    EXPECT_EQ(printers().lastRefreshError, std::nullopt);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(checks, 1);
}

TEST_F(Refresh, SelectsTheWidePrinterAndReadsItsPapersAndState) {
    readings.readPaperGeometry = [](const QString& name) {
        EXPECT_EQ(name, queue);
        return QtFuture::makeReadyFuture(papers);
    };
    readings.readTelemetry = [](const QString& name, const std::stop_token&) {
        return QtFuture::makeReadyFuture(readyState(name));
    };
    start();
    const QString message = model->message();
    refresh();
    EXPECT_EQ(printers().printers, QList({printer(other), printer(queue)}));
    EXPECT_EQ(printers().selectedPrinterName, queue);
    EXPECT_EQ(printers().paperGeometry, papers);
    EXPECT_EQ(printers().telemetry, readyState(queue));
    EXPECT_EQ(printers().telemetryError, std::nullopt);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Refresh, KeepsTheChoicesForAPrinterThatIsStillThere) {
    start();
    refresh();
    choose();
    refresh();
    expectChoices(true);
}

TEST_F(Refresh, ForgetsTheChoicesForAPrinterThatIsGone) {
    const auto passes = hold(readings.discoverQueues);
    start();
    model->refresh();
    passes->answer({printer(QStringLiteral("A")), printer(other)});
    settle();
    EXPECT_EQ(printers().selectedPrinterName, QStringLiteral("A"));
    choose();
    model->refresh();
    passes->answer({printer(other), printer(queue)});
    settle();
    EXPECT_EQ(printers().selectedPrinterName, queue);
    expectChoices(false);
}

TEST_F(Refresh, ForgetsTheChoicesWhereNothingIsSelected) {
    readings = test::quietReadings();
    start();
    choose();
    refresh();
    expectChoices(false);
}

TEST_F(Refresh, ReturnsAtOnceWhileOneRuns) {
    const auto passes = hold(readings.discoverQueues);
    start();
    model->refresh();
    EXPECT_TRUE(model->refreshing());
    model->refresh();
    EXPECT_EQ(passes->count(), 1U);
    passes->answer({});
    settle();
    EXPECT_FALSE(model->refreshing());
    EXPECT_EQ(passes->count(), 1U);
    model->refresh();
    EXPECT_EQ(passes->count(), 2U);
    passes->answer({});
}

// Failures

TEST_F(Refresh, ThatFailsKeepsWhatWasReadAndSaysSoEachTime) {
    const auto passes = hold(readings.discoverQueues);
    start();
    model->refresh();
    passes->answer({printer(queue)});
    settle();
    choose();
    const QString message = model->message();
    for (int pass = 0; pass < 2; ++pass) {
        model->refresh();
        passes->fail(QStringLiteral("The scheduler is down."));
        settle();
        EXPECT_EQ(printers().printers, QList{printer(queue)});
        EXPECT_EQ(printers().selectedPrinterName, queue);
        EXPECT_EQ(printers().lastRefreshError, QStringLiteral("The scheduler is down."));
        EXPECT_EQ(model->errorMessage(), QStringLiteral("Could not read printer status: The scheduler is down."));
        EXPECT_EQ(model->message(), message);
        expectChoices(true);
        model->dismissError();
    }
    model->refresh();
    passes->answer({printer(queue)});
    settle();
    EXPECT_EQ(printers().lastRefreshError, std::nullopt);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Refresh, ThatFailsSaysSoInChinese) {
    const test::InChinese chinese;
    const auto passes = hold(readings.discoverQueues);
    start();
    model->refresh();
    passes->fail(QStringLiteral("调度程序未运行。"));
    settle();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("无法读取打印机状态：调度程序未运行。"));
}

TEST_F(Refresh, ThatFailsStillReadsTheSelectedQueueAndChecksTheSettings) {
    const auto passes = hold(readings.discoverQueues);
    const auto states = hold(readings.readTelemetry);
    const auto checks = hold(readings.captureSettings);
    start();
    model->selectPrinter(queue);
    waitFor([&] { return passes->isAwaited(); });
    passes->fail(QStringLiteral("down"));
    waitFor([&] { return states->isAwaited(); });
    states->answer(readyState(queue));
    waitFor([&] { return checks->isAwaited(); });
    EXPECT_EQ(printers().telemetry, readyState(queue));
    checks->answer({});
    settle();
}

TEST_F(Refresh, ThatSucceedsLeavesAnOlderErrorOnTheScreen) {
    start();
    SessionBackdoor::set(model->errorMessage, std::optional(QStringLiteral("older")));
    refresh();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("older"));
}

TEST_F(Refresh, TellsWhyTheStateCouldNotBeReadWithoutAnAlert) {
    const auto states = hold(readings.readTelemetry);
    start();
    refreshUntilAsked(states);
    states->answer(readyState(queue));
    settle();
    refreshUntilAsked(states);
    EXPECT_EQ(printers().telemetry, readyState(queue)); // until there is news
    states->fail(QStringLiteral("No answer."));
    settle();
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError, QStringLiteral("No answer."));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    refreshUntilAsked(states);
    states->answer(readyState(queue));
    settle();
    EXPECT_EQ(printers().telemetryError, std::nullopt);
}

TEST_F(Refresh, ChecksTheSettingsAfterAStateThatCouldNotBeRead) {
    const auto states = hold(readings.readTelemetry);
    const auto checks = hold(readings.captureSettings);
    start();
    refreshUntilAsked(states);
    EXPECT_EQ(checks->count(), 0U);
    states->fail(QStringLiteral("No answer."));
    waitFor([&] { return checks->isAwaited(); });
    checks->answer({});
    settle();
}

// Another selection while something is read

TEST_F(Refresh, DropsThePapersOfAQueueThatIsNoLongerSelected) {
    const auto sizes = hold(readings.readPaperGeometry);
    selectOtherDuringPass(sizes);
    sizes->answer(papers);
    settle();
    EXPECT_EQ(printers().selectedPrinterName, other);
    EXPECT_EQ(printers().paperGeometry, (QMap<QString, Size>()));
}

TEST_F(Refresh, DropsTheStateOfAQueueThatIsNoLongerSelected) {
    const auto states = hold(readings.readTelemetry);
    selectOtherDuringPass(states);
    states->answer(readyState(queue));
    settle();
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError, std::nullopt);
}

TEST_F(Refresh, ShowsAFailureOfAQueueThatIsNoLongerSelected) {
    const auto states = hold(readings.readTelemetry);
    selectOtherDuringPass(states);
    PrinterReadings withState = printers();
    withState.telemetry = readyState(other);
    SessionBackdoor::set(model->printerReadings, withState);
    states->fail(QStringLiteral("No answer."));
    settle();
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError, QStringLiteral("No answer."));
}

TEST_F(Refresh, GoesOnWithTheQueueThatItBeganWith) {
    QStringList asked;
    const auto sizes = hold(readings.readPaperGeometry);
    readings.readTelemetry = [&asked](const QString& name, const std::stop_token&) {
        asked.append(name);
        return QtFuture::makeReadyFuture(readyState(name));
    };
    selectOtherDuringPass(sizes);
    sizes->answer(papers);
    settle();
    EXPECT_EQ(asked, QStringList{queue});
}

TEST_F(Refresh, KeepsAnotherSelectionThatWasMadeWhileTheQueuesWereRead) {
    const auto passes = hold(readings.discoverQueues);
    start();
    model->refresh();
    model->selectPrinter(other);
    choose();
    passes->answer({printer(other), printer(queue)});
    settle();
    EXPECT_EQ(printers().selectedPrinterName, other);
    expectChoices(true);
}

// A change of printer by the user

TEST_F(Refresh, FollowsAChangeOfPrinter) {
    start();
    refresh();
    choose();
    PrinterReadings before = printers();
    before.telemetry = readyState(queue);
    before.telemetryError = QStringLiteral("as before");
    before.paperGeometry = papers;
    SessionBackdoor::set(model->printerReadings, before);
    const QString message = model->message();
    model->selectPrinter(other);
    PrinterReadings expected = before;
    expected.selectedPrinterName = other;
    expected.telemetry.reset();
    EXPECT_EQ(printers(), expected); // the papers stay until there are others
    expectChoices(false);
    EXPECT_FALSE(SessionBackdoor(*model).isCanvasApplied());
    EXPECT_EQ(model->message(), message);
    EXPECT_FALSE(model->refreshing());
    waitFor([this] { return printers().telemetry.has_value(); });
    settle();
    EXPECT_EQ(printers().telemetry->queueName, other);
    EXPECT_EQ(printers().paperGeometry, (QMap<QString, Size>()));
}

TEST_F(Refresh, ThatRunsSwallowsTheOneOfAChangeOfPrinter) {
    const auto checks = hold(readings.captureSettings);
    selectOtherDuringPass(checks);
    QCoreApplication::processEvents();
    checks->answer({});
    settle();
    EXPECT_EQ(checks->count(), 1U);
    EXPECT_EQ(printers().telemetry, std::nullopt);
    refreshUntilAsked(checks);
    EXPECT_EQ(printers().telemetry->queueName, other);
    checks->answer({});
}

TEST_F(Refresh, TakesAQueueThatNoPassHasFoundAsOneThatIsGone) {
    start();
    model->selectPrinter(QStringLiteral("nowhere"));
    EXPECT_EQ(printers().selectedPrinterName, QStringLiteral("nowhere"));
    waitFor([this] { return printers().selectedPrinterName != QStringLiteral("nowhere"); });
    EXPECT_EQ(printers().selectedPrinterName, queue);
    settle();
}

} // namespace
} // namespace orvex
