#include "InchLayoutMigration.h"

#include "Files/FileFacts.h"
#include "Files/FileReplacer.h"
#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "Stores/StoreFiles.h"

namespace orvex {

namespace {

// Names that are stored, whatever the language.
const QString formerName = QStringLiteral("HP J3E87B · ORVEX 60 × 40");
const QString presentName = QStringLiteral("HP J3E87B · 60 英寸 · 白边 2.5 英寸");

QJsonObject markerContent() {
    return {{QStringLiteral("version"), 1},
            {QStringLiteral("units"), QStringLiteral("inches")},
            {QStringLiteral("whiteBorderInches"), PrintUnits::whiteBorderInches},
            {QStringLiteral("preserveWholeArtwork"), true}};
}

std::optional<PrintPreset> boundPreset(const std::optional<CanvasPreference>& preference,
                                       const QList<PrintPreset>& presets) {
    if (!preference) {
        return std::nullopt;
    }
    const auto found = std::ranges::find(presets, preference->presetID, &PrintPreset::id);
    return found == presets.end() ? std::nullopt : std::optional(*found);
}

PrintPreset inInches(PrintPreset preset) {
    preset.settings = BorderedArtworkLayout::settings(PageWidthInches{PrintUnits::inches(preset.settings.widthMM)},
                                                      ArtPrintLayout::orvexPixelWidth, ArtPrintLayout::orvexPixelHeight,
                                                      preset.settings);
    if (preset.name == formerName) {
        preset.name = presentName;
    }
    return preset;
}

} // namespace

void migrateDefaultCanvasToInches(const PresetStore& store, const QUrl& defaultsURL,
                                  const std::optional<CanvasPreference>& preference, QList<PrintPreset>& presets) {
    const QUrl folder = defaultsURL.adjusted(QUrl::RemoveFilename);
    const QString marker = StoreFiles::path(folder, QStringLiteral("inch-layout-policy-v1.json"));
    if (platform::isThere(marker)) {
        return;
    }
    if (const std::optional<PrintPreset> bound = boundPreset(preference, presets)) {
        store.backUp(bound->id, StoreFiles::path(folder, QStringLiteral("layout-backup-before-inches")));
        store.save(inInches(*bound));
        presets = store.load();
    }
    platform::FileReplacer::replace(marker, platform::writeJson(markerContent(), platform::JsonForm::pretty));
}

} // namespace orvex
