#include "InChinese.h"
#include "Json/JsonWriter.h"
#include "PresetTest.h"

namespace orvex {
namespace {

class Presets : public test::PresetTest {};

// Saving

TEST_F(Presets, AreSavedAsNewOnes) {
    model->setQualityChoice(QStringLiteral("1200dpi"));
    model->setDriverColorCorrectionDisabledConfirmed(true);
    chooseProfile();
    model->inspectICC();
    model->setColorManagementMode(ColorManagementMode::appManaged);
    const PrintPreset first = saved(QStringLiteral("Matte"));
    EXPECT_EQ(first.name, QStringLiteral("Matte"));
    EXPECT_EQ(first.createdAt, services.clock);
    EXPECT_EQ(first.driverQuality,
              (DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("1200dpi")}));
    EXPECT_EQ(first.settings, form().settings);
    EXPECT_EQ(first.mediaName, form().mediaName);
    EXPECT_EQ(first.colorWorkflow.mode, ColorManagementMode::appManaged);
    EXPECT_EQ(first.iccAsset, form().iccAsset);
    EXPECT_EQ(form().selectedPresetID, platform::uuidText(first.id));
    EXPECT_EQ(model->message(),
              QStringLiteral("Paper, size, ICC and quality choices were saved. Presets do not contain "
                             "cutting settings."));
    const PrintPreset second = saved(QStringLiteral("Matte"));
    EXPECT_NE(second.id, first.id);
    EXPECT_EQ(model->presets().size(), 2);
    EXPECT_TRUE(QFile::exists(fileOf(first)));
    EXPECT_TRUE(QFile::exists(fileOf(second)));
}

TEST_F(Presets, AreSavedInChinese) {
    const test::InChinese chinese;
    saved(QStringLiteral("哑光"));
    EXPECT_EQ(model->message(), QStringLiteral("已保存纸张、尺寸、ICC 和质量选择。预设不包含裁切设置。"));
}

TEST_F(Presets, AreUpdatedUnderTheirID) {
    const PrintPreset first = saved(QStringLiteral("Matte"));
    services.clock = {900'000'000.0};
    model->setPresetName(QStringLiteral("Satin"));
    model->savePreset(false);
    ASSERT_EQ(model->presets().size(), 1);
    EXPECT_EQ(model->presets()[0].id, first.id);
    EXPECT_EQ(model->presets()[0].name, QStringLiteral("Satin"));
    EXPECT_EQ(model->presets()[0].createdAt, first.createdAt);
    EXPECT_EQ(form().selectedPresetID, platform::uuidText(first.id));
}

TEST_F(Presets, AreSavedAsNewOnesWithoutASelection) {
    saved(QStringLiteral("Matte"));
    model->choosePreset(QString());
    services.clock = {900'000'000.0};
    model->savePreset(false);
    ASSERT_EQ(model->presets().size(), 2);
    EXPECT_EQ(model->selectedPreset()->createdAt, services.clock);
}

TEST_F(Presets, TakeNoQualityThatTheDriverDoesNotOffer) {
    model->setQualityChoice(QStringLiteral("2400dpi"));
    const QString message = model->message();
    model->savePreset(true);
    EXPECT_EQ(model->errorMessage(),
              QStringLiteral("The current driver does not offer this quality choice. Select another or use the current "
                             "settings."));
    EXPECT_TRUE(model->presets().isEmpty());
    EXPECT_EQ(form().selectedPresetID, QString());
    EXPECT_EQ(model->message(), message);
    const test::InChinese chinese;
    model->savePreset(true);
    EXPECT_EQ(model->errorMessage(), QStringLiteral("当前驱动不提供此质量选项。请另选一项，或使用当前设置。"));
}

TEST_F(Presets, StayAsTheyWereIfOneCannotBeSaved) {
    const PrintPreset first = saved(QStringLiteral("Matte"));
    const PresetForm before = form();
    const QString message = model->message();
    model->setPresetName(QStringLiteral("  "));
    model->savePreset(false);
    EXPECT_EQ(model->errorMessage(), QStringLiteral("Preset names must contain 1–200 characters."));
    EXPECT_EQ(model->presets(), QList{first});
    EXPECT_EQ(form().selectedPresetID, before.selectedPresetID);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Presets, AreNotSavedWithoutAStore) {
    startWithoutPresets();
    const QString message = model->message();
    model->setQualityChoice(QStringLiteral("2400dpi"));
    model->savePreset(true);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Presets, RenameTheDefaultWithThem) {
    saved(QStringLiteral("Matte"));
    model->bindCanvasDefault();
    model->setPresetName(QStringLiteral(" Satin "));
    model->savePreset(false);
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("Satin"));
    saved(QStringLiteral("Gloss"));
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("Satin"));
}

// Choosing

