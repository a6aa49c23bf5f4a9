#pragma once

#include "PrinterTelemetry.h"

#include <QByteArrayView>

namespace orvex {

/// Reads the property list that ipptool prints. Its structure is checked before any value is believed.
class PrinterTelemetryParser {
public:
    /// What ipptool may print at most.
    static constexpr qsizetype largestAnswerBytes = 1048576;

    /// Pure. Raises PrinterTelemetryError. Any thread.
    [[nodiscard]] static PrinterTelemetrySnapshot parse(QByteArrayView data, const QString& queueName,
                                                        platform::Timestamp sampledAt);
};

} // namespace orvex
