#include "PrinterTelemetryCommand.h"
#include "PrinterTelemetryError.h"
#include "PrinterTelemetryReader.h"
#include "PrivateScheduler.h"
#include "ReadinessPolicies.h"
#include "SchedulerTest.h"

namespace orvex {
namespace {

using test::PrivateScheduler;
using Kind = PrivateScheduler::Kind;
using State = NativePrintReadinessState;

const QString queue = QStringLiteral("Canon_iPF9400");

PrinterTelemetrySnapshot telemetry() {
    return PrinterTelemetryReader().read(queue).result();
}

NativePrintReadinessAssessment readiness() {
    return NativePrintReadinessPolicy::evaluate(telemetry(), queue);
}

/// The description of the error with which reading a queue fails; empty if it does not.
std::string failureOf(const QString& name) {
    try {
        static_cast<void>(PrinterTelemetryReader().read(name).result());
        return {};
    } catch (const PrinterTelemetryError& error) {
        return error.message().toStdString();
    }
}

class Telemetry : public test::SchedulerTest {};

} // namespace

TEST_F(Telemetry, OfAnIdleQueueIsReady) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    const PrinterTelemetrySnapshot snapshot = telemetry();
    EXPECT_EQ(snapshot.queueName, queue);
    EXPECT_EQ(snapshot.queueState, 3);
    EXPECT_EQ(snapshot.isAcceptingJobs, true);
    EXPECT_EQ(snapshot.queuedJobCount, 0);
    EXPECT_EQ(snapshot.queueReasons, QStringList{QStringLiteral("none")});
    EXPECT_EQ(snapshot.queueMessage, QString());
    EXPECT_EQ(NativePrintReadinessPolicy::evaluate(snapshot, queue).state, State::ready);
}

TEST_F(Telemetry, OfAHeldJobCountsIt) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    scheduler.submitHeld(queue);
    EXPECT_EQ(telemetry().queuedJobCount, 1);
    EXPECT_EQ(readiness().state, State::ready);
}

TEST_F(Telemetry, OfAPausedQueueTellsItsReason) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    scheduler.pause(queue, QStringLiteral("Out of canvas"));
    EXPECT_EQ(telemetry().queueState, 5);
    EXPECT_EQ(telemetry().queueReasons, QStringList{QStringLiteral("paused")});
    EXPECT_EQ(readiness().state, State::unavailable);
    EXPECT_EQ(readiness().blockingReason,
              QStringLiteral("The system print queue is stopped, disabled or reporting an error. Direct printing is "
                             "unavailable. Resolve the issue in Canon or the system queue first; the app will not "
                             "enable the queue automatically.\nSystem report: Out of canvas；paused"));
}

TEST_F(Telemetry, OfARejectingQueueTellsItsReason) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    scheduler.reject(queue, QStringLiteral("closed today"));
    EXPECT_EQ(telemetry().queueState, 3);
    EXPECT_EQ(telemetry().isAcceptingJobs, false);
    EXPECT_EQ(readiness().state, State::unavailable);
    EXPECT_EQ(readiness().blockingReason,
              QStringLiteral("The system queue is not accepting jobs. Direct printing is unavailable. Check the system "
                             "queue first; the app will not change queue settings.\nSystem report: closed today"));
}

TEST_F(Telemetry, OfAPrintingQueueIsReady) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue, Kind::wide, PrivateScheduler::Printer::waits);
    scheduler.submit(queue);
    scheduler.waitUntilProcessing(queue);
    const PrinterTelemetrySnapshot snapshot = telemetry();
    EXPECT_EQ(snapshot.queueState, 4);
    EXPECT_EQ(snapshot.queueMessage, QStringLiteral("Printing slowly"));
    EXPECT_EQ(snapshot.queueReasons, QStringList{QStringLiteral("media-low-warning")});
    EXPECT_EQ(NativePrintReadinessPolicy::evaluate(snapshot, queue).state, State::ready);
    scheduler.finishJob(queue);
}

TEST_F(Telemetry, OfARawQueueIsRefused) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue, Kind::raw);
    EXPECT_EQ(failureOf(queue), "The local CUPS status query failed. Device status is unknown.");
}

