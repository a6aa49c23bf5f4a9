#include "PresetForm.h"

#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "Layout/RollLayout.h"
#include "OrvexLanguage.h"

namespace orvex {

PresetForm PresetForm::initial() {
    PresetForm form{.settings = {}, .mediaName = CanvasMedia::name()};
    form.settings = BorderedArtworkLayout::draft(PageWidthInches{RollLayout::rollWidthInches},
                                                 ArtPrintLayout::orvexPixelWidth, ArtPrintLayout::orvexPixelHeight, {});
    form.presetName = spt("HP 画布 · 60 英寸 · 白边 2.5 英寸", "HP Canvas · 60 in · 2.5-inch border");
    return form;
}

PresetForm PresetForm::applying(const PrintPreset& preset, const std::optional<OutputICCProfile>& profile,
                                const std::optional<PixelSize>& picture) const {
    const PixelSize pixels =
        picture.value_or(PixelSize{ArtPrintLayout::orvexPixelWidth, ArtPrintLayout::orvexPixelHeight});
    PresetForm form = *this;
    form.settings = BorderedArtworkLayout::draft(PageWidthInches{PrintUnits::inches(preset.settings.widthMM)},
                                                 pixels.width, pixels.height, preset.settings);
    form.mediaName = preset.mediaName;
    form.qualityChoice = preset.driverQuality ? preset.driverQuality->value : QString();
    form.colorWorkflow = preset.colorWorkflow;
    form.colorWorkflow.driverColorCorrectionDisabledConfirmed = false;
    form.iccAsset = preset.iccAsset;
    form.icc = profile;
    form.presetName = preset.name;
    form.selectedPresetID = platform::uuidText(preset.id);
    return form;
}

PrintPreset PresetForm::preset(const QUuid& id, platform::Timestamp createdAt, platform::Timestamp now) const {
    return {.id = id,
            .name = presetName,
            .createdAt = createdAt,
            .updatedAt = now,
            .settings = settings,
            .mediaName = mediaName,
            .driverQuality = driverQuality(),
            .colorWorkflow = colorWorkflow,
            .iccAsset = iccAsset};
}

std::optional<DriverOptionSelection> PresetForm::driverQuality() const {
    if (qualityChoice.isEmpty()) {
        return std::nullopt;
    }
    return DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = qualityChoice};
}

} // namespace orvex