TEST_F(Presets, AreLoadedWhenTheyAreChosen) {
    model->setMediaName(QStringLiteral("Canvas M"));
    model->setQualityChoice(QStringLiteral("600dpi"));
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->choosePreset(QString());
    model->setMediaName(QStringLiteral("typed"));
    model->setQualityChoice(QString());
    model->setDriverColorCorrectionDisabledConfirmed(true);
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_EQ(form(), PresetForm::initial().applying(preset, std::nullopt, std::nullopt));
    EXPECT_FALSE(isConfirmed());
    EXPECT_EQ(model->message(),
              QStringLiteral("Loaded local preset Matte. No parameters were written to the driver or device."));
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    const test::InChinese chinese;
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_EQ(model->message(), QStringLiteral("已载入本地预设 Matte。未向驱动或设备写入任何参数。"));
}

TEST_F(Presets, ResizeTheSelectedArtworkWhenTheyAreChosen) {
    PresetForm narrow = form();
    narrow.settings.widthMM = 35.0 * 25.4;
    SessionBackdoor::set(model->presetForm, narrow);
    const PrintPreset preset = saved(QStringLiteral("Narrow"));
    place({artwork(), artwork()});
    const QUuid first = model->rollLayout().items.first().id;
    model->selectArtwork(first);
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_EQ(model->rollLayout().items.first().widthInches, 30.0);
    EXPECT_EQ(model->rollLayout().items.last().widthInches, 12.0);
    EXPECT_EQ(form().settings.widthMM, 35.0 * 25.4);
    EXPECT_TRUE(model->rollUndoAvailable());
    model->undoRollEdit();
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(model->rollLayout().items.first().widthInches, 12.0);
}

TEST_F(Presets, LoadTheirProfile) {
    chooseProfile();
    model->inspectICC();
    const auto profile = form().icc;
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->clearICC();
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_EQ(form().iccAsset, preset.iccAsset);
    ASSERT_TRUE(form().icc);
    EXPECT_EQ(form().icc->sha256, profile->sha256);
    EXPECT_EQ(form().icc->name, profile->name);
}

TEST_F(Presets, AreNotHalfLoadedWithoutTheirProfile) {
    chooseProfile();
    model->inspectICC();
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->clearICC();
    model->choosePreset(QString());
    model->setMediaName(QStringLiteral("typed"));
    model->setDriverColorCorrectionDisabledConfirmed(true);
    place({artwork()});
    const PresetForm before = form();
    const QString message = model->message();
    const RollLayout layout = model->rollLayout();
    QDir(stored(QStringLiteral("presets/profiles"))).removeRecursively();
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(form(), before);
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->rollLayout(), layout);
}

TEST_F(Presets, AreLeftForChoicesOfOnesOwn) {
    saved(QStringLiteral("Matte"));
    model->setDriverColorCorrectionDisabledConfirmed(true);
    PresetForm expected = form();
    const QString message = model->message();
    expected.selectedPresetID.clear();
    model->choosePreset(QString());
    EXPECT_EQ(form(), expected);
    EXPECT_EQ(model->selectedPreset(), std::nullopt);
    EXPECT_EQ(model->message(), message);
    model->choosePreset(QStringLiteral("unknown"));
    EXPECT_EQ(form().selectedPresetID, QStringLiteral("unknown"));
}

TEST_F(Presets, AreChosenSavedAndDeletedWhileTheSessionIsBusy) {
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->choosePreset(QString());
    SessionBackdoor::set(model->busy, true);
    model->choosePreset(platform::uuidText(preset.id));
    EXPECT_EQ(model->selectedPreset(), preset);
    model->bindCanvasDefault();
    EXPECT_TRUE(QFile::exists(binding()));
    model->savePreset(true);
    EXPECT_EQ(model->presets().size(), 2);
    model->deletePreset();
    EXPECT_EQ(model->presets().size(), 1);
    SessionBackdoor::set(model->busy, false);
}

// Deleting

TEST_F(Presets, AreDeleted) {
    chooseProfile();
    model->inspectICC();
    const PrintPreset kept = saved(QStringLiteral("Kept"));
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->deletePreset();
    EXPECT_EQ(model->presets(), QList{kept});
    EXPECT_EQ(form().selectedPresetID, QString());
    EXPECT_EQ(form().presetName, QStringLiteral("Matte"));
    EXPECT_FALSE(QFile::exists(fileOf(preset)));
    EXPECT_EQ(QDir(stored(QStringLiteral("presets/profiles"))).entryList(QDir::Files).size(), 1);
    EXPECT_EQ(model->message(), QStringLiteral("The local preset was deleted."));
}

TEST_F(Presets, AreDeletedInChinese) {
    const test::InChinese chinese;
    saved(QStringLiteral("哑光"));
    model->deletePreset();
    EXPECT_EQ(model->message(), QStringLiteral("已删除本地预设。"));
}

