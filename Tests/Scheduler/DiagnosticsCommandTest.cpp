#include "Command.h"
#include "PrivateScheduler.h"
#include "SchedulerTest.h"
#include "TemporaryFolder.h"

#include <QRegularExpression>

namespace orvex {
namespace {

using test::CommandResult;
using test::PrivateScheduler;
using test::runCommand;

const QString queue = QStringLiteral("Canon_iPF9400");

/// The command with an application folder of its own.
class DiagnosticsCommand : public test::SchedulerTest {
protected:
    DiagnosticsCommand() {
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
        qputenv("HOME", folder.path().toUtf8());
    }

    ~DiagnosticsCommand() override {
        qunsetenv("XDG_DATA_HOME");
        qputenv("HOME", home);
    }

    const QByteArray home = qgetenv("HOME");

    test::TemporaryFolder folder;

    [[nodiscard]] static QStringList linesOf(const CommandResult& result) {
        return QString::fromUtf8(result.output).split(u'\n');
    }
};

} // namespace

TEST_F(DiagnosticsCommand, TellsTheQueueAndItsOptions) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    const CommandResult result = runCommand({QStringLiteral("diagnostics")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    const QStringList lines = linesOf(result);
    EXPECT_EQ(lines[0], QStringLiteral("orvex 0.8.4"));
    static const QRegularExpression recorded(
        QStringLiteral("^Recorded at: \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\+0000$"));
    EXPECT_TRUE(recorded.match(lines[1]).hasMatch()) << lines[1].toStdString();
    EXPECT_EQ(lines[2], QStringLiteral("Queue: ") + queue);
    EXPECT_TRUE(lines.contains(QStringLiteral("CutMedia / Cutting: PrinterDefault None [default=PrinterDefault]")));
}

TEST_F(DiagnosticsCommand, IsPrintedInChinese) {
    const PrivateScheduler scheduler;
    const CommandResult result = runCommand({QStringLiteral("diagnostics")}, {}, QStringLiteral("zh-Hans"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(linesOf(result)[2], QStringLiteral("队列：未选择"));
}

TEST_F(DiagnosticsCommand, IsPrintedWithoutAScheduler) {
    const CommandResult result = runCommand({QStringLiteral("diagnostics")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(linesOf(result)[2], QStringLiteral("Queue: Not selected"));
    EXPECT_EQ(result.errors, QStringLiteral("Could not read printer status: Cannot read local CUPS printers Exit "
                                            "status 1. lpstat: Scheduler is not running.\n"));
}

TEST_F(DiagnosticsCommand, RecordsNothing) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    static_cast<void>(runCommand({QStringLiteral("diagnostics")}));
    const QDir stores(folder.path(QStringLiteral("ORVEX")));
    EXPECT_EQ(stores.entryList(QDir::Files | QDir::Hidden), QStringList());
}

} // namespace orvex
