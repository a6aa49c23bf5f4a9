#include "TelemetryTexts.h"

#include "OrvexLanguage.h"
#include "PanelTexts.h"

namespace orvex {

namespace {

QString notProvided() {
    return spt("未提供", "Not provided");
}

QString unknown(qint64 value) {
    return spt("未知（%1）", "Unknown (%1)").arg(value);
}

/// The states are those of IPP's printer-state (RFC 8011, 5.4.11).
QString stateText(const std::optional<qint64>& state) {
    if (!state) {
        return notProvided();
    }
    switch (*state) {
    case 3:
        return spt("空闲", "Idle");
    case 4:
        return spt("正在处理", "Processing");
    case 5:
        return spt("已停止", "Stopped");
    default:
        return unknown(*state);
    }
}

/// Negative levels are IPP's words for what a printer cannot tell.
QString levelText(const std::optional<qint64>& level) {
    if (!level) {
        return notProvided();
    }
    const bool isPercentage = *level >= 0 && *level <= 100;
    return isPercentage ? QStringLiteral("%1%").arg(*level) : unknown(*level);
}

QString countText(const std::optional<qint64>& count) {
    return count ? QString::number(*count) : notProvided();
}

TelemetryTexts::Row markerRow(const PrinterMarkerTelemetry& marker) {
    const bool isNamed = marker.name && !marker.name->trimmed().isEmpty();
    return {isNamed ? *marker.name : spt("耗材 %1", "Supply %1").arg(marker.index), levelText(marker.level)};
}

} // namespace

QString TelemetryTexts::sampled(const PrinterTelemetrySnapshot& telemetry) {
    return spt("读取时间：%1", "Sampled: %1").arg(orvexDateTime(telemetry.sampledAt));
}

QList<TelemetryTexts::Row> TelemetryTexts::rows(const PrinterTelemetrySnapshot& telemetry) {
    QList<Row> rows{
        {spt("队列状态", "Queue state"), stateText(telemetry.queueState)},
        {spt("排队作业数", "Queued jobs"), countText(telemetry.queuedJobCount)},
        {spt("维护墨盒", "Maintenance cartridge"),
         PrinterTelemetrySnapshot::maintenanceCartridgeStatus().value_or(notProvided())},
        {spt("打印头", "Printhead"), PrinterTelemetrySnapshot::printheadStatus().value_or(notProvided())},
    };
    for (const PrinterMarkerTelemetry& marker : telemetry.markers) {
        rows.append(markerRow(marker));
    }
    return rows;
}

QStringList TelemetryTexts::reports(const PrinterTelemetrySnapshot& telemetry) {
    QStringList reports;
    if (!telemetry.queueReasons.isEmpty()) {
        reports.append(spt("队列报告：%1", "Queue reports: %1").arg(telemetry.queueReasons.join(spt("、", ", "))));
    }
    if (!telemetry.queueMessage.trimmed().isEmpty()) {
        reports.append(telemetry.queueMessage);
    }
    return reports;
}

std::optional<QString> TelemetryTexts::missingLevels(const PrinterTelemetrySnapshot& telemetry) {
    if (!telemetry.markers.isEmpty()) {
        return std::nullopt;
    }
    return spt("此接口未提供墨水或维护墨盒余量。缺失的信息不会显示为正常。",
               "This interface did not provide ink or maintenance cartridge levels. Missing information is not shown "
               "as normal.");
}

std::optional<QString> TelemetryTexts::unavailability(const PrinterReadings& readings) {
    if (readings.telemetryError) {
        return spt("无法读取状态：%1", "Could not read status: %1").arg(*readings.telemetryError);
    }
    if (readings.telemetry) {
        return std::nullopt;
    }
    return spt("尚未读取设备信息。", "Device information has not been read.");
}

} // namespace orvex
