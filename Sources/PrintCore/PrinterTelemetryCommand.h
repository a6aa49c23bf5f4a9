#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace orvex {

/// The one command that asks the local scheduler for a queue's state: the system's ipptool with the system's own test
/// file, and no other host.
class PrinterTelemetryCommand {
public:
    /// The test file that the tool is given.
    static constexpr const char* testFile = "/usr/share/cups/ipptool/get-printer-attributes.test";

    /// What a test file may have at most, in UTF-8.
    static constexpr qsizetype largestTestScriptBytes = 16384;

    /// Raises PrinterTelemetryError for a name that is not valid.
    explicit PrinterTelemetryCommand(const QString& queueName);

    /// Whether a name can be that of a local queue: 1 to 127 bytes of letters and digits of any script, ".", "_" and
    /// "-", and neither "." nor "..".
    [[nodiscard]] static bool isValidQueueName(const QString& text);

    /// Whether a test file's text holds nothing but the directives that are known to read: in their order and case,
    /// whatever comments and white space surround them. Such a file can send any operation, so none other is run.
    [[nodiscard]] static bool isReadOnlyTestScript(const QString& text);

    /// The absolute path of the tool.
    [[nodiscard]] const QByteArray& executable() const { return executable_; }

    [[nodiscard]] const QStringList& arguments() const { return arguments_; }

private:
    QByteArray executable_;
    QStringList arguments_;
};

} // namespace orvex
