#include "CUPSInspectionError.h"
#include "CUPSService.h"
#include "PrivateScheduler.h"
#include "QueueDiscovery.h"
#include "SchedulerTest.h"

#include <gmock/gmock.h>

namespace orvex {
namespace {

using test::PrivateScheduler;
using Kind = PrivateScheduler::Kind;
using ::testing::StartsWith;

const QString inspected = QStringLiteral("Local CUPS was inspected read-only. Confirm device connectivity, hardware "
                                         "errors and cutting behavior on the printer panel.");
const QString noOptions = QStringLiteral("The driver returned no readable options. This does not establish media or "
                                         "cutting capabilities.");

CUPSService service() {
    return CUPSService::standard();
}

QList<PrinterSnapshot> discovered() {
    return service().discover().result();
}

QStringList namesOf(const QList<PrinterSnapshot>& printers) {
    QStringList names;
    for (const PrinterSnapshot& printer : printers) {
        names.append(printer.name);
    }
    return names;
}

QStringList idsOf(const QList<SystemPrintJob>& jobs) {
    QStringList ids;
    for (const SystemPrintJob& job : jobs) {
        ids.append(job.id);
    }
    return ids;
}

QString jobID(const QString& queue, int number) {
    return QStringLiteral("%1-%2").arg(queue).arg(number);
}

/// A real pass during which `interfere` is called after each command.
QList<PrinterSnapshot> discoveredWith(const std::function<void(const InspectionCommand&)>& interfere) {
    const auto run = [&](const InspectionCommand& command) {
        const InspectionResult result = service().run(command);
        interfere(command);
        return result;
    };
    return QueueDiscovery(run, {}).snapshots();
}

class Discovery : public test::SchedulerTest {};

} // namespace

TEST_F(Discovery, FindsNothingOnAMachineWithoutQueues) {
    const PrivateScheduler scheduler;
    EXPECT_EQ(discovered(), QList<PrinterSnapshot>());
}

TEST_F(Discovery, FindsAWidePrinterWithItsOptions) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("Canon_iPF9400"));
    const QList<PrinterSnapshot> printers = discovered();
    ASSERT_EQ(namesOf(printers), QStringList{QStringLiteral("Canon_iPF9400")});
    const PrinterSnapshot& printer = printers.front();
    EXPECT_THAT(printer.summary.toStdString(), StartsWith("is idle.  enabled since "));
    EXPECT_EQ(printer.deviceURI, QStringLiteral("printing:/run/cups/printed"));
    EXPECT_EQ(printer.diagnostic, inspected);
    EXPECT_EQ(printer.jobs, QList<SystemPrintJob>());
    const QList<DriverOption> options{
        {.keyword = QStringLiteral("PageSize"),
         .label = QStringLiteral("Media Size"),
         .choices = {QStringLiteral("A4"), QStringLiteral("Roll60"), QStringLiteral("Custom.WIDTHxHEIGHT")},
         .defaultChoice = QStringLiteral("A4")},
        {.keyword = QStringLiteral("Resolution"),
         .label = QStringLiteral("Print Quality"),
         .choices = {QStringLiteral("600dpi"), QStringLiteral("1200dpi")},
         .defaultChoice = QStringLiteral("600dpi")},
        {.keyword = QStringLiteral("CutMedia"),
         .label = QStringLiteral("Cutting"),
         .choices = {QStringLiteral("PrinterDefault"), QStringLiteral("None")},
         .defaultChoice = QStringLiteral("PrinterDefault")}};
    EXPECT_EQ(printer.options, options);
}

TEST_F(Discovery, FindsThreeQueuesAtOneMoment) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    scheduler.addQueue(QStringLiteral("Canon_iPF9400"), Kind::widePdfFilter);
    scheduler.addQueue(QStringLiteral("RAW"), Kind::raw);
    const QList<PrinterSnapshot> printers = discovered();
    ASSERT_EQ(namesOf(printers),
              QStringList({QStringLiteral("Canon_iPF9400"), QStringLiteral("RAW"), QStringLiteral("W9400")}));
    EXPECT_EQ(printers[0].capturedAt, printers[1].capturedAt);
    EXPECT_EQ(printers[0].capturedAt, printers[2].capturedAt);
    EXPECT_EQ(printers[0].diagnostic, inspected);
    EXPECT_EQ(printers[1].diagnostic, noOptions);
    EXPECT_EQ(printers[1].options, QList<DriverOption>());
    EXPECT_EQ(printers[2].diagnostic, inspected);
}

