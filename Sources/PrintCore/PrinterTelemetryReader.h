#pragma once

#include "PrinterTelemetry.h"

#include <QFuture>

#include <stop_token>

namespace orvex {

/// Reads a queue's state from the local CUPS scheduler. A value without fields.
class PrinterTelemetryReader {
public:
    /// One reading, as a task of the utility pool; nothing is kept or cached. The future raises PrinterTelemetryError,
    /// and Interrupted once a stop is requested; there is no partial snapshot. Any thread.
    [[nodiscard]] QFuture<PrinterTelemetrySnapshot> read(const QString& queueName,
                                                         const std::stop_token& stop = {}) const;

    /// As PrinterTelemetryCommand has it.
    [[nodiscard]] static bool isValidQueueName(const QString& text);
};

} // namespace orvex
