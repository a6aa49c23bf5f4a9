#pragma once

#include "Json/JsonReader.h"

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QUrl>

#include <optional>

namespace orvex {

/// How the user left the window. Plain value, any thread.
struct WindowState {
    QByteArray geometry;                 ///< as the window system's toolkit tells it
    QMap<QString, QByteArray> splitters; ///< the same of each splitter, by its name
    QString folder;                      ///< in which the last file was chosen

    /// The place of the record in the folder of the stores.
    [[nodiscard]] static QUrl url(const QUrl& folder);

    /// The record in a file; absent if there is no such file. Raises JsonError for a file that holds anything else, and
    /// FileSystemError for one that cannot be read or is far too large; the file stays as it is.
    [[nodiscard]] static std::optional<WindowState> load(const QUrl& from);

    /// Replaces the file by this record. Raises FileSystemError, and then the old file stays.
    void save(const QUrl& to) const;

    [[nodiscard]] static WindowState fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const WindowState&) const = default;
};

} // namespace orvex
