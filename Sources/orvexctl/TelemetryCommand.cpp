#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "PrinterAnswers.h"
#include "PrinterTelemetryReader.h"

namespace orvex {

namespace {

void runTelemetry(const QString& queueName, const CommandContext& context) {
    const PrinterTelemetrySnapshot telemetry = PrinterTelemetryReader().read(queueName, context.stop).result();
    const auto readiness = NativePrintReadinessPolicy::evaluate(telemetry, queueName);
    printResult(QJsonObject{{QStringLiteral("telemetry"), telemetry.toJson()},
                            {QStringLiteral("readiness"), readinessJson(readiness)}});
}

} // namespace

void addTelemetryCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "telemetry", description("只读查看一个队列的状态，以及能否直接打印",
                                 "tell the state of a queue, read-only, and whether direct printing may begin"));
    const auto queue = std::make_shared<std::string>();
    command->add_option("QUEUE", *queue, description("队列名称", "the name of the queue"))->required()->type_name("");
    command->callback([queue, &context] { runTelemetry(argumentText(*queue), context); });
}

} // namespace orvex
