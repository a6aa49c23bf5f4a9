#include "OutputOptions/PresetControls.h"

#include "InChinese.h"
#include "OutputPanelFixture.h"

namespace orvex {
namespace {

class PresetControlsTest : public test::OutputPanelTest<PresetControls> {};

TEST_F(PresetControlsTest, NameTheirParts) {
    EXPECT_TRUE(shows("Print presets"));
    EXPECT_TRUE(shows("Preset name"));
    EXPECT_EQ(textOf("savePresetButton"), QStringLiteral("Save new preset"));
    EXPECT_EQ(textOf("updatePresetButton"), QStringLiteral("Update"));
    EXPECT_EQ(textOf("deletePresetButton"), QStringLiteral("Delete"));
    EXPECT_EQ(textOf("makeDefaultButton"), QStringLiteral("Use as this printer’s default canvas preset"));
    EXPECT_TRUE(shows("Save a preset, then make it the default to load automatically on reopening."));
    EXPECT_TRUE(shows("Loading a preset applies its dimensions to the selected artwork. Roll width is controlled "
                      "separately. Saving a layout keeps its roll width, artwork sizes and positions."));
    EXPECT_FALSE(isShown("presetsUnavailable"));
}

TEST_F(PresetControlsTest, NameThemInChinese) {
    const test::InChinese chinese;
    open();
    EXPECT_TRUE(shows("打印预设"));
    EXPECT_TRUE(shows("预设名称"));
    EXPECT_EQ(textOf("savePresetButton"), QStringLiteral("保存为新预设"));
    EXPECT_EQ(textOf("makeDefaultButton"), QStringLiteral("设为此打印机的默认画布预设"));
    EXPECT_TRUE(
        shows("载入预设会将其尺寸应用到所选作品。卷布宽度单独控制。保存排版时会保留卷布宽度、作品尺寸和位置。"));
}

TEST_F(PresetControlsTest, SaveUpdateAndDelete) {
    type("presetNameField", QStringLiteral("Satin"));
    click("savePresetButton");
    ASSERT_EQ(model->presets().size(), 1);
    EXPECT_EQ(find<QComboBox>("presetBox").currentText(), QStringLiteral("Satin"));
    type("presetNameField", QStringLiteral("Matte"));
    click("updatePresetButton");
    ASSERT_EQ(model->presets().size(), 1);
    EXPECT_EQ(model->presets()[0].name, QStringLiteral("Matte"));
    EXPECT_EQ(entriesOf("presetBox"), (QStringList{QStringLiteral("Custom settings"), QStringLiteral("Matte")}));
    click("deletePresetButton");
    EXPECT_TRUE(model->presets().isEmpty());
    EXPECT_EQ(find<QComboBox>("presetBox").currentText(), QStringLiteral("Custom settings"));
}

TEST_F(PresetControlsTest, LoadThePresetThatIsChosen) {
    model->setMediaName(QStringLiteral("Linen"));
    save(QStringLiteral("Satin"));
    model->setMediaName(QStringLiteral("Cotton"));
    choose("presetBox", QStringLiteral("Custom settings"));
    EXPECT_EQ(form().selectedPresetID, QString());
    EXPECT_EQ(form().mediaName, QStringLiteral("Cotton"));
    choose("presetBox", QStringLiteral("Satin"));
    EXPECT_EQ(form().mediaName, QStringLiteral("Linen"));
    EXPECT_EQ(textOf("presetNameField"), QStringLiteral("Satin"));
}

TEST_F(PresetControlsTest, ChangeOnlyASelectedPreset) {
    EXPECT_TRUE(isEnabled("savePresetButton"));
    EXPECT_FALSE(isEnabled("updatePresetButton"));
    EXPECT_FALSE(isEnabled("deletePresetButton"));
    EXPECT_FALSE(isEnabled("makeDefaultButton"));
    save(QStringLiteral("Satin"));
    EXPECT_TRUE(isEnabled("updatePresetButton"));
    EXPECT_TRUE(isEnabled("deletePresetButton"));
    EXPECT_TRUE(isEnabled("makeDefaultButton"));
}

TEST_F(PresetControlsTest, SaveNothingWhileTheSessionIsBusy) {
    save(QStringLiteral("Satin"));
    put(model->busy, true);
    for (const char* button : {"savePresetButton", "updatePresetButton", "deletePresetButton"}) {
        EXPECT_FALSE(isEnabled(button)) << button;
    }
    EXPECT_TRUE(isEnabled("makeDefaultButton"));
    put(model->busy, false);
}

TEST_F(PresetControlsTest, MakeAPresetThePrintersDefault) {
    save(QStringLiteral("Satin"));
    click("makeDefaultButton");
    EXPECT_EQ(model->canvasDefaultName(), QStringLiteral("Satin"));
    EXPECT_EQ(textOf("canvasDefaultLine"), QStringLiteral("Satin"));
    put(model->printerReadings, PrinterReadings());
    EXPECT_FALSE(isEnabled("makeDefaultButton"));
}

TEST_F(PresetControlsTest, SayThatThereIsNoStore) {
    save(QStringLiteral("Satin"));
    put(model->presetsAvailable, false);
    EXPECT_TRUE(shows("Preset storage is unavailable; existing files are preserved."));
    for (const char* button : {"savePresetButton", "updatePresetButton", "deletePresetButton"}) {
        EXPECT_FALSE(isEnabled(button)) << button;
    }
    const test::InChinese chinese;
    open();
    EXPECT_TRUE(shows("预设存储不可用；现有文件已保留。"));
}

} // namespace
} // namespace orvex
