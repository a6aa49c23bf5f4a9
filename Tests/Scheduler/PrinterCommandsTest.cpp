#include "Command.h"
#include "PrivateScheduler.h"
#include "SchedulerTest.h"
#include "Timestamp.h"
#include "Tool.h"

#include <QJsonArray>
#include <QJsonObject>

#include <csignal>

namespace orvex {
namespace {

using test::CommandResult;
using test::PrivateScheduler;
using test::runCommand;

const QString queue = QStringLiteral("Canon_iPF9400");

class PrinterCommands : public test::SchedulerTest {};

} // namespace

TEST_F(PrinterCommands, ListTheQueues) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    const int job = scheduler.submitHeld(queue);
    const double before = platform::Timestamp::now().secondsSince2001;
    const CommandResult result = runCommand({QStringLiteral("printers")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    const QJsonArray printers = result.json().array();
    ASSERT_EQ(printers.size(), 1);
    const QJsonObject printer = printers.at(0).toObject();
    EXPECT_EQ(printer.keys(), QStringList({QStringLiteral("capturedAt"), QStringLiteral("deviceURI"),
                                           QStringLiteral("diagnostic"), QStringLiteral("jobs"), QStringLiteral("name"),
                                           QStringLiteral("options"), QStringLiteral("summary")}));
    EXPECT_EQ(printer.value(QStringLiteral("name")).toString(), queue);
    EXPECT_GE(printer.value(QStringLiteral("capturedAt")).toDouble(), before);
    const QJsonObject option = printer.value(QStringLiteral("options")).toArray().at(2).toObject();
    EXPECT_EQ(option, QJsonObject({{QStringLiteral("keyword"), QStringLiteral("CutMedia")},
                                   {QStringLiteral("label"), QStringLiteral("Cutting")},
                                   {QStringLiteral("choices"),
                                    QJsonArray({QStringLiteral("PrinterDefault"), QStringLiteral("None")})},
                                   {QStringLiteral("defaultChoice"), QStringLiteral("PrinterDefault")}}));
    const QJsonArray jobs = printer.value(QStringLiteral("jobs")).toArray();
    ASSERT_EQ(jobs.size(), 1);
    EXPECT_EQ(jobs.at(0).toObject().value(QStringLiteral("id")).toString(),
              QStringLiteral("%1-%2").arg(queue).arg(job));
}

TEST_F(PrinterCommands, ListNothingOnAMachineWithoutQueues) {
    const PrivateScheduler scheduler;
    const CommandResult result = runCommand({QStringLiteral("printers")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json().array(), QJsonArray());
    EXPECT_TRUE(result.output.startsWith('['));
}

TEST_F(PrinterCommands, AreRefusedWithoutAScheduler) {
    const CommandResult printers = runCommand({QStringLiteral("printers")});
    EXPECT_EQ(printers.status, 1);
    EXPECT_EQ(printers.output, "");
    EXPECT_EQ(printers.errors,
              QStringLiteral("Cannot read local CUPS printers Exit status 1. lpstat: Scheduler is not running.\n"));
    const CommandResult telemetry = runCommand({QStringLiteral("telemetry"), queue});
    EXPECT_EQ(telemetry.status, 1);
    EXPECT_EQ(telemetry.output, "");
    EXPECT_EQ(telemetry.errors, QStringLiteral("The local CUPS status query failed. Device status is unknown.\n"));
}

TEST_F(PrinterCommands, AreRefusedInChinese) {
    const CommandResult printers = runCommand({QStringLiteral("printers")}, {}, QStringLiteral("zh-Hans"));
    EXPECT_EQ(printers.errors,
              QStringLiteral("无法读取本机 CUPS 打印机。 退出状态为 1。 lpstat: Scheduler is not running.\n"));
    const CommandResult telemetry = runCommand({QStringLiteral("telemetry"), queue}, {}, QStringLiteral("zh-Hans"));
    EXPECT_EQ(telemetry.errors, QStringLiteral("本机 CUPS 状态查询失败，设备状态未知。\n"));
}

TEST_F(PrinterCommands, TellAReadyQueueByNull) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    const CommandResult result = runCommand({QStringLiteral("telemetry"), queue});
    EXPECT_EQ(result.status, 0);
    const QJsonObject answer = result.json().object();
    EXPECT_EQ(answer.keys(), QStringList({QStringLiteral("readiness"), QStringLiteral("telemetry")}));
    EXPECT_EQ(answer.value(QStringLiteral("readiness")).toObject(),
              QJsonObject({{QStringLiteral("state"), QStringLiteral("ready")},
                           {QStringLiteral("blockingReason"), QJsonValue()}}));
    const QJsonObject telemetry = answer.value(QStringLiteral("telemetry")).toObject();
    EXPECT_EQ(telemetry.value(QStringLiteral("queueName")).toString(), queue);
    EXPECT_EQ(telemetry.value(QStringLiteral("queueState")).toInt(), 3);
    EXPECT_TRUE(telemetry.value(QStringLiteral("isAcceptingJobs")).toBool());
    EXPECT_TRUE(telemetry.value(QStringLiteral("sampledAt")).isDouble());
}

TEST_F(PrinterCommands, TellWhyAQueueIsNotReady) {
    PrivateScheduler scheduler;
    scheduler.addQueue(queue);
    scheduler.pause(queue, QStringLiteral("Out of canvas"));
    const QJsonObject answer = runCommand({QStringLiteral("telemetry"), queue}).json().object();
    const QJsonObject readiness = answer.value(QStringLiteral("readiness")).toObject();
    EXPECT_EQ(readiness.value(QStringLiteral("state")).toString(), QStringLiteral("unavailable"));
    EXPECT_TRUE(readiness.value(QStringLiteral("blockingReason"))
                    .toString()
                    .endsWith(QStringLiteral("\nSystem report: Out of canvas；paused")));
}

TEST_F(PrinterCommands, AreInterruptedWhileAToolHangs) {
    const test::ReplacedTool tool("/usr/bin/lpstat",
                                  "#!/bin/sh\n: > /run/is-waiting\nexec " ORVEX_BAD_TOOL " ignore-term\n");
    QProcess process;
    process.start(QStringLiteral(ORVEXCTL), {QStringLiteral("printers")});
    test::waitUntil("the tool to hang", [] { return QFile::exists(QStringLiteral("/run/is-waiting")); });
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(process.readAllStandardOutput(), "");
    EXPECT_EQ(process.readAllStandardError(), "");
}

} // namespace orvex
