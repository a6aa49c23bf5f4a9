#include "PrivateScheduler.h"

#include "ChildProcess.h"
#include "SchedulerTest.h"
#include "Tool.h"

#include <QDateTime>
#include <QDirIterator>

#include <sched.h>

#include <ostream>
#include <stdexcept>

namespace orvex {
namespace {

using test::PrivateScheduler;
using Kind = PrivateScheduler::Kind;
using Printer = PrivateScheduler::Printer;

const QString lpstat = QStringLiteral("/usr/bin/lpstat");

QByteArray queues() {
    return test::outputOfTool(lpstat, {QStringLiteral("-p")});
}

QByteArray waitingJobs() {
    return test::outputOfTool(lpstat, {QStringLiteral("-W"), QStringLiteral("not-completed"), QStringLiteral("-o")});
}

/// The first words of all lines.
QList<QByteArray> firstWords(const QByteArray& text) {
    QList<QByteArray> words;
    for (const QByteArray& line : text.trimmed().split('\n')) {
        words.append(line.left(line.indexOf(' ')));
    }
    return words;
}

/// What the queue tells of itself, as a property list.
test::ToolResult telemetry(const QString& queue) {
    return test::runTool(QStringLiteral("/usr/bin/ipptool"),
                         {QStringLiteral("-X"), QStringLiteral("-T"), QStringLiteral("3"),
                          QStringLiteral("ipp://localhost/printers/") + queue,
                          QStringLiteral("/usr/share/cups/ipptool/get-printer-attributes.test")});
}

/// All files below a folder with their sizes and times.
QStringList listing(const QString& folder) {
    QStringList lines;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        lines.append(QStringLiteral("%1 %2 %3")
                         .arg(entry.filePath(), QString::number(entry.size()),
                              entry.lastModified().toString(Qt::ISODateWithMs)));
    }
    lines.sort();
    return lines;
}

class SchedulerOfATest : public test::SchedulerTest {};

TEST_F(SchedulerOfATest, HasNoQueuesAtFirst) {
    const PrivateScheduler scheduler;

    const test::ToolResult result = test::runTool(lpstat, {QStringLiteral("-p")});
    EXPECT_EQ(result.errors, "lpstat: No destinations added.\n");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(waitingJobs(), "");
}

TEST_F(SchedulerOfATest, ListsTheQueuesThatWereAdded) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    scheduler.addQueue(QStringLiteral("Canon_iPF9400"), Kind::widePdfFilter);
    scheduler.addQueue(QStringLiteral("RAW"), Kind::raw);

    const QList<QByteArray> lines = queues().trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3) << queues().toStdString();
    EXPECT_TRUE(lines[0].startsWith("printer Canon_iPF9400 is idle.  enabled since ")) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith("printer RAW is idle.  enabled since ")) << lines[1].toStdString();
    EXPECT_TRUE(lines[2].startsWith("printer W9400 is idle.  enabled since ")) << lines[2].toStdString();
    EXPECT_EQ(test::outputOfTool(lpstat, {QStringLiteral("-v")}),
              "device for Canon_iPF9400: printing:/run/cups/printed\n"
              "device for RAW: printing:/run/cups/printed\n"
              "device for W9400: printing:/run/cups/printed\n");
}

TEST_F(SchedulerOfATest, DescribesAWidePrinter) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));

    const QByteArray options = test::outputOfTool(
        QStringLiteral("/usr/bin/lpoptions"), {QStringLiteral("-p"), QStringLiteral("W9400"), QStringLiteral("-l")});
    EXPECT_TRUE(options.contains("PageSize/Media Size: *A4 Roll60 Custom.WIDTHxHEIGHT\n")) << options.toStdString();
}

TEST_F(SchedulerOfATest, PausesAQueueForAReasonAndEnablesItAgain) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));

    scheduler.pause(QStringLiteral("W9400"), QStringLiteral("new roll"));
    EXPECT_TRUE(queues().startsWith("printer W9400 disabled since ")) << queues().toStdString();
    EXPECT_TRUE(queues().endsWith(" -\n\tnew roll\n")) << queues().toStdString();

    scheduler.enable(QStringLiteral("W9400"));
    EXPECT_TRUE(queues().startsWith("printer W9400 is idle. ")) << queues().toStdString();
}

TEST_F(SchedulerOfATest, RejectsJobsForAReasonAndAcceptsThemAgain) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));

    scheduler.reject(QStringLiteral("W9400"), QStringLiteral("closed today"));
    EXPECT_TRUE(queues().startsWith("printer W9400 is idle. ")) << queues().toStdString();
    EXPECT_TRUE(queues().endsWith("\n\tclosed today\n")) << queues().toStdString();
    EXPECT_THROW(scheduler.submitHeld(QStringLiteral("W9400")), std::runtime_error);

    scheduler.accept(QStringLiteral("W9400"));
    EXPECT_GT(scheduler.submitHeld(QStringLiteral("W9400")), 0);
}

