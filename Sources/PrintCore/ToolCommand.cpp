#include "ToolCommand.h"

namespace orvex {

namespace {

template <typename Command>
platform::ChildCommand childCommand(const Command& command) {
    platform::ChildCommand child{
        .executable = command.executable(), .arguments = {}, .environment = {"LC_ALL=C", "LANG=C"}};
    for (const QString& argument : command.arguments()) {
        child.arguments.append(argument.toUtf8());
    }
    return child;
}

} // namespace

platform::ChildCommand toolCommand(const InspectionCommand& command) {
    return childCommand(command);
}

platform::ChildCommand toolCommand(const PrinterTelemetryCommand& command) {
    return childCommand(command);
}

} // namespace orvex
