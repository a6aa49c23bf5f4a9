#include "InspectionCommand.h"

namespace orvex {

namespace {

constexpr const char* statusTool = "/usr/bin/lpstat";
constexpr const char* optionsTool = "/usr/bin/lpoptions";

} // namespace

InspectionCommand InspectionCommand::printerStatuses() {
    return {statusTool, {QStringLiteral("-p")}};
}

InspectionCommand InspectionCommand::deviceURIs() {
    return {statusTool, {QStringLiteral("-v")}};
}

InspectionCommand InspectionCommand::pendingJobs() {
    return {statusTool, {QStringLiteral("-W"), QStringLiteral("not-completed"), QStringLiteral("-o")}};
}

InspectionCommand InspectionCommand::driverOptions(const QString& queueName) {
    return {optionsTool, {QStringLiteral("-p"), queueName, QStringLiteral("-l")}};
}

} // namespace orvex
