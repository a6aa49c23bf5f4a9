#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace orvex::test {

/// What a run of a system tool left.
struct ToolResult {
    int status = 0; ///< -1 if the process ended by a signal
    QByteArray output;
    QByteArray errors;
};

/// Runs a tool by its absolute path, with empty input and no environment but the C locale, and waits for its end.
/// Throws std::runtime_error if it cannot be started or does not end within a minute.
[[nodiscard]] ToolResult runTool(const QString& path, const QStringList& arguments);

/// The standard output of a tool that must succeed. Throws std::runtime_error with everything it said if it does not.
QByteArray outputOfTool(const QString& path, const QStringList& arguments);

/// Asks again and again until the condition holds. Throws std::runtime_error that names what was awaited after a
/// minute: far longer than anything takes on a busy machine.
void waitUntil(const char* awaited, const std::function<bool()>& condition);

} // namespace orvex::test
