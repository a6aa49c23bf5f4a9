#pragma once

#include "Failure.h"

namespace orvex {

/// Why a queue's state could not be read.
class PrinterTelemetryError : public Failure {
public:
    enum class Case {
        unavailable,
        invalidQueueName,
        invalidResponse,
        queryFailed,
        unsafeTestScript,
        timedOut,
        outputTooLarge,
    };

    [[nodiscard]] static PrinterTelemetryError unavailable(const QString& reason);
    [[nodiscard]] static PrinterTelemetryError invalidQueueName();
    [[nodiscard]] static PrinterTelemetryError invalidResponse();
    [[nodiscard]] static PrinterTelemetryError queryFailed();
    [[nodiscard]] static PrinterTelemetryError unsafeTestScript();
    [[nodiscard]] static PrinterTelemetryError timedOut();
    [[nodiscard]] static PrinterTelemetryError outputTooLarge();

    [[nodiscard]] Case errorCase() const { return case_; }

private:
    PrinterTelemetryError(Case errorCase, const QString& message) : Failure(message), case_(errorCase) {}

    Case case_;
};

} // namespace orvex
