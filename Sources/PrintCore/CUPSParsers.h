#pragma once

#include "PrintModels.h"

#include <QList>
#include <QMap>
#include <QString>

namespace orvex {

/// The status line of a queue, with the lines that are indented below it.
struct PrinterStatus {
    QString name;
    QString summary;

    bool operator==(const PrinterStatus&) const = default;
};

/// Readers of what the CUPS tools print in the C locale. They are pure, never fail, and drop what they do not
/// recognise; whether nothing is there or nothing could be read, the tool's result tells, not its text. Any thread.
class CUPSParsers {
public:
    /// The queues of `lpstat -p`, in order of first appearance; the first line of a queue counts.
    [[nodiscard]] static QList<PrinterStatus> printerStatuses(const QString& text);

    /// The device URIs of `lpstat -v` by queue name; the last line of a queue counts.
    [[nodiscard]] static QMap<QString, QString> deviceURIs(const QString& text);

    /// The options of `lpoptions -l`, in order of first appearance; the first line of a keyword counts.
    [[nodiscard]] static QList<DriverOption> driverOptions(const QString& text);

    /// The jobs of one queue in `lpstat -o`, in the order of their lines.
    [[nodiscard]] static QList<SystemPrintJob> jobs(const QString& text, const QString& queueName);
};

} // namespace orvex
