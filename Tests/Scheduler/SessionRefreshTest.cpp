#include "OnPrivateMachine.h"
#include "PrivateScheduler.h"
#include "SessionFixture.h"
#include "SilentScheduler.h"

namespace orvex {
namespace {

using test::PrivateScheduler;
using test::waitFor;

const QString wide = QStringLiteral("Canon_iPF9400");
const QString office = QStringLiteral("A_Office");

/// A session with the readings of the machine itself.
class SessionRefresh : public test::OnPrivateMachine<test::SessionTest> {
protected:
    SessionRefresh() { readings = MachineReadings::standard(); }

    void refresh() {
        model->refresh();
        settle();
    }

    [[nodiscard]] const PrinterReadings& printers() const { return model->printerReadings(); }

    [[nodiscard]] QStringList names() const {
        QStringList names;
        for (const PrinterSnapshot& printer : printers().printers) {
            names.append(printer.name);
        }
        return names;
    }

    [[nodiscard]] static QString description(const QString& queue) {
        return QStringLiteral("/etc/cups/ppd/%1.ppd").arg(queue);
    }
};

} // namespace

TEST_F(SessionRefresh, FindsTheQueuesAndReadsTheWideOne) {
    PrivateScheduler scheduler;
    scheduler.addQueue(office);
    scheduler.addQueue(wide);
    const int job = scheduler.submitHeld(wide);
    start();
    refresh();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(names(), QStringList({office, wide}));
    EXPECT_EQ(printers().selectedPrinterName, wide);
    EXPECT_EQ(printers().selectedPrinter()->jobs.value(0).id, QStringLiteral("%1-%2").arg(wide).arg(job));
    EXPECT_EQ(printers().qualityChoices(), QStringList({QStringLiteral("600dpi"), QStringLiteral("1200dpi")}));
    const QMap<QString, Size> papers{{QStringLiteral("A4"), Size{595.28, 841.89}},
                                     {QStringLiteral("Roll60"), Size{4320.0, 14400.0}}};
    EXPECT_EQ(printers().paperGeometry, papers);
    ASSERT_TRUE(printers().telemetry);
    EXPECT_EQ(printers().telemetry->queueName, wide);
    EXPECT_EQ(printers().telemetry->queueState, 3);
    EXPECT_EQ(printers().telemetry->queuedJobCount, 1);
    EXPECT_EQ(printers().telemetryError, std::nullopt);
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("Existing local settings fingerprints were recorded. Driver settings are not written or "
                             "restored."));
}

TEST_F(SessionRefresh, FindsNothingOnAMachineWithoutQueues) {
    const PrivateScheduler scheduler;
    start();
    refresh();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(names(), QStringList());
    EXPECT_EQ(printers().selectedPrinterName, QString());
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError, std::nullopt);
}

TEST_F(SessionRefresh, ReadsAnotherQueueOnceItIsSelected) {
    PrivateScheduler scheduler;
    scheduler.addQueue(office);
    scheduler.addQueue(wide);
    scheduler.pause(office, QStringLiteral("Out of canvas"));
    start();
    refresh();
    model->selectPrinter(office);
    EXPECT_EQ(printers().telemetry, std::nullopt);
    waitFor([this] { return printers().telemetry.has_value(); });
    settle();
    EXPECT_EQ(printers().selectedPrinterName, office);
    EXPECT_EQ(printers().telemetry->queueName, office);
    EXPECT_EQ(printers().telemetry->queueState, 5);
    EXPECT_EQ(printers().telemetry->queueMessage, QStringLiteral("Out of canvas"));
}

TEST_F(SessionRefresh, FallsOverFromAQueueThatWasDeleted) {
    PrivateScheduler scheduler;
    scheduler.addQueue(office);
    scheduler.addQueue(wide);
    start();
    refresh();
    model->setQualityChoice(QStringLiteral("600dpi"));
    model->setDriverColorCorrectionDisabledConfirmed(true);
    scheduler.deleteQueue(wide);
    refresh();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(names(), QStringList{office});
    EXPECT_EQ(printers().selectedPrinterName, office);
    EXPECT_EQ(model->presetForm().qualityChoice, QString());
    EXPECT_FALSE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
    EXPECT_EQ(printers().telemetry->queueName, office);
    scheduler.deleteQueue(office);
    refresh();
    EXPECT_EQ(printers().selectedPrinterName, QString());
    EXPECT_EQ(printers().telemetry, std::nullopt);
}

TEST_F(SessionRefresh, KeepsTheLastReadingWhileTheSchedulerIsDown) {
    PrivateScheduler scheduler;
    scheduler.addQueue(wide);
    start();
    refresh();
    const QList<PrinterSnapshot> before = printers().printers;
    scheduler.stop();
    refresh();
    const QString reason =
        QStringLiteral("Cannot read local CUPS printers Exit status 1. lpstat: Scheduler is not running.");
    EXPECT_EQ(model->errorMessage(), QStringLiteral("Could not read printer status: ") + reason);
    EXPECT_EQ(printers().lastRefreshError, reason);
    EXPECT_EQ(printers().printers, before);
    EXPECT_EQ(printers().selectedPrinterName, wide);
    EXPECT_EQ(printers().telemetry, std::nullopt);
    EXPECT_EQ(printers().telemetryError,
              QStringLiteral("The local CUPS status query failed. Device status is unknown."));
    EXPECT_FALSE(model->refreshing());
    scheduler.start();
    refresh();
    EXPECT_EQ(printers().lastRefreshError, std::nullopt);
    EXPECT_EQ(printers().telemetryError, std::nullopt);
    EXPECT_TRUE(printers().telemetry);
}

TEST_F(SessionRefresh, TellsThatAQueuesDescriptionHasChanged) {
    PrivateScheduler scheduler;
    scheduler.addQueue(wide);
    start();
    refresh();
    QFile file(description(wide));
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("*% another default\n");
    file.close();
    refresh();
    EXPECT_EQ(model->protectionChanges(), QStringList{description(wide)});
    EXPECT_EQ(
        model->protectionMessage(),
        QStringLiteral("Local settings files have changed. Review the Canon settings; the app will not restore or "
                       "overwrite them automatically."));
}

TEST_F(SessionRefresh, IsGivenUpWithTheSessionWhereTheSchedulerDoesNotAnswer) {
    const test::SilentScheduler scheduler;
    start();
    model->startRefreshing();
    waitFor([this] { return model->refreshing(); });
    model.reset(); // the tools are stopped, and awaited
    EXPECT_TRUE(services.sleeps.size() <= 1);
}

} // namespace orvex
