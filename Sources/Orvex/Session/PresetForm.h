#pragma once

#include "Layout/Document.h"
#include "Output/ColorManagement.h"
#include "Stores/PrintPresets.h"

#include <QString>

#include <optional>

namespace orvex {

/// An upright picture's size in pixels.
struct PixelSize {
    qint64 width = 0;
    qint64 height = 0;
};

/// The choices that a preset keeps, as they stand in the form of the output controls. Plain value.
struct PresetForm {
    DocumentSettings settings;
    ColorWorkflow colorWorkflow = {};
    std::optional<OutputICCProfile> icc = {};     ///< what the output profile says of itself
    std::optional<ManagedICCAsset> iccAsset = {}; ///< the stored copy of that profile
    QString mediaName;
    QString qualityChoice = {};    ///< of the driver's resolution option; empty means the driver's own
    QString selectedPresetID = {}; ///< as text; empty for none
    QString presetName = {};

    /// The form as it stands at the start: a page as wide as the roll with the reference picture.
    [[nodiscard]] static PresetForm initial();

    /// The form with the choices of a preset and what its profile says of itself; the page takes the proportions of
    /// the picture. The operator's confirmation is never a preset's: it was given for the old choices.
    [[nodiscard]] PresetForm applying(const PrintPreset& preset, const std::optional<OutputICCProfile>& profile,
                                      const std::optional<PixelSize>& picture) const;

    /// The choices as a preset.
    [[nodiscard]] PrintPreset preset(const QUuid& id, platform::Timestamp createdAt, platform::Timestamp now) const;

    /// The choice of the driver's resolution; absent for the driver's own.
    [[nodiscard]] std::optional<DriverOptionSelection> driverQuality() const;

    bool operator==(const PresetForm&) const = default;
};

} // namespace orvex
