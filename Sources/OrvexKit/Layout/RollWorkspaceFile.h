#pragma once

#include "Json/JsonReader.h"
#include "Layout/RollLayout.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvex {

/// What the autosave file and a saved layout file hold: the canvas and what belongs to editing it. Images are referred
/// to by path. Plain value, any thread.
struct RollWorkspaceFile {
    static constexpr qint64 currentVersion = 1;

    qint64 version = currentVersion;
    RollLayout layout;
    std::optional<QUuid> selection;
    QMap<QString, QString> sizingDescriptions; ///< by the upper-case text of the artwork's id
    double gapInches = 0.0;

    bool operator==(const RollWorkspaceFile&) const = default;

    /// Raises OrvexError for a file that must not be used: another version, repeated ids, a bad gap, width or artwork.
    void validate() const;

    /// Reads a file without validating it. Raises JsonError.
    [[nodiscard]] static RollWorkspaceFile decode(QByteArrayView utf8);

    /// The bytes of the file: pretty printed, keys sorted, slashes plain. Raises JsonError.
    [[nodiscard]] QByteArray encode() const;

    [[nodiscard]] static RollWorkspaceFile fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;
};

} // namespace orvex
