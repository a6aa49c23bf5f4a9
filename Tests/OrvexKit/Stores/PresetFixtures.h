#pragma once

#include "Stores/PrintPresets.h"

namespace orvex::test {

/// A preset of the driver's colours, without a profile, that breaks no rule.
inline PrintPreset preset() {
    PrintPreset preset;
    preset.id = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4");
    preset.name = QStringLiteral("Canvas · 60 in");
    preset.createdAt = {700000000.25};
    preset.updatedAt = {700000001.5};
    preset.settings.widthMM = 1524.0;
    preset.settings.heightMM = 1000.5;
    preset.settings.marginMM = 63.5;
    preset.settings.mediaNote = QStringLiteral("matte/satin");
    preset.mediaName = QStringLiteral("HP/Canvas \"matte\"");
    preset.driverQuality =
        DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("600x600dpi")};
    return preset;
}

inline ManagedICCAsset assetOf(const QString& sha256, const QString& displayName) {
    return {.filename = sha256 + QStringLiteral(".icc"), .sha256 = sha256, .displayName = displayName};
}

/// A reference that breaks no rule to a profile that is nowhere.
inline ManagedICCAsset missingAsset() {
    return assetOf(QStringLiteral("0123456789abcdef").repeated(4), QStringLiteral("Canvas/画.icc"));
}

/// The same preset with everything that it may have.
inline PrintPreset fullPreset() {
    PrintPreset full = preset();
    full.settings.placement = Placement::fill;
    full.settings.driverPageSize = QStringLiteral("Custom");
    full.colorWorkflow = {.mode = ColorManagementMode::appManaged,
                          .intent = ColorRenderingIntent::absoluteColorimetric,
                          .driverColorCorrectionDisabledConfirmed = true};
    full.iccAsset = missingAsset();
    return full;
}

} // namespace orvex::test
