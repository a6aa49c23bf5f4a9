#pragma once

#include "Json/JsonReader.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvex {

/// One option of a queue's driver; its identity is the keyword.
struct DriverOption {
    QString keyword; ///< ASCII
    QString label;   ///< as the driver gives it, or the keyword
    QStringList choices;
    std::optional<QString> defaultChoice;

    /// Raises JsonError.
    [[nodiscard]] static DriverOption fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const DriverOption&) const = default;
};

/// An unfinished job of the system's queue; its identity is the id.
struct SystemPrintJob {
    QString id; ///< QUEUE-NUMBER
    QString rawLine;

    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const SystemPrintJob&) const = default;
};

/// What the system reported of a local queue in one pass; its identity is the name.
struct PrinterSnapshot {
    QString name;
    QString summary;   ///< of its state, in the system's words
    QString deviceURI; ///< empty if none was reported; it is shown, and never used to reach the device
    QList<DriverOption> options;
    QList<SystemPrintJob> jobs;
    platform::Timestamp capturedAt; ///< the same for all queues of a pass
    QString diagnostic;             ///< how far the rest can be trusted, one sentence a line; never empty

    /// Raises JsonInvalidNumber for a moment that is not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const PrinterSnapshot&) const = default;
};

} // namespace orvex
