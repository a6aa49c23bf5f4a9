// The look at the printers, again and again, and which of them is selected.

#include "Interrupted.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"

#include <QFileInfo>
#include <QPointer>
#include <QScopeGuard>

#include <algorithm>

namespace orvex {

void OrvexModel::startRefreshing() {
    const bool isRunning = refreshLoopCount_ > 0 && !refreshLoop_.stop_requested();
    if (isRunning) {
        return;
    }
    refreshLoop_ = std::stop_source(); // one that was stopped may still be in its last pass
    runRefreshing();
}

void OrvexModel::stopRefreshing() {
    refreshLoop_.request_stop();
}

QCoro::Task<> OrvexModel::runRefreshing() {
    const std::stop_token stop = refreshLoop_.get_token();
    ++refreshLoopCount_;
    const auto whenEnded = qScopeGuard([this] { --refreshLoopCount_; });
    co_await restoreRollPreviews(false);
    while (!stop.stop_requested()) {
        co_await refresh();
        co_await services_.sleep(refreshInterval, stop);
    }
}

QCoro::Task<> OrvexModel::refresh() {
    if (refreshing() || closing_.stop_requested()) {
        co_return;
    }
    refreshing.set(true);
    try {
        co_await readQueues();
        const QString queue = printerReadings().selectedPrinterName;
        if (queue.isEmpty()) {
            printerReadings.update([](PrinterReadings& readings) { readings.telemetry.reset(); });
        } else {
            co_await readSelectedQueue(queue);
        }
        co_await checkProtectedSettings();
    } catch (const platform::Interrupted&) {
        // the session closes
    } catch (const std::exception& exception) {
        errorMessage.set(failureMessage(exception));
    }
    refreshing.set(false);
}

/// Raises Interrupted.
QCoro::Task<> OrvexModel::readQueues() {
    std::optional<QString> failure;
    try {
        const QFuture<QList<PrinterSnapshot>> discovering = readings_.discoverQueues(closing_.get_token());
        const QList<PrinterSnapshot> printers = co_await discovering;
        takePrinters(printers);
        applyDefaultPreset();
    } catch (const platform::Interrupted&) {
        throw;
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        printerReadings.update([&](PrinterReadings& readings) { readings.lastRefreshError = failure; });
        errorMessage.set(spt("无法读取打印机状态：%1", "Could not read printer status: %1").arg(*failure));
    }
}

void OrvexModel::takePrinters(const QList<PrinterSnapshot>& printers) {
    bool isSelectionLost = false;
    printerReadings.update([&](PrinterReadings& readings) { isSelectionLost = readings.takePrinters(printers); });
    if (isSelectionLost) {
        forgetPrinterChoices();
    }
}

/// Forgets what was chosen for a queue that is no longer selected.
void OrvexModel::forgetPrinterChoices() {
    presetForm.update([](PresetForm& form) {
        form.qualityChoice.clear();
        form.settings.driverPageSize.clear();
    });
    clearColorConfirmation();
    canvasApplied = false;
}

/// Loads the preset that is bound to the selected printer, once for each selection.
void OrvexModel::applyDefaultPreset() {
    if (canvasApplied || !canvasPreference || canvasPreference->printerName != printerReadings().selectedPrinterName) {
        return;
    }
    const auto bound = presetWithID(canvasPreference->presetID);
    if (bound && applyPreset(*bound, false)) {
        canvasApplied = true;
        message.set(spt("已自动载入本地画布预设。打印机面板和佳能设置保持不变。",
                        "The local canvas preset was loaded automatically. Printer panel and Canon settings are "
                        "unchanged."));
    }
}

/// Raises Interrupted. A reading of a queue that is no longer selected is dropped.
QCoro::Task<> OrvexModel::readSelectedQueue(QString queue) {
    std::optional<QString> failure;
    try {
        const QFuture<QMap<QString, Size>> readingPapers = readings_.readPaperGeometry(queue);
        const QMap<QString, Size> papers = co_await readingPapers;
        if (printerReadings().selectedPrinterName == queue) {
            printerReadings.update([&](PrinterReadings& readings) { readings.paperGeometry = papers; });
        }
        const QFuture<PrinterTelemetrySnapshot> readingState = readings_.readTelemetry(queue, closing_.get_token());
        const PrinterTelemetrySnapshot state = co_await readingState;
        takeTelemetry(state, queue);
    } catch (const platform::Interrupted&) {
        throw;
    } catch (const std::exception& exception) {
        failure = failureMessage(exception);
    }
    if (failure) {
        forgetTelemetry(*failure);
    }
}

void OrvexModel::takeTelemetry(const PrinterTelemetrySnapshot& state, const QString& queue) {
    if (printerReadings().selectedPrinterName != queue) {
        return;
    }
    printerReadings.update([&](PrinterReadings& readings) {
        readings.telemetry = state;
        readings.telemetryError.reset();
    });
}

void OrvexModel::forgetTelemetry(const QString& reason) {
    printerReadings.update([&](PrinterReadings& readings) {
        readings.telemetry.reset();
        readings.telemetryError = reason;
    });
}

void OrvexModel::selectPrinter(const QString& name) {
    printerReadings.update([&](PrinterReadings& readings) {
        readings.selectedPrinterName = name;
        readings.telemetry.reset();
    });
    forgetPrinterChoices();
    later([this] { refresh(); });
}

void OrvexModel::openCanonMonitor() {
    const QStringList places{
        QStringLiteral("/Applications/Canon Utilities/imagePROGRAF Printmonitor/imagePROGRAF Printmonitor.app"),
        QStringLiteral("/Library/Printers/Canon/GARO/Utilities/GARO Printmonitor.app")};
    const auto found = std::ranges::find_if(places, [](const QString& place) { return QFileInfo::exists(place); });
    if (found == places.end()) {
        errorMessage.set(spt("未找到佳能 Printmonitor。", "Canon Printmonitor was not found."));
        return;
    }
    runMonitor(QUrl::fromLocalFile(*found));
}

QCoro::Task<> OrvexModel::runMonitor(QUrl application) {
    const QPointer<OrvexModel> session(this); // starting an application takes its time, and nobody waits for it
    const std::optional<QString> failure = co_await services_.openApplication(application);
    if (session && failure) {
        errorMessage.set(failure);
    }
}

} // namespace orvex
