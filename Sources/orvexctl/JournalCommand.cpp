#include "CommandText.h"
#include "Commands.h"
#include "OrvexQAWorkspace.h"
#include "StoreAnswers.h"
#include "Stores/PrintJournal.h"

namespace orvex {

void addJournalCommand(CLI::App& app, CommandContext&) {
    CLI::App* command =
        app.add_subcommand("journal", description("查看实物观察记录", "look at the records of physical prints"));
    command->require_subcommand(0, 1);
    command->add_subcommand("list", description("列出记录（默认）", "list the records; so does `journal` alone"));
    command->callback([] { printRecords(PrintJournalStore(OrvexQAWorkspace::directory()).load()); });
}

} // namespace orvex
