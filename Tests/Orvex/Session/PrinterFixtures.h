#pragma once

#include "PrintModels.h"
#include "PrinterTelemetry.h"

#include <QFuture>

#include <functional>
#include <stop_token>

namespace orvex::test {

/// A queue as a pass finds it, with a choice of resolutions.
[[nodiscard]] inline PrinterSnapshot printer(const QString& name) {
    return {.name = name,
            .summary = QStringLiteral("is idle."),
            .deviceURI = QStringLiteral("socket://10.0.0.9"),
            .options = {{.keyword = QStringLiteral("PageSize"),
                         .label = QStringLiteral("Media Size"),
                         .choices = {QStringLiteral("A4"), QStringLiteral("Roll60")},
                         .defaultChoice = QStringLiteral("A4")},
                        {.keyword = QStringLiteral("Resolution"),
                         .label = QStringLiteral("Print Quality"),
                         .choices = {QStringLiteral("600dpi"), QStringLiteral("1200dpi")},
                         .defaultChoice = std::nullopt}},
            .jobs = {},
            .capturedAt = {},
            .diagnostic = QStringLiteral("All was read.")};
}

/// Passes that find these queues.
[[nodiscard]] inline std::function<QFuture<QList<PrinterSnapshot>>(const std::stop_token&)>
findingQueues(const QStringList& names) {
    QList<PrinterSnapshot> printers;
    for (const QString& name : names) {
        printers.append(printer(name));
    }
    return [printers](const std::stop_token&) { return QtFuture::makeReadyFuture(QList<PrinterSnapshot>(printers)); };
}

/// The state of a queue that can take a job.
[[nodiscard]] inline PrinterTelemetrySnapshot readyState(const QString& queue,
                                                         double secondsSince2001 = 800'000'000.0) {
    return {.queueName = queue, .sampledAt = {secondsSince2001}, .queueState = 3, .isAcceptingJobs = true};
}

/// The state of one that has been stopped.
[[nodiscard]] inline PrinterTelemetrySnapshot stoppedState(const QString& queue) {
    PrinterTelemetrySnapshot state = readyState(queue);
    state.queueState = 5;
    state.queueMessage = QStringLiteral("Out of canvas");
    return state;
}

} // namespace orvex::test
