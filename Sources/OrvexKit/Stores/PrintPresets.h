#pragma once

#include "Json/JsonReader.h"
#include "Layout/Document.h"
#include "Output/ColorManagement.h"
#include "Timestamp.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvex {

/// A choice among those of a driver's option. Plain value, any thread.
struct DriverOptionSelection {
    QString keyword;
    QString value;

    /// The message of the first rule that the choice breaks, or nothing: the resolution is all that may be recorded,
    /// never cutting or anything else that the device does.
    [[nodiscard]] std::optional<QString> validationError() const;

    /// Reads the two required keys; no rule is applied. Raises JsonError.
    [[nodiscard]] static DriverOptionSelection fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const DriverOptionSelection&) const = default;
};

/// A reference to an output profile in the program's own keeping, by the profile's content. Plain value, any thread.
struct ManagedICCAsset {
    QString filename; ///< the digest followed by ".icc"
    QString sha256;   ///< of the file's content, 64 lower-case hexadecimal digits
    QString displayName;

    /// The message of the first rule that the reference breaks, or nothing. One that breaks none names no other place
    /// than a file in the folder of profiles.
    [[nodiscard]] std::optional<QString> validationError() const;

    /// Reads the three required keys; no rule is applied. Raises JsonError.
    [[nodiscard]] static ManagedICCAsset fromJson(const platform::JsonReader& reader);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ManagedICCAsset&) const = default;
};

/// A saved way of printing a canvas; its identity is the id. Plain value, any thread.
struct PrintPreset {
    static constexpr qint64 currentSchemaVersion = 1;
    static constexpr qsizetype longestName = 200; ///< in characters

    qint64 schemaVersion = currentSchemaVersion;
    QUuid id;
    QString name;
    platform::Timestamp createdAt;
    platform::Timestamp updatedAt;
    DocumentSettings settings = {};
    QString mediaName = {};
    std::optional<DriverOptionSelection> driverQuality = std::nullopt;
    ColorWorkflow colorWorkflow = {};
    std::optional<ManagedICCAsset> iccAsset = std::nullopt;

    /// The message of the first rule that the preset breaks, or nothing.
    [[nodiscard]] std::optional<QString> validationError() const;

    /// Reads the keys; no rule is applied. Raises JsonError.
    [[nodiscard]] static PrintPreset fromJson(const platform::JsonReader& reader);

    /// Raises JsonInvalidNumber for a number that is not finite.
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const PrintPreset&) const = default;
};

} // namespace orvex
