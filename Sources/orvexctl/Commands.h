#pragma once

#include <CLI/CLI.hpp>

#include <stop_token>

namespace orvex {

// Each adds one command to the command line. Its callback runs the command after parsing; failures are raised through
// it. A command that ends with another status than 0 without a message sets `exitStatus`.

/// What the commands share with the program that runs them.
struct CommandContext {
    std::stop_token stop;
    int exitStatus = 0;
};

void addRollCommand(CLI::App& app, CommandContext& context);
void addInspectCommand(CLI::App& app, CommandContext& context);
void addIccCommand(CLI::App& app, CommandContext& context);
void addPackCommand(CLI::App& app, CommandContext& context);
void addRenderCommand(CLI::App& app, CommandContext& context);
void addCheckCommand(CLI::App& app, CommandContext& context);
void addUserUnitCommand(CLI::App& app, CommandContext& context);
void addPreviewCommand(CLI::App& app, CommandContext& context);
void addPrintersCommand(CLI::App& app, CommandContext& context);
void addTelemetryCommand(CLI::App& app, CommandContext& context);
void addFingerprintCommand(CLI::App& app, CommandContext& context);
void addJobsCommand(CLI::App& app, CommandContext& context);
void addPresetsCommand(CLI::App& app, CommandContext& context);
void addJournalCommand(CLI::App& app, CommandContext& context);
void addDiagnosticsCommand(CLI::App& app, CommandContext& context);
void addApplyCommand(CLI::App& app, CommandContext& context);

} // namespace orvex