TEST_F(Telemetry, OfAnUnknownQueueIsRefused) {
    const PrivateScheduler scheduler;
    EXPECT_EQ(failureOf(queue), "The local CUPS status query failed. Device status is unknown.");
}

TEST_F(Telemetry, OfAQueueInAnotherCaseIsNotBelieved) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    EXPECT_EQ(failureOf(queue.toLower()), "CUPS did not return valid read-only status data.");
}

TEST_F(Telemetry, OfAQueueWithALetterBeyondAsciiIsRead) {
    PrivateScheduler scheduler;
    const QString chinese = QStringLiteral("画布9400");
    scheduler.addQueue(chinese);
    EXPECT_EQ(PrinterTelemetryReader().read(chinese).result().queueName, chinese);
}

TEST_F(Telemetry, OfANameThatNoQueueCanHaveIsRefused) {
    EXPECT_EQ(failureOf(QStringLiteral("two words")), "Invalid local print queue name.");
}

TEST_F(Telemetry, IsRefusedWithoutAScheduler) {
    EXPECT_EQ(failureOf(queue), "The local CUPS status query failed. Device status is unknown.");
}

TEST_F(Telemetry, IsRefusedWhenTheSystemsTestFileHasChanged) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    QByteArray script = test::TemporaryFolder::read(QString::fromLatin1(PrinterTelemetryCommand::testFile));
    {
        const test::ReplacedTool altered(PrinterTelemetryCommand::testFile,
                                         QByteArray(script)
                                             .replace("Get-Printer", "get-printer")
                                             .replace("OPERATION get-printer-attributes", "OPERATION Pause-Printer"));
        // A tool that would tell that it was run.
        const test::ReplacedTool tool("/usr/bin/ipptool", "#!/bin/sh\necho run > /run/cups/was-run\n");
        EXPECT_EQ(failureOf(queue), "The system status script does not match the verified read-only script. It was "
                                    "not run.");
        EXPECT_FALSE(QFile::exists(QStringLiteral("/run/cups/was-run")));
    }
    EXPECT_EQ(failureOf(queue), "");
    EXPECT_EQ(telemetry().queueState, 3);
}

TEST_F(Telemetry, IsRefusedWhenTheSystemsTestFileIsNoText) {
    const test::ReplacedTool altered(PrinterTelemetryCommand::testFile, "{\xFF}");
    EXPECT_EQ(failureOf(queue), "Cannot read local CUPS status: The system read-only query script is unavailable.");
}

TEST_F(Telemetry, IsRefusedWhenTheSystemsTestFileEndsAmidACharacter) {
    const QByteArray script = test::TemporaryFolder::read(QString::fromLatin1(PrinterTelemetryCommand::testFile));
    const test::ReplacedTool altered(PrinterTelemetryCommand::testFile, script + "\n# \xE4\xBD");
    EXPECT_EQ(failureOf(queue), "Cannot read local CUPS status: The system read-only query script is unavailable.");
}

TEST_F(Telemetry, IsRefusedWhenTheSystemsTestFileHasAByteOrderMark) {
    const QByteArray script = test::TemporaryFolder::read(QString::fromLatin1(PrinterTelemetryCommand::testFile));
    const test::ReplacedTool altered(PrinterTelemetryCommand::testFile, "\xEF\xBB\xBF" + script);
    EXPECT_EQ(failureOf(queue),
              "The system status script does not match the verified read-only script. It was not run.");
}

TEST_F(Telemetry, IsRefusedWhenTheSystemsTestFileIsTooLarge) {
    const QByteArray script = test::TemporaryFolder::read(QString::fromLatin1(PrinterTelemetryCommand::testFile));
    const test::ReplacedTool altered(PrinterTelemetryCommand::testFile,
                                     script + QByteArray(16385 - script.size(), ' '));
    EXPECT_EQ(failureOf(queue),
              "The system status script does not match the verified read-only script. It was not run.");
}

TEST_F(Telemetry, TakesTheSystemsTestFileAsItIsInstalled) {
    const QByteArray script = test::TemporaryFolder::read(QString::fromLatin1(PrinterTelemetryCommand::testFile));
    EXPECT_TRUE(PrinterTelemetryCommand::isReadOnlyTestScript(QString::fromUtf8(script)));
}

} // namespace orvex
