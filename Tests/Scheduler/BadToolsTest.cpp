#include "CUPSInspectionError.h"
#include "CUPSService.h"
#include "Interrupted.h"
#include "PrinterTelemetryError.h"
#include "PrinterTelemetryReader.h"
#include "PrivateScheduler.h"
#include "SchedulerTest.h"
#include "SilentScheduler.h"
#include "Tool.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSet>

#include <gmock/gmock.h>
#include <sys/wait.h>

namespace orvex {
namespace {

using ::testing::StartsWith;

const QByteArray lpstat = "/usr/bin/lpstat";
const QByteArray lpoptions = "/usr/bin/lpoptions";
const QByteArray ipptool = "/usr/bin/ipptool";

/// A script that becomes the bad tool.
QByteArray badTool(const QByteArray& arguments) {
    return "#!/bin/sh\nexec " ORVEX_BAD_TOOL " " + arguments + "\n";
}

InspectionResult statuses(double timeoutSeconds = 20.0) {
    return CUPSService(timeoutSeconds, 4096).run(InspectionCommand::printerStatuses());
}

std::string telemetryFailure() {
    try {
        static_cast<void>(PrinterTelemetryReader().read(QStringLiteral("A")).result());
        return {};
    } catch (const PrinterTelemetryError& error) {
        return error.message().toStdString();
    }
}

QSet<QString> openDescriptors() {
    const QStringList names =
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return {names.begin(), names.end()};
}

bool hasChildren() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

class BadTools : public test::SchedulerTest {};

} // namespace

// The tools of a pass

TEST_F(BadTools, ThatFloodAreReadToTheirEnd) {
    const test::ReplacedTool tool(lpstat, badTool("flood 10000000"));
    const InspectionResult result = statuses();
    EXPECT_EQ(result.output, QString(4096, u'x'));
    EXPECT_TRUE(result.truncated);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.status, 0);
}

TEST_F(BadTools, ThatDoNotListenAreKilled) {
    const test::ReplacedTool tool(lpstat, badTool("ignore-term"));
    const InspectionResult result = statuses(2.0);
    EXPECT_EQ(result.output, QStringLiteral("deaf"));
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.status, SIGKILL);
    EXPECT_EQ(result.diagnostic(QStringLiteral("Context")),
              QStringLiteral("Context The command timed out and was stopped. Exit status 9. deaf"));
}

TEST_F(BadTools, ThatCloseTheirOutputAndLingerAreStopped) {
    const test::ReplacedTool tool(lpstat, badTool("close-and-linger"));
    const InspectionResult result = statuses(2.0);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.status, SIGTERM);
}

TEST_F(BadTools, ThatWriteNoTextAreReadAsFarAsTheyDo) {
    const test::ReplacedTool tool(lpstat, badTool("invalid-utf8"));
    const InspectionResult result = statuses();
    EXPECT_EQ(result.output, QStringLiteral("a\uFFFD\uFFFD z\uFFFD"));
    EXPECT_TRUE(result.isClean());
}

TEST_F(BadTools, ThatEndByASignalFailed) {
    const test::ReplacedTool tool(lpstat, badTool("signal 11"));
    const InspectionResult result = statuses();
    EXPECT_EQ(result.status, SIGSEGV);
    EXPECT_FALSE(result.timedOut);
    EXPECT_FALSE(result.isClean());
}

TEST_F(BadTools, ThatLeaveAGrandchildAreNotAwaitedBeyondTheirEnd) {
    const test::ReplacedTool tool(lpstat, badTool("grandchild"));
    const InspectionResult result = statuses();
    EXPECT_EQ(result.output, QStringLiteral("left behind"));
    EXPECT_TRUE(result.isClean());
}

TEST_F(BadTools, ThatCannotRunTellWhy) {
    const test::ReplacedTool tool(lpstat, "no program");
    const InspectionResult result = statuses();
    EXPECT_EQ(result.output, QStringLiteral("/usr/bin/lpstat: Exec format error"));
    EXPECT_EQ(result.status, std::nullopt);
    EXPECT_FALSE(result.timedOut);
    EXPECT_FALSE(result.truncated);
}

