#include "CUPSService.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Json/JsonRecords.h"

namespace orvex {

namespace {

void runPrinters(const CommandContext& context) {
    printResult(platform::jsonArray(CUPSService::standard().discover(context.stop).result()));
}

} // namespace

void addPrintersCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "printers", description("只读查看本机打印队列", "look at the local print queues, read-only"));
    command->callback([&context] { runPrinters(context); });
}

} // namespace orvex
