#pragma once

#include "Json/JsonReader.h"

#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace orvex {

/// The preset that is loaded by itself for one printer queue. Plain value, any thread.
struct CanvasPreference {
    QString printerName;
    QUuid presetID;

    /// The place of the record in the folder of the local queue.
    [[nodiscard]] static QUrl url(const QUrl& folder);

    /// The record in a file; absent if there is no such file. Raises JsonError for a file that holds anything else, and
    /// FileSystemError for one that cannot be read or is far too large; the file stays as it is.
    [[nodiscard]] static std::optional<CanvasPreference> load(const QUrl& from);

    /// Replaces the file by this record. Raises FileSystemError, and then the old file stays.
    void save(const QUrl& to) const;

    /// Reads the two required keys. Raises JsonError.
    [[nodiscard]] static CanvasPreference fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const CanvasPreference&) const = default;
};

} // namespace orvex