TEST_F(SchedulerOfATest, KeepsAQueuePrintingUntilItsJobIsFinished) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"), Kind::wide, Printer::waits);

    const QByteArray job = "W9400-" + QByteArray::number(scheduler.submit(QStringLiteral("W9400")));
    scheduler.waitUntilProcessing(QStringLiteral("W9400"));
    EXPECT_TRUE(queues().startsWith("printer W9400 now printing " + job + ".  enabled since "))
        << queues().toStdString();
    EXPECT_TRUE(queues().endsWith("\n\tPrinting slowly\n")) << queues().toStdString();
    EXPECT_EQ(firstWords(waitingJobs()), QList<QByteArray>{job});
    EXPECT_TRUE(telemetry(QStringLiteral("W9400")).output.contains("<string>media-low-warning</string>"));

    scheduler.finishJob(QStringLiteral("W9400"));
    test::waitUntil("the queue is idle", [] { return queues().startsWith("printer W9400 is idle. "); });
    EXPECT_EQ(waitingJobs(), "");
}

TEST_F(SchedulerOfATest, StopsWhileAQueueIsPrinting) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"), Kind::wide, Printer::waits);
    scheduler.submit(QStringLiteral("W9400"));
    scheduler.waitUntilProcessing(QStringLiteral("W9400"));

    EXPECT_NO_THROW(scheduler.stop());
}

TEST_F(SchedulerOfATest, HoldsTheJobsOfTwoQueuesWithTheSameBeginning) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    scheduler.addQueue(QStringLiteral("A-B"));

    const int first = scheduler.submitHeld(QStringLiteral("A"));
    const int second = scheduler.submitHeld(QStringLiteral("A-B"));
    EXPECT_EQ(firstWords(waitingJobs()),
              (QList<QByteArray>{"A-" + QByteArray::number(first), "A-B-" + QByteArray::number(second)}));
}

TEST_F(SchedulerOfATest, HandsADocumentToThePrinterByteByByte) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    const QByteArray document = PrivateScheduler::smallPdf() + QByteArray("\0\xFF\r\n", 4);

    const int job = scheduler.submit(QStringLiteral("W9400"), document, {QStringLiteral("-t"), QStringLiteral("长卷")});
    const test::PrintedJob printed = scheduler.printed(QStringLiteral("W9400"), job);
    EXPECT_EQ(printed.document, document);
    EXPECT_TRUE(printed.ticket.contains(QStringLiteral("title=长卷\ncopies=1\n").toUtf8()))
        << printed.ticket.toStdString();
}

TEST_F(SchedulerOfATest, TakesJobsForAQueueBehindTheFilterOfPdf) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400F"), Kind::widePdfFilter);

    EXPECT_GT(scheduler.submitHeld(QStringLiteral("W9400F")), 0);
}

struct TelemetryCase {
    const char* name;
    Kind kind;
    int status;
    const char* successful;
    const char* reason;
};

void PrintTo(const TelemetryCase& row, std::ostream* out) {
    *out << row.name;
}

class TelemetryOfAQueue : public test::SchedulerTest, public ::testing::WithParamInterface<TelemetryCase> {};

TEST_P(TelemetryOfAQueue, IsThatOfItsKind) {
    const TelemetryCase& row = GetParam();
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("Q"), row.kind);

    const test::ToolResult result = telemetry(QStringLiteral("Q"));
    EXPECT_EQ(result.status, row.status) << result.errors.toStdString();
    EXPECT_TRUE(result.output.contains(QByteArray("<key>Successful</key>\n<") + row.successful + " />\n"))
        << result.output.toStdString();
    EXPECT_TRUE(result.output.contains(QByteArray("<key>printer-state-reasons</key>\n<string>") + row.reason + '<'))
        << result.output.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Kinds, TelemetryOfAQueue,
                         ::testing::Values(TelemetryCase{"Wide", Kind::wide, 0, "true", "none"},
                                           TelemetryCase{"WidePdfFilter", Kind::widePdfFilter, 0, "true", "none"},
                                           TelemetryCase{"MissingFilter", Kind::missingFilter, 0, "true",
                                                         "cups-missing-filter-warning"},
                                           TelemetryCase{"Raw", Kind::raw, 1, "false", "none"}));

TEST_F(SchedulerOfATest, IsSeenToBeStoppedAndKeepsItsQueues) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    scheduler.submitHeld(QStringLiteral("W9400"));

    scheduler.stop();
    const test::ToolResult result = test::runTool(lpstat, {QStringLiteral("-p")});
    EXPECT_EQ(result.errors, "lpstat: Scheduler is not running.\n");
    EXPECT_EQ(result.status, 1);

    scheduler.start();
    EXPECT_TRUE(queues().startsWith("printer W9400 is idle. ")) << queues().toStdString();
    EXPECT_EQ(firstWords(waitingJobs()).size(), 1);
}

