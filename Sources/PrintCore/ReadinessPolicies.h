#pragma once

#include "PrintModels.h"
#include "PrinterTelemetry.h"

#include <QList>
#include <QString>

#include <optional>

namespace orvex {

enum class NativePrintReadinessState { ready, unavailable, unknown };

/// The name of the state, as in the JSON of the command line.
[[nodiscard]] QString rawText(NativePrintReadinessState state);

/// Whether the print window may be opened for a queue, and why not.
struct NativePrintReadinessAssessment {
    NativePrintReadinessState state = NativePrintReadinessState::unknown;
    std::optional<QString> blockingReason; ///< absent exactly when the state is ready

    [[nodiscard]] bool isAllowed() const { return state == NativePrintReadinessState::ready; }

    bool operator==(const NativePrintReadinessAssessment&) const = default;
};

/// Decides from a queue's telemetry whether direct printing may begin. What was not positively confirmed counts as not
/// confirmed. Pure but for the current language. Any thread.
class NativePrintReadinessPolicy {
public:
    /// `telemetry` is absent where it could not be read.
    [[nodiscard]] static NativePrintReadinessAssessment
    evaluate(const std::optional<PrinterTelemetrySnapshot>& telemetry, const QString& queueName);

private:
    [[nodiscard]] static QString backendDetail(const PrinterTelemetrySnapshot& telemetry);
};

/// What can be said about the printer's cutter.
struct ManualCuttingAssessment {
    bool isAllowed = false; ///< always: no option name proves how the printer's panel is set
    QString blockingReason; ///< never empty
    QList<DriverOption> candidateOptions;

    bool operator==(const ManualCuttingAssessment&) const = default;
};

/// Says why no job is ever sent unattended. Pure but for the current language. Any thread.
class ManualCuttingPolicy {
public:
    /// `snapshot` is that of the selected printer, absent if there is none.
    [[nodiscard]] static ManualCuttingAssessment evaluate(const std::optional<PrinterSnapshot>& snapshot);

private:
    [[nodiscard]] static bool isCutterCandidate(const DriverOption& option);
};

} // namespace orvex
