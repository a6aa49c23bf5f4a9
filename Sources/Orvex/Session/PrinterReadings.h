#pragma once

#include "Layout/Geometry.h"
#include "PrintModels.h"
#include "PrinterTelemetry.h"
#include "ReadinessPolicies.h"

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace orvex {

/// What is known of the printers: the last successful readings, and the queue that is selected. Plain value.
struct PrinterReadings {
    /// How old a state may be that decides whether the print command is offered.
    static constexpr double longestReadinessSeconds = 45.0;

    QList<PrinterSnapshot> printers = {};
    QString selectedPrinterName = {};       ///< empty for none
    QMap<QString, Size> paperGeometry = {}; ///< the driver's paper sizes by name, in points
    std::optional<QString> lastRefreshError = {};
    std::optional<PrinterTelemetrySnapshot> telemetry = {}; ///< of the selected queue
    std::optional<QString> telemetryError = {};

    bool operator==(const PrinterReadings&) const = default;

    [[nodiscard]] std::optional<PrinterSnapshot> selectedPrinter() const;

    /// The choices of the driver's resolution option; none without a printer or such an option.
    [[nodiscard]] QStringList qualityChoices() const;

    /// Takes a new list of printers. Whether the selected queue is no longer among them: another one, or none, is
    /// selected then.
    [[nodiscard]] bool takePrinters(const QList<PrinterSnapshot>& reading);

    /// What the last state of the selected queue says, if it is not too old.
    [[nodiscard]] std::optional<NativePrintReadinessAssessment>
    cachedNativePrintReadiness(platform::Timestamp now) const;
};

} // namespace orvex
