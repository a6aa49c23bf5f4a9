#pragma once

#include "PrinterReadings.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvex {

/// What the last reading of a queue is shown with, in the current language. What was not told is said to be missing,
/// and never shown as a healthy value. Any thread.
namespace TelemetryTexts {

/// A value and what it is the value of.
struct Row {
    QString label;
    QString value;

    bool operator==(const Row&) const = default;
};

/// When the reading was made.
[[nodiscard]] QString sampled(const PrinterTelemetrySnapshot& telemetry);

/// The state of the queue, then a row for each supply.
[[nodiscard]] QList<Row> rows(const PrinterTelemetrySnapshot& telemetry);

/// What the queue says of itself; none if it says nothing.
[[nodiscard]] QStringList reports(const PrinterTelemetrySnapshot& telemetry);

/// That there are no levels; absent if there are.
[[nodiscard]] std::optional<QString> missingLevels(const PrinterTelemetrySnapshot& telemetry);

/// Why there is no reading, or none of now; absent if all is well.
[[nodiscard]] std::optional<QString> unavailability(const PrinterReadings& readings);

} // namespace TelemetryTexts

} // namespace orvex