TEST_F(Presets, AreNotDeletedWithoutASelection) {
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->choosePreset(QString());
    const QString message = model->message();
    model->deletePreset();
    EXPECT_EQ(model->presets(), QList{preset});
    EXPECT_EQ(model->message(), message);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Presets, TakeTheirBindingWithThem) {
    saved(QStringLiteral("Matte"));
    model->bindCanvasDefault();
    model->deletePreset();
    EXPECT_FALSE(QFile::exists(binding()));
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    EXPECT_EQ(SessionBackdoor(*model).canvasPreference(), std::nullopt);
    start();
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Presets, LeaveTheBindingOfAnother) {
    const PrintPreset bound = saved(QStringLiteral("Matte"));
    model->bindCanvasDefault();
    saved(QStringLiteral("Satin"));
    model->deletePreset();
    EXPECT_TRUE(QFile::exists(binding()));
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("Matte"));
    EXPECT_EQ(SessionBackdoor(*model).canvasPreference()->presetID, bound.id);
}

TEST_F(Presets, StayInTheListIfTheyCannotBeDeleted) {
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    const QString message = model->message();
    const QByteArray broken = "{";
    QFile file(stored(QStringLiteral("presets/broken.json")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(broken);
    file.close();
    model->deletePreset();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(model->presets(), QList{preset});
    EXPECT_EQ(form().selectedPresetID, platform::uuidText(preset.id));
    EXPECT_EQ(model->message(), message);
    EXPECT_TRUE(QFile::exists(fileOf(preset)));
}

// The preset that loads by itself

TEST_F(Presets, AreBoundToThePrinter) {
    const PrintPreset preset = saved(QStringLiteral("Matte"));
    model->bindCanvasDefault();
    EXPECT_EQ(test::TemporaryFolder::read(binding()),
              "{\"presetID\":\"" + platform::uuidText(preset.id).toUtf8() + "\",\"printerName\":\"W9400\"}");
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("Matte"));
    EXPECT_EQ(SessionBackdoor(*model).canvasPreference(),
              (CanvasPreference{.printerName = queue, .presetID = preset.id}));
    EXPECT_EQ(model->message(),
              QStringLiteral("This canvas preset will load automatically next time. Existing settings "
                             "still control panel media and cutting."));
    const test::InChinese chinese;
    model->bindCanvasDefault();
    EXPECT_EQ(model->message(), QStringLiteral("下次将自动载入此画布预设。面板介质和裁切仍由现有设置控制。"));
}

TEST_F(Presets, CanBeSavedWithAStoreAndNothingElseGoingOn) {
    EXPECT_TRUE(model->canSavePreset());
    SessionBackdoor::set(model->busy, true);
    EXPECT_FALSE(model->canSavePreset());
    SessionBackdoor::set(model->busy, false);
    startWithoutPresets();
    EXPECT_FALSE(model->canSavePreset());
}

TEST_F(Presets, CanBeChangedIfOneIsSelected) {
    EXPECT_FALSE(model->canChangePreset());
    saved(QStringLiteral("Mine"));
    EXPECT_TRUE(model->canChangePreset());
    SessionBackdoor::set(model->busy, true);
    EXPECT_FALSE(model->canChangePreset());
    SessionBackdoor::set(model->busy, false);
    SessionBackdoor::set(model->presetsAvailable, false);
    EXPECT_FALSE(model->canChangePreset());
}

TEST_F(Presets, CanBeBoundWithASelectedPresetAndPrinter) {
    EXPECT_FALSE(model->canBindCanvasDefault());
    saved(QStringLiteral("Mine"));
    EXPECT_TRUE(model->canBindCanvasDefault());
    SessionBackdoor::set(model->printerReadings, PrinterReadings());
    EXPECT_FALSE(model->canBindCanvasDefault());
}

TEST_F(Presets, AreNotBoundWithoutAPresetOrAPrinter) {
    const auto expectRefused = [this] {
        model->dismissError();
        model->bindCanvasDefault();
        EXPECT_EQ(model->errorMessage(), QStringLiteral("Save a local preset and select a printer first."));
        EXPECT_FALSE(QFile::exists(binding()));
    };
    expectRefused();
    model->dismissError();
    saved(QStringLiteral("Matte"));
    SessionBackdoor::set(model->printerReadings, PrinterReadings());
    expectRefused();
    const test::InChinese chinese;
    model->bindCanvasDefault();
    EXPECT_EQ(model->errorMessage(), QStringLiteral("请先保存本地预设并选择打印机。"));
}

TEST_F(Presets, AreNotBoundIfTheBindingCannotBeWritten) {
    saved(QStringLiteral("Matte"));
    QDir().mkpath(binding());
    const QString message = model->message();
    model->bindCanvasDefault();
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(model->canvasDefaultName(), std::nullopt);
    EXPECT_EQ(SessionBackdoor(*model).canvasPreference(), std::nullopt);
    EXPECT_EQ(model->message(), message);
}

} // namespace
} // namespace orvex