TEST_F(BadTools, GetNoEnvironmentButTheLanguage) {
    const test::ReplacedTool tool(lpstat, badTool("surroundings"));
    qputenv("CUPS_SERVER", "203.0.113.1");
    const InspectionResult result = statuses();
    qunsetenv("CUPS_SERVER");
    QStringList environment = result.output.split(u'\n').filter(QStringLiteral("environment "));
    // The shell adds its own folder for the tool that it becomes.
    environment.removeIf([](const QString& line) { return line.startsWith(QStringLiteral("environment PWD=")); });
    environment.sort();
    EXPECT_EQ(environment, QStringList({QStringLiteral("environment LANG=C"), QStringLiteral("environment LC_ALL=C")}));
}

TEST_F(BadTools, ThatSayThatThereAreNoQueuesAreBelievedOnlyIfTheyEnd) {
    EXPECT_EQ(CUPSService::standard().run(InspectionCommand::printerStatuses()).status, 1); // no scheduler here
    const test::ReplacedTool tool(lpstat, "#!/bin/sh\necho 'No Destinations Added.'\nexec " ORVEX_BAD_TOOL
                                          " close-and-linger\n");
    try {
        static_cast<void>(CUPSService(2.0, 262144).discover().result());
        FAIL() << "a list was made";
    } catch (const CUPSInspectionError& error) {
        EXPECT_EQ(error.message(), QStringLiteral("Cannot read local CUPS printers The command timed out and was "
                                                  "stopped. Exit status 15. No Destinations Added."));
    }
}

TEST_F(BadTools, OfOneQueueTakeNothingFromTheOthers) {
    test::PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    scheduler.addQueue(QStringLiteral("B"));
    // For the queue A it ends by a signal, for all others it is the tool that it was.
    const test::TemporaryFolder folder;
    const QString original = folder.path(QStringLiteral("lpoptions"));
    ASSERT_TRUE(QFile::copy(QString::fromLatin1(lpoptions), original));
    const test::ReplacedTool tool(lpoptions, "#!/bin/sh\n[ \"$2\" = A ] && exec " ORVEX_BAD_TOOL " signal 9\nexec " +
                                                 original.toLatin1() + " \"$@\"\n");
    const QList<PrinterSnapshot> printers = CUPSService(20.0, 262144).discover().result();
    ASSERT_EQ(printers.size(), 2);
    EXPECT_EQ(printers[0].options, QList<DriverOption>());
    EXPECT_EQ(printers[0].diagnostic, QStringLiteral("Cannot read driver options Exit status 9."));
    EXPECT_EQ(printers[1].options.size(), 3);
}

TEST_F(BadTools, ThatHangAreGivenUpWhenThePassIsStopped) {
    const test::ReplacedTool tool(lpstat, badTool("ignore-term"));
    std::stop_source source;
    auto pass = CUPSService(30.0, 262144).discover(source.get_token());
    source.request_stop();
    EXPECT_THROW(static_cast<void>(pass.result()), platform::Interrupted);
}

TEST_F(BadTools, LeaveNoDescriptorsAndNoZombies) {
    const test::ReplacedTool tool(lpstat, badTool("flood 100000"));
    static_cast<void>(statuses());
    const QSet<QString> before = openDescriptors();
    for (int run = 0; run < 50; ++run) {
        ASSERT_TRUE(statuses().truncated);
    }
    // Threads of earlier tests may have ended meanwhile; nothing must have been added.
    EXPECT_EQ(openDescriptors() - before, QSet<QString>());
    EXPECT_FALSE(hasChildren());
}

// A scheduler that does not answer

TEST_F(BadTools, OfASilentSchedulerAreGivenUpAtTheDeadline) {
    const test::SilentScheduler scheduler;
    QElapsedTimer timer;
    timer.start();
    try {
        static_cast<void>(CUPSService(1.0, 262144).discover().result());
        FAIL() << "a list was made";
    } catch (const CUPSInspectionError& error) {
        EXPECT_THAT(error.message().toStdString(),
                    StartsWith("Cannot read local CUPS printers The command timed out and was stopped."));
    }
    EXPECT_GE(timer.elapsed(), 1000);
}

// The tool of the telemetry

