#pragma once

namespace orvex {

enum ExitStatus { exitDone = 0, exitRefused = 1, exitUsage = 2, exitInterrupted = 130 };

/// Runs the command that the arguments name and returns the exit status. Expects SIGINT to be blocked.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv);

} // namespace orvex
