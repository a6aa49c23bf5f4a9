#include "PresetForm.h"

#include "InChinese.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

const QUuid presetID(QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"));

const ManagedICCAsset asset{
    .filename = QStringLiteral("a.icc"), .sha256 = QStringLiteral("a"), .displayName = QStringLiteral("Canvas.icc")};
const OutputICCProfile profile{.name = QStringLiteral("Canvas"),
                               .profileClass = QStringLiteral("prtr"),
                               .colorModel = QStringLiteral("CMYK"),
                               .componentCount = 4,
                               .sha256 = QStringLiteral("a")};

PrintPreset preset() {
    return {.id = presetID,
            .name = QStringLiteral("Matte"),
            .createdAt = {},
            .updatedAt = {},
            .settings = {.widthMM = 1016.0,
                         .heightMM = 500.0,
                         .marginMM = 10.0,
                         .placement = Placement::fill,
                         .paperSource = QStringLiteral("单张纸"),
                         .mediaNote = QStringLiteral("satin"),
                         .driverPageSize = QStringLiteral("A4")},
            .mediaName = QStringLiteral("Canvas M"),
            .driverQuality =
                DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("600dpi")},
            .colorWorkflow = {.mode = ColorManagementMode::appManaged,
                              .intent = ColorRenderingIntent::saturation,
                              .driverColorCorrectionDisabledConfirmed = true},
            .iccAsset = asset};
}

TEST(PresetForm, StartsWithAPageAsWideAsTheRoll) {
    const PresetForm form = PresetForm::initial();
    EXPECT_EQ(form.settings.widthMM, 1524.0);
    EXPECT_EQ(form.settings.heightMM, (55.0 * 12000.0 / 18000.0 + 5.0) * 25.4);
    EXPECT_EQ(form.settings.marginMM, 63.5);
    EXPECT_EQ(form.settings.placement, Placement::fit);
    EXPECT_EQ(form.settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(form.colorWorkflow, ColorWorkflow());
    EXPECT_EQ(form.icc, std::nullopt);
    EXPECT_EQ(form.iccAsset, std::nullopt);
    EXPECT_EQ(form.mediaName, QStringLiteral("HP Professional Matte Canvas · J3E87B"));
    EXPECT_EQ(form.qualityChoice, QString());
    EXPECT_EQ(form.selectedPresetID, QString());
    EXPECT_EQ(form.presetName, QStringLiteral("HP Canvas · 60 in · 2.5-inch border"));
}

TEST(PresetForm, StoresTheSamePaperSourceInBothLanguages) {
    const test::InChinese chinese;
    EXPECT_EQ(PresetForm::initial().settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(PresetForm::initial().presetName, QStringLiteral("HP 画布 · 60 英寸 · 白边 2.5 英寸"));
}

TEST(PresetForm, TakesTheChoicesOfAPreset) {
    const PresetForm form = PresetForm::initial().applying(preset(), profile, std::nullopt);
    EXPECT_EQ(form.mediaName, QStringLiteral("Canvas M"));
    EXPECT_EQ(form.qualityChoice, QStringLiteral("600dpi"));
    EXPECT_EQ(form.colorWorkflow.mode, ColorManagementMode::appManaged);
    EXPECT_EQ(form.colorWorkflow.intent, ColorRenderingIntent::saturation);
    EXPECT_EQ(form.iccAsset, asset);
    EXPECT_EQ(form.icc, profile);
    EXPECT_EQ(form.presetName, QStringLiteral("Matte"));
    EXPECT_EQ(form.selectedPresetID, QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"));
}

TEST(PresetForm, NeverTakesAConfirmationFromAPreset) {
    PresetForm form = PresetForm::initial();
    form.colorWorkflow.driverColorCorrectionDisabledConfirmed = true;
    EXPECT_FALSE(form.applying(preset(), profile, std::nullopt).colorWorkflow.driverColorCorrectionDisabledConfirmed);
}

TEST(PresetForm, GivesThePageOfAPresetTheProportionsOfThePicture) {
    const DocumentSettings settings =
        PresetForm::initial().applying(preset(), profile, PixelSize{.width = 100, .height = 300}).settings;
    EXPECT_EQ(settings.widthMM, 1016.0);
    EXPECT_EQ(settings.heightMM, (35.0 * 300.0 / 100.0 + 5.0) * 25.4);
    EXPECT_EQ(settings.marginMM, 63.5);
    EXPECT_EQ(settings.placement, Placement::fit);
    EXPECT_EQ(settings.paperSource, QStringLiteral("单张纸"));
    EXPECT_EQ(settings.mediaNote, QStringLiteral("satin"));
    EXPECT_EQ(settings.driverPageSize, QString());
}

TEST(PresetForm, GivesThePageOfAPresetTheProportionsOfTheReferenceWithoutAPicture) {
    const DocumentSettings settings = PresetForm::initial().applying(preset(), profile, std::nullopt).settings;
    EXPECT_EQ(settings.heightMM, (35.0 * 12000.0 / 18000.0 + 5.0) * 25.4);
}

TEST(PresetForm, LosesWhatAPresetDoesNotHave) {
    PresetForm form = PresetForm::initial();
    form.qualityChoice = QStringLiteral("600dpi");
    form.icc = profile;
    form.iccAsset = asset;
    PrintPreset plain = preset();
    plain.driverQuality.reset();
    plain.iccAsset.reset();
    const PresetForm applied = form.applying(plain, std::nullopt, std::nullopt);
    EXPECT_EQ(applied.qualityChoice, QString());
    EXPECT_EQ(applied.icc, std::nullopt);
    EXPECT_EQ(applied.iccAsset, std::nullopt);
}

TEST(PresetForm, IsKeptAsAPreset) {
    PresetForm form = PresetForm::initial();
    form.presetName = QStringLiteral("Mine");
    form.mediaName = QStringLiteral("Canvas M");
    form.qualityChoice = QStringLiteral("1200dpi");
    form.iccAsset = asset;
    form.colorWorkflow.intent = ColorRenderingIntent::perceptual;
    const PrintPreset kept = form.preset(presetID, {1.5}, {2.5});
    EXPECT_EQ(kept.schemaVersion, 1);
    EXPECT_EQ(kept.id, presetID);
    EXPECT_EQ(kept.createdAt, platform::Timestamp{1.5});
    EXPECT_EQ(kept.updatedAt, platform::Timestamp{2.5});
    EXPECT_EQ(kept.name, QStringLiteral("Mine"));
    EXPECT_EQ(kept.settings, form.settings);
    EXPECT_EQ(kept.mediaName, QStringLiteral("Canvas M"));
    EXPECT_EQ(kept.driverQuality,
              (DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("1200dpi")}));
    EXPECT_EQ(kept.colorWorkflow, form.colorWorkflow);
    EXPECT_EQ(kept.iccAsset, asset);
}

TEST(PresetForm, RecordsNoQualityForTheDriversOwn) {
    EXPECT_EQ(PresetForm::initial().driverQuality(), std::nullopt);
    EXPECT_EQ(PresetForm::initial().preset(presetID, {}, {}).driverQuality, std::nullopt);
}

} // namespace
} // namespace orvex
