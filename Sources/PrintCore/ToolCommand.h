#pragma once

#include "InspectionCommand.h"
#include "PrinterTelemetryCommand.h"
#include "Process/ChildProcess.h"

namespace orvex {

/// One of the commands that read, ready to be run; there is no other way to one. Its environment is its own: its words
/// are English whatever the user's language is, and no search path, home folder or server setting reaches it.
[[nodiscard]] platform::ChildCommand toolCommand(const InspectionCommand& command);
[[nodiscard]] platform::ChildCommand toolCommand(const PrinterTelemetryCommand& command);

} // namespace orvex
