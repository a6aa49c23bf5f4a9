#pragma once

#include "Json/JsonReader.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvex {

/// What was found at a protected path; its raw text is the name of the case.
enum class ProtectedSettingsFileStatus { regularFile, directory, missing, unreadable, symbolicLink, unsupported };

/// One protected path and its fingerprint; its identity is the path.
struct ProtectedSettingsFile {
    QString path; ///< absolute and standardised
    ProtectedSettingsFileStatus status = ProtectedSettingsFileStatus::missing;
    std::optional<QString> sha256{};     ///< of a regular file's content or a link's target, in lower-case hexadecimal
    std::optional<QString> diagnostic{}; ///< a sentence for the user

    /// Whether another look could show that nothing has changed.
    [[nodiscard]] bool isVerifiable() const;

    /// Raises JsonError.
    [[nodiscard]] static ProtectedSettingsFile fromJson(const platform::JsonReader& reader);

    /// Absent fields are left out.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ProtectedSettingsFile&) const = default;
};

/// The fingerprints of all protected paths at one time.
struct ProtectedSettingsSnapshot {
    static constexpr qint64 currentSchemaVersion = 1;

    qint64 schemaVersion = currentSchemaVersion;
    platform::Timestamp timestamp{};      ///< when the capture ended
    QStringList rootPaths{};              ///< distinct, sorted
    QList<ProtectedSettingsFile> files{}; ///< sorted by path

    /// Raises JsonError.
    [[nodiscard]] static ProtectedSettingsSnapshot fromJson(const platform::JsonReader& reader);

    /// Raises JsonInvalidNumber for a moment that is not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ProtectedSettingsSnapshot&) const = default;
};

/// A path that is not what it was; its identity is the path.
struct ProtectedSettingsChange {
    QString path;
    std::optional<ProtectedSettingsFile> before;
    std::optional<ProtectedSettingsFile> after;

    /// A side that is absent is left out.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ProtectedSettingsChange&) const = default;
};

/// What a comparison of two snapshots shows.
struct SettingsPreservationComparison {
    QList<ProtectedSettingsChange> changes; ///< sorted by path
    QStringList unverifiablePaths;          ///< distinct, sorted

    [[nodiscard]] bool isUnchanged() const { return changes.isEmpty() && unverifiablePaths.isEmpty(); }

    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const SettingsPreservationComparison&) const = default;
};

} // namespace orvex
