// Presets, the one that loads by itself, and the output profile.

#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "PresetDeletion.h"

#include <algorithm>

namespace orvex {

// The form of the output controls

void OrvexModel::setMediaName(const QString& value) {
    presetForm.update([&](PresetForm& form) { form.mediaName = value; });
}

void OrvexModel::setMediaNote(const QString& value) {
    presetForm.update([&](PresetForm& form) { form.settings.mediaNote = value; });
}

void OrvexModel::setQualityChoice(const QString& value) {
    presetForm.update([&](PresetForm& form) { form.qualityChoice = value; });
}

void OrvexModel::setPresetName(const QString& value) {
    presetForm.update([&](PresetForm& form) { form.presetName = value; });
}

void OrvexModel::setColorManagementMode(ColorManagementMode mode) {
    if (presetForm().colorWorkflow.mode == mode) {
        return;
    }
    presetForm.update([&](PresetForm& form) {
        form.colorWorkflow.mode = mode;
        form.colorWorkflow.driverColorCorrectionDisabledConfirmed = false; // it was given for the other mode
    });
}

void OrvexModel::setColorRenderingIntent(ColorRenderingIntent intent) {
    presetForm.update([&](PresetForm& form) { form.colorWorkflow.intent = intent; });
}

void OrvexModel::setDriverColorCorrectionDisabledConfirmed(bool value) {
    presetForm.update([&](PresetForm& form) { form.colorWorkflow.driverColorCorrectionDisabledConfirmed = value; });
}

// The output profile

void OrvexModel::inspectICC() {
    const QList<QUrl> files = services_.openFiles(
        {.title = spt("导入与画布和质量匹配的输出 ICC", "Import an output ICC matching your canvas and quality"),
         .kind = FileKind::outputProfile});
    if (files.isEmpty() || !presetStore) {
        return;
    }
    std::optional<OutputICCProfile> profile;
    std::optional<ManagedICCAsset> asset;
    const auto import = [&] {
        profile = OutputICCProfile::inspect(files.first());
        asset = presetStore->importICC(files.first());
    };
    if (const auto failure = failureMessageOf(import)) {
        errorMessage.set(failure);
        return;
    }
    presetForm.update([&](PresetForm& form) {
        form.icc = profile;
        form.iccAsset = asset;
    });
    clearColorConfirmation();
    message.set(spt("已保存由应用管理的 ICC 副本。请确认它与 iPF9400、HP J3E87B 和打印质量匹配。",
                    "A managed ICC copy has been saved. Confirm that it matches the iPF9400, HP J3E87B and print "
                    "quality."));
}

void OrvexModel::clearICC() {
    presetForm.update([](PresetForm& form) {
        form.icc.reset();
        form.iccAsset.reset();
    });
    clearColorConfirmation();
}

// Presets

/// Takes over the choices of a preset; whether it could be done. A preset whose profile is gone changes nothing.
bool OrvexModel::applyPreset(const PrintPreset& preset, bool resizesArtwork) {
    std::optional<OutputICCProfile> profile;
    if (preset.iccAsset && presetStore) {
        const auto inspect = [&] { profile = OutputICCProfile::inspect(presetStore->resolveICC(*preset.iccAsset)); };
        if (const auto failure = failureMessageOf(inspect)) {
            errorMessage.set(failure);
            return false;
        }
    }
    const auto picture = image() ? std::optional(PixelSize{image()->pixelWidth, image()->pixelHeight}) : std::nullopt;
    presetForm.set(presetForm().applying(preset, profile, picture));
    const auto selected = selectedArtwork();
    if (resizesArtwork && selected) {
        resizeArtwork(selected->id, PrintUnits::inches(preset.settings.widthMM) - PrintUnits::bothBordersInches,
                      QuarterInchArtworkSizing::Dimension::width);
    }
    syncSelectedArtwork();
    message.set(spt("已载入本地预设 %1。未向驱动或设备写入任何参数。",
                    "Loaded local preset %1. No parameters were written to the driver or device.")
                    .arg(preset.name));
    return true;
}

std::optional<PrintPreset> OrvexModel::presetWithID(const QUuid& id) const {
    const auto found = std::ranges::find(presets(), id, &PrintPreset::id);
    return found != presets().end() ? std::optional(*found) : std::nullopt;
}

std::optional<PrintPreset> OrvexModel::presetWithID(const QString& id) const {
    const auto isMeant = [&id](const PrintPreset& each) { return platform::uuidText(each.id) == id; };
    const auto found = std::ranges::find_if(presets(), isMeant);
    return found != presets().end() ? std::optional(*found) : std::nullopt;
}

void OrvexModel::choosePreset(const QString& id) {
    if (const auto preset = presetWithID(id)) {
        static_cast<void>(applyPreset(*preset, true)); // a failure has been told
        return;
    }
    presetForm.update([&](PresetForm& form) { form.selectedPresetID = id; });
}

void OrvexModel::savePreset(bool asNew) {
    if (!presetStore) {
        return;
    }
    const QString& quality = presetForm().qualityChoice;
    if (!quality.isEmpty() && !printerReadings().qualityChoices().contains(quality)) {
        errorMessage.set(spt("当前驱动不提供此质量选项。请另选一项，或使用当前设置。",
                             "The current driver does not offer this quality choice. Select another or use the current "
                             "settings."));
        return;
    }
    const platform::Timestamp now = services_.now();
    const auto old = asNew ? std::nullopt : selectedPreset();
    const PrintPreset preset =
        presetForm().preset(old ? old->id : QUuid::createUuid(), old ? old->createdAt : now, now);
    QString storedName;
    QList<PrintPreset> stored;
    const auto save = [&] {
        storedName = presetStore->save(preset).name;
        stored = presetStore->load();
    };
    if (const auto failure = failureMessageOf(save)) {
        errorMessage.set(failure);
        return;
    }
    presets.set(stored);
    presetForm.update([&](PresetForm& form) { form.selectedPresetID = platform::uuidText(preset.id); });
    if (canvasPreference && canvasPreference->presetID == preset.id) {
        canvasDefaultName.set(storedName);
    }
    message.set(spt("已保存纸张、尺寸、ICC 和质量选择。预设不包含裁切设置。",
                    "Paper, size, ICC and quality choices were saved. Presets do not contain cutting settings."));
}

void OrvexModel::deletePreset() {
    const auto selected = selectedPreset();
    if (!selected || !presetStore) {
        return;
    }
    QList<PrintPreset> stored;
    const auto remove = [&] {
        orvex::deletePreset(selected->id, *presetStore, defaultsURL, canvasPreference);
        stored = presetStore->load();
    };
    const auto failure = failureMessageOf(remove);
    if (!canvasPreference) {
        canvasDefaultName.set(std::nullopt); // the binding goes first, and may be gone where the preset is not
    }
    if (failure) {
        errorMessage.set(failure);
        return;
    }
    presets.set(stored);
    presetForm.update([](PresetForm& form) { form.selectedPresetID.clear(); });
    message.set(spt("已删除本地预设。", "The local preset was deleted."));
}

void OrvexModel::bindCanvasDefault() {
    const auto selected = selectedPreset();
    const QString& printer = printerReadings().selectedPrinterName;
    if (!selected || !defaultsURL || printer.isEmpty()) {
        errorMessage.set(spt("请先保存本地预设并选择打印机。", "Save a local preset and select a printer first."));
        return;
    }
    const CanvasPreference preference{.printerName = printer, .presetID = selected->id};
    if (const auto failure = failureMessageOf([&] { preference.save(*defaultsURL); })) {
        errorMessage.set(failure);
        return;
    }
    canvasPreference = preference;
    canvasDefaultName.set(selected->name);
    message.set(spt("下次将自动载入此画布预设。面板介质和裁切仍由现有设置控制。",
                    "This canvas preset will load automatically next time. Existing settings still control panel media "
                    "and cutting."));
}

bool OrvexModel::canSavePreset() const {
    return presetsAvailable() && !busy();
}

bool OrvexModel::canChangePreset() const {
    return canSavePreset() && selectedPreset().has_value();
}

bool OrvexModel::canBindCanvasDefault() const {
    return selectedPreset().has_value() && !printerReadings().selectedPrinterName.isEmpty();
}

} // namespace orvex
