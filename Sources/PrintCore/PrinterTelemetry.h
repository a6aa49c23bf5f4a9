#pragma once

#include "Json/JsonReader.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvex {

/// One ink or cartridge of a queue; its identity is the index. The levels are those of IPP, not interpreted.
struct PrinterMarkerTelemetry {
    qint64 index = 0; ///< the position in the printer's marker arrays, from 0
    std::optional<QString> name{};
    std::optional<QString> type{};
    std::optional<QString> color{};
    std::optional<qint64> level{};
    std::optional<qint64> lowLevel{};
    std::optional<qint64> highLevel{};

    /// Raises JsonError.
    [[nodiscard]] static PrinterMarkerTelemetry fromJson(const platform::JsonReader& reader);

    /// Absent fields are left out.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const PrinterMarkerTelemetry&) const = default;
};

/// What the local CUPS scheduler said of a queue. It speaks from its cache, not for the device.
struct PrinterTelemetrySnapshot {
    QString queueName;
    platform::Timestamp sampledAt{}; ///< when the answer was complete
    std::optional<qint64> queueState{};
    QString queueMessage{};
    QStringList queueReasons{};
    std::optional<qint64> queuedJobCount{};
    std::optional<bool> isAcceptingJobs{};
    std::optional<qint64> markerChangeTime{};
    QList<PrinterMarkerTelemetry> markers{};

    [[nodiscard]] platform::Timestamp sampledDate() const { return sampledAt; }

    /// Where the values come from, in the current language.
    [[nodiscard]] static QString sourceDescription();

    /// CUPS has no such data. They are always absent, so that nobody takes its want for a healthy state.
    [[nodiscard]] static std::optional<QString> maintenanceCartridgeStatus() { return std::nullopt; }

    [[nodiscard]] static std::optional<QString> printheadStatus() { return std::nullopt; }

    /// A missing `sampledAt` reads as the start of the time scale. Raises JsonError.
    [[nodiscard]] static PrinterTelemetrySnapshot fromJson(const platform::JsonReader& reader);

    /// Absent fields are left out. Raises JsonInvalidNumber for a moment that is not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const PrinterTelemetrySnapshot&) const = default;
};

} // namespace orvex
