#pragma once

#include "Layout/Geometry.h"
#include "PrintModels.h"
#include "PrinterTelemetry.h"
#include "ProtectedSettings.h"

#include <QFuture>
#include <QMap>

#include <functional>
#include <stop_token>

namespace orvex {

/// The readings of this machine that the session takes, as tasks of the utility pool that hold no reference to it.
struct MachineReadings {
    std::function<QFuture<QList<PrinterSnapshot>>(const std::stop_token&)> discoverQueues;
    std::function<QFuture<PrinterTelemetrySnapshot>(const QString& queueName, const std::stop_token&)> readTelemetry;
    std::function<QFuture<QMap<QString, Size>>(const QString& queueName)> readPaperGeometry;
    std::function<QFuture<ProtectedSettingsSnapshot>(const QList<QUrl>& paths, const std::stop_token&)> captureSettings;

    /// The real ones.
    [[nodiscard]] static MachineReadings standard();
};

} // namespace orvex
