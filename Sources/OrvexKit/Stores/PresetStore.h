#pragma once

#include "Stores/PrintPresets.h"

#include <QList>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace orvex {

/// The presets, one JSON file each, and the output profiles that they refer to, each named after the digest of its
/// content. Nothing is held in memory, repaired, or passed over: what cannot be read is reported and kept.
///
/// Failures are OrvexError with a message to show; FileSystemError where the system refuses. Every failure leaves all
/// files as they were. A plain value. One thread at a time.
class PresetStore {
public:
    /// In the given folder, or else in "presets" of the application folder; it and its folder of profiles are made if
    /// they are missing.
    explicit PresetStore(const std::optional<QUrl>& directory = std::nullopt);

    /// The folder of the presets in a folder that stands for the application folder.
    [[nodiscard]] static QUrl folderIn(const QUrl& applicationFolder);

    [[nodiscard]] const QUrl& directory() const { return directory_; }

    /// All presets, those updated last first. One that cannot be read, or whose profile is missing or altered, ends the
    /// load.
    [[nodiscard]] QList<PrintPreset> load() const;

    /// Writes a preset, as a new one or over the one with the same id. Returns what was stored: with a trimmed name,
    /// the first date of creation and the present one as that of the update, and without the operator's confirmation
    /// that the driver corrects no colours, which holds for one print only. Refused while any preset cannot be read.
    PrintPreset save(const PrintPreset& preset) const;

    /// Deletes a preset, if there is one with this id; its profile stays. Refused while any preset cannot be read.
    void remove(const QUuid& id) const;

    /// Copies a preset's file as it stands, under its own name, to a folder that is made if it is missing. A file that
    /// is there already stays. A link is refused, and so is a preset that the store does not have.
    void backUp(const QUuid& id, const QString& folder) const;

    /// Copies a profile into the store, which may hold it already. A link is refused.
    [[nodiscard]] ManagedICCAsset importICC(const QUrl& from) const;

    /// The profile's file, once its content has been verified.
    [[nodiscard]] QUrl resolveICC(const ManagedICCAsset& asset) const;

    /// All profiles of the store in the order of their file names. One that is not what its name says ends the listing.
    [[nodiscard]] QList<ManagedICCAsset> listICCAssets() const;

private:
    QUrl directory_;
};

} // namespace orvex