TEST_F(Discovery, KeepsTheReasonOfAPausedQueueWithIt) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    scheduler.addQueue(QStringLiteral("B"));
    scheduler.pause(QStringLiteral("A"), QStringLiteral("Out of canvas; load roll"));
    scheduler.reject(QStringLiteral("B"), QStringLiteral("closed today"));
    const QList<PrinterSnapshot> printers = discovered();
    ASSERT_EQ(printers.size(), 2);
    EXPECT_THAT(printers[0].summary.toStdString(), StartsWith("disabled since "));
    EXPECT_TRUE(printers[0].summary.endsWith(QStringLiteral(" -\nOut of canvas; load roll")));
    EXPECT_THAT(printers[1].summary.toStdString(), StartsWith("is idle.  enabled since "));
    EXPECT_TRUE(printers[1].summary.endsWith(QStringLiteral("\nclosed today")));
}

TEST_F(Discovery, TellsWhatAQueuePrints) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("Slow"), Kind::wide, PrivateScheduler::Printer::waits);
    const int job = scheduler.submit(QStringLiteral("Slow"));
    scheduler.waitUntilProcessing(QStringLiteral("Slow"));
    const QList<PrinterSnapshot> printers = discovered();
    ASSERT_EQ(printers.size(), 1);
    EXPECT_THAT(printers[0].summary.toStdString(),
                StartsWith("now printing " + jobID(QStringLiteral("Slow"), job).toStdString()));
    EXPECT_EQ(idsOf(printers[0].jobs), QStringList{jobID(QStringLiteral("Slow"), job)});
    scheduler.finishJob(QStringLiteral("Slow"));
}

TEST_F(Discovery, GivesEachQueueItsOwnJobs) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    scheduler.addQueue(QStringLiteral("A-B"));
    const int first = scheduler.submitHeld(QStringLiteral("A"));
    const int second = scheduler.submitHeld(QStringLiteral("A-B"));
    const int third = scheduler.submitHeld(QStringLiteral("A"));
    const QList<PrinterSnapshot> printers = discovered();
    ASSERT_EQ(namesOf(printers), QStringList({QStringLiteral("A"), QStringLiteral("A-B")}));
    EXPECT_EQ(idsOf(printers[0].jobs),
              QStringList({jobID(QStringLiteral("A"), first), jobID(QStringLiteral("A"), third)}));
    EXPECT_EQ(idsOf(printers[1].jobs), QStringList{jobID(QStringLiteral("A-B"), second)});
    EXPECT_TRUE(printers[1].jobs.front().rawLine.contains(QStringLiteral("root")));
}

TEST_F(Discovery, FailsWithTheSystemsWordsWithoutAScheduler) {
    PrivateScheduler scheduler;
    scheduler.stop();
    try {
        static_cast<void>(discovered());
        FAIL() << "a list was made";
    } catch (const CUPSInspectionError& error) {
        EXPECT_EQ(error.message(), QStringLiteral("Cannot read local CUPS printers Exit status 1. lpstat: Scheduler is "
                                                  "not running."));
    }
}

TEST_F(Discovery, KeepsTheQueuesOfASchedulerThatStopsAfterItsFirstAnswer) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("W9400"));
    const auto printers = discoveredWith([&](const InspectionCommand& command) {
        if (command == InspectionCommand::printerStatuses()) {
            scheduler.stop();
        }
    });
    ASSERT_EQ(namesOf(printers), QStringList{QStringLiteral("W9400")});
    EXPECT_EQ(printers[0].deviceURI, QString());
    EXPECT_EQ(printers[0].options, QList<DriverOption>());
    EXPECT_EQ(printers[0].diagnostic,
              QStringLiteral("Cannot read the device address Exit status 1. lpstat: Scheduler is not running.\n"
                             "This queue did not return a device address.\n"
                             "Cannot read the system job list Exit status 1. lpstat: Scheduler is not running.\n") +
                  noOptions);
}

TEST_F(Discovery, KeepsWhatItHasFromASchedulerThatStopsBeforeTheOptions) {
    PrivateScheduler scheduler;
    scheduler.addQueue(QStringLiteral("A"));
    scheduler.addQueue(QStringLiteral("B"));
    const int job = scheduler.submitHeld(QStringLiteral("A"));
    const auto printers = discoveredWith([&](const InspectionCommand& command) {
        if (command == InspectionCommand::driverOptions(QStringLiteral("A"))) {
            scheduler.stop();
        }
    });
    ASSERT_EQ(printers.size(), 2);
    EXPECT_EQ(printers[0].options.size(), 3);
    EXPECT_EQ(printers[0].diagnostic, inspected);
    EXPECT_EQ(idsOf(printers[0].jobs), QStringList{jobID(QStringLiteral("A"), job)});
    EXPECT_EQ(printers[1].deviceURI, QStringLiteral("printing:/run/cups/printed"));
    EXPECT_EQ(printers[1].options, QList<DriverOption>());
    EXPECT_EQ(printers[1].diagnostic, noOptions);
}

} // namespace orvex
