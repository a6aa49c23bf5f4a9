#include "MachineReadings.h"

#include "BackgroundTask.h"
#include "CUPSService.h"
#include "DriverPaperGeometry.h"
#include "PrinterTelemetryReader.h"
#include "SettingsPreservationService.h"

namespace orvex {

MachineReadings MachineReadings::standard() {
    MachineReadings readings;
    readings.discoverQueues = [](const std::stop_token& stop) { return CUPSService::standard().discover(stop); };
    readings.readTelemetry = [](const QString& queueName, const std::stop_token& stop) {
        return PrinterTelemetryReader().read(queueName, stop);
    };
    readings.readPaperGeometry = [](const QString& queueName) {
        return platform::startUtilityTask([queueName] { return DriverPaperGeometry::read(queueName); });
    };
    readings.captureSettings = [](const QList<QUrl>& paths, const std::stop_token& stop) {
        return platform::startUtilityTask([paths, stop] { return SettingsPreservationService::capture(paths, stop); });
    };
    return readings;
}

} // namespace orvex
