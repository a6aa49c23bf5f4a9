#include "PrinterReadings.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

/// The queue to select where none is: the program is made for the printer with this number in its name.
QString preferredQueue(const QList<PrinterSnapshot>& printers) {
    const auto made = std::ranges::find_if(
        printers, [](const PrinterSnapshot& each) { return each.name.contains(u"9400", Qt::CaseInsensitive); });
    if (made != printers.end()) {
        return made->name;
    }
    return printers.isEmpty() ? QString() : printers.first().name;
}

} // namespace

std::optional<PrinterSnapshot> PrinterReadings::selectedPrinter() const {
    const auto found = std::ranges::find(printers, selectedPrinterName, &PrinterSnapshot::name);
    return found != printers.end() ? std::optional(*found) : std::nullopt;
}

QStringList PrinterReadings::qualityChoices() const {
    const std::optional<PrinterSnapshot> printer = selectedPrinter();
    if (!printer) {
        return {};
    }
    const auto resolution = std::ranges::find(printer->options, QStringLiteral("Resolution"), &DriverOption::keyword);
    return resolution != printer->options.end() ? resolution->choices : QStringList();
}

bool PrinterReadings::takePrinters(const QList<PrinterSnapshot>& reading) {
    printers = reading;
    lastRefreshError.reset();
    if (selectedPrinter()) {
        return false;
    }
    selectedPrinterName = preferredQueue(printers);
    return true;
}

std::optional<NativePrintReadinessAssessment>
PrinterReadings::cachedNativePrintReadiness(platform::Timestamp now) const {
    const bool isKnown = telemetry && telemetry->queueName == selectedPrinterName;
    if (!isKnown ||
        !(std::abs(now.secondsSince2001 - telemetry->sampledAt.secondsSince2001) <= longestReadinessSeconds)) {
        return std::nullopt;
    }
    return NativePrintReadinessPolicy::evaluate(telemetry, selectedPrinterName);
}

} // namespace orvex
