#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace orvex {

/// The closed set of commands by which the program looks at local queues. None of them changes anything, and no other
/// can be expressed: that the program only reads is decided here.
class InspectionCommand {
public:
    /// The states of all queues.
    [[nodiscard]] static InspectionCommand printerStatuses();

    /// The device URIs of all queues.
    [[nodiscard]] static InspectionCommand deviceURIs();

    /// The unfinished jobs of all queues.
    [[nodiscard]] static InspectionCommand pendingJobs();

    /// The driver options of one queue.
    [[nodiscard]] static InspectionCommand driverOptions(const QString& queueName);

    /// The absolute path of the tool.
    [[nodiscard]] const QByteArray& executable() const { return executable_; }

    [[nodiscard]] const QStringList& arguments() const { return arguments_; }

    bool operator==(const InspectionCommand&) const = default;

private:
    InspectionCommand(QByteArray executable, QStringList arguments)
        : executable_(std::move(executable)),
          arguments_(std::move(arguments)) {}

    QByteArray executable_;
    QStringList arguments_;
};

} // namespace orvex
