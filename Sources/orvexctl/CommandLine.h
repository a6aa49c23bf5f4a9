#pragma once

#include <QString>

#include <exception>

namespace orvex {

enum ExitStatus { exitDone = 0, exitRefused = 1, exitUsage = 2, exitInterrupted = 130 };

/// The line for a failure that is nobody's refusal, such as a want of memory or threads.
[[nodiscard]] QString unexpectedFailure(const std::exception& exception);

/// Runs the command that the arguments name and returns the exit status. Expects SIGINT to be blocked.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv);

} // namespace orvex