TEST_F(SchedulerOfATest, LeavesNothingToTheNextOne) {
    {
        PrivateScheduler scheduler;
        scheduler.addQueue(QStringLiteral("W9400"));
        scheduler.submitHeld(QStringLiteral("W9400"));
    }
    EXPECT_EQ(test::runTool(lpstat, {QStringLiteral("-p")}).errors, "lpstat: Scheduler is not running.\n");
    const PrivateScheduler next;
    EXPECT_EQ(test::runTool(lpstat, {QStringLiteral("-p")}).errors, "lpstat: No destinations added.\n");
    EXPECT_EQ(waitingJobs(), "");
}

TEST_F(SchedulerOfATest, TellsWhyItDoesNotStart) {
    const test::ReplacedTool replaced("/usr/sbin/cupsd", "#!/bin/sh\necho \"$* is bad\"\nexit 1\n");
    try {
        const PrivateScheduler scheduler;
        FAIL() << "a scheduler";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("-f is bad"), std::string::npos) << error.what();
    }
}

TEST_F(SchedulerOfATest, EndsWithItsProcessThoughNobodyStopsIt) {
    // Another mount namespace, so that the folders go with the child; the port is still the same.
    const QStringList atPort{QStringLiteral("-h"), QStringLiteral("localhost:631"), QStringLiteral("-r")};
    const QByteArray whileAlive = test::inChildProcess([&atPort]() -> QByteArray {
        if (::unshare(CLONE_NEWNS) != 0) {
            return "no namespace";
        }
        [[maybe_unused]] auto* const neverDeleted = new PrivateScheduler;
        return test::runTool(lpstat, atPort).output;
    });
    EXPECT_EQ(whileAlive, "scheduler is running\n");
    test::waitUntil("the scheduler has ended",
                    [&atPort] { return test::runTool(lpstat, atPort).output == "scheduler is not running\n"; });
}

TEST_F(SchedulerOfATest, LeavesTheMachinesOwnPrintSystemAlone) {
    const QList<QByteArray> folders{"/etc/cups", "/var/spool/cups", "/var/cache/cups", "/var/log/cups",
                                    "/usr/lib/cups/backend"};
    QList<QStringList> before;
    for (const QByteArray& folder : folders) {
        before.append(listing(test::PrivateMachine::outsideFolder(folder)));
    }
    ASSERT_FALSE(before.first().isEmpty());

    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    scheduler.printed(QStringLiteral("W9400"), scheduler.submit(QStringLiteral("W9400")));
    scheduler.submitHeld(QStringLiteral("W9400"));
    scheduler.stop();

    for (qsizetype index = 0; index < folders.size(); ++index) {
        const QString inside = QString::fromUtf8(folders[index]);
        EXPECT_EQ(listing(test::PrivateMachine::outsideFolder(folders[index])), before[index]) << inside.toStdString();
        EXPECT_FALSE(listing(inside).isEmpty()) << inside.toStdString();
    }
    EXPECT_TRUE(QFile::exists(QStringLiteral("/etc/cups/ppd/W9400.ppd")));
    EXPECT_FALSE(QFile::exists(test::PrivateMachine::outsideFolder("/run") + QStringLiteral("/cups/printed")));
}

class PrivateMachineOfATest : public test::SchedulerTest {};

TEST_F(PrivateMachineOfATest, HasLoopbackAsItsOnlyNetwork) {
    const QByteArray devices = test::TemporaryFolder::read(QStringLiteral("/proc/self/net/dev"));
    EXPECT_EQ(devices.count(':'), 1) << devices.toStdString();
    EXPECT_TRUE(devices.contains(" lo:")) << devices.toStdString();
}

TEST_F(PrivateMachineOfATest, IsRefusedToAnOrdinaryUserAndThenNothingIsCovered) {
    const QByteArray refusals = test::inChildProcess([]() -> QByteArray {
        if (!test::becomeOrdinaryUser()) {
            return "still the superuser";
        }
        test::PrivateMachine::enter();
        const std::string refusal = test::PrivateMachine::refusal();
        try {
            const PrivateScheduler scheduler;
        } catch (const std::runtime_error& error) {
            return QByteArray::fromStdString(refusal + "\n" + error.what());
        }
        return "a scheduler";
    });
    EXPECT_EQ(refusals, "unshare: Operation not permitted\nno private print system: unshare: Operation not permitted");
}

TEST_F(PrivateMachineOfATest, ReplacesAToolUntilItIsGivenBack) {
    {
        const test::ReplacedTool replaced("/usr/bin/lpstat", "#!/bin/sh\necho \"told $*\"\nexit 7\n");
        const test::ToolResult result = test::runTool(lpstat, {QStringLiteral("-p"), QStringLiteral("x")});
        EXPECT_EQ(result.output, "told -p x\n");
        EXPECT_EQ(result.status, 7);
    }
    EXPECT_EQ(test::runTool(lpstat, {QStringLiteral("-r")}).output, "scheduler is not running\n");
}

TEST_F(PrivateMachineOfATest, CannotReplaceAToolThatIsNotThere) {
    EXPECT_THROW(test::ReplacedTool("/usr/bin/no-such-tool", "#!/bin/sh\n"), std::runtime_error);
}

} // namespace
} // namespace orvex