struct TelemetryToolCase {
    const char* name;
    QByteArray program;
    const char* failure;
};

void PrintTo(const TelemetryToolCase& row, std::ostream* out) {
    *out << row.name;
}

class BadTelemetryTool : public test::SchedulerTest, public ::testing::WithParamInterface<TelemetryToolCase> {};

TEST_P(BadTelemetryTool, IsNotBelieved) {
    const test::ReplacedTool tool(ipptool, GetParam().program);
    EXPECT_EQ(telemetryFailure(), GetParam().failure);
    EXPECT_FALSE(hasChildren());
}

INSTANTIATE_TEST_SUITE_P(
    BadTools, BadTelemetryTool,
    ::testing::Values(
        TelemetryToolCase{"Flood", badTool("flood 10000000"),
                          "The CUPS status response is too large. Incomplete data was not used."},
        TelemetryToolCase{"FloodOfErrors", badTool("flood-errors 1048577"),
                          "The CUPS status response is too large. Incomplete data was not used."},
        TelemetryToolCase{"Failure", badTool("exit 1"),
                          "The local CUPS status query failed. Device status is unknown."},
        TelemetryToolCase{"Signal", badTool("signal 11"),
                          "The local CUPS status query failed. Device status is unknown."},
        TelemetryToolCase{"Nothing", badTool("exit 0"), "CUPS did not return valid read-only status data."},
        TelemetryToolCase{"NoText", badTool("invalid-utf8"), "CUPS did not return valid read-only status data."},
        TelemetryToolCase{"GrandchildWithThePipe", badTool("grandchild"),
                          "CUPS did not return valid read-only status data."},
        TelemetryToolCase{"NoProgram", "no program",
                          "Cannot read local CUPS status: The system ipptool is unavailable."},
        TelemetryToolCase{"Hangs", badTool("ignore-term"),
                          "Reading local CUPS status timed out. Device status is unknown."}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(BadTools, ThatFailWithAGoodAnswerAreNotBelieved) {
    const test::ReplacedTool tool(ipptool,
                                  "#!/bin/sh\n/bin/cat " ORVEX_FIXTURES "/Cups/telemetry_W9400_idle.plist\nexit 1\n");
    EXPECT_EQ(telemetryFailure(), "The local CUPS status query failed. Device status is unknown.");
}

TEST_F(BadTools, ThatHangAreGivenUpWhenTheReadingIsStopped) {
    const test::ReplacedTool tool(ipptool, badTool("ignore-term"));
    std::stop_source source;
    auto reading = PrinterTelemetryReader().read(QStringLiteral("A"), source.get_token());
    source.request_stop();
    EXPECT_THROW(static_cast<void>(reading.result()), platform::Interrupted);
}

// Both at once

TEST_F(BadTools, ThatHoldAPassDoNotHoldAReading) {
    test::PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    const test::TemporaryFolder folder;
    const QString original = folder.path(QStringLiteral("lpstat"));
    ASSERT_TRUE(QFile::copy(QString::fromLatin1(lpstat), original));
    // It says that it is there, waits for the barrier to go, and is then the tool that it was.
    const test::ReplacedTool tool(lpstat, "#!/bin/sh\n: > /run/cups/is-waiting\n"
                                          "until [ -e /run/cups/may-go ]; do /bin/sleep 0.02; done\nexec " +
                                              original.toLatin1() + " \"$@\"\n");
    const auto pass = CUPSService(30.0, 262144).discover();
    test::waitUntil("the pass to wait", [] { return QFile::exists(QStringLiteral("/run/cups/is-waiting")); });

    EXPECT_EQ(PrinterTelemetryReader().read(QStringLiteral("A")).result().queueState, 3);
    EXPECT_FALSE(pass.isFinished());

    QFile barrier(QStringLiteral("/run/cups/may-go"));
    ASSERT_TRUE(barrier.open(QIODevice::WriteOnly));
    const QList<PrinterSnapshot> printers = pass.result();
    ASSERT_EQ(printers.size(), 1);
    EXPECT_THAT(printers[0].diagnostic.toStdString(), StartsWith("Local CUPS was inspected read-only."));
}

} // namespace orvex
