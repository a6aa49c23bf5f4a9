#include "OutputOptions/ColorControls.h"

#include "InChinese.h"
#include "OutputPanelFixture.h"
#include "Theme/OrvexTheme.h"

namespace orvex {
namespace {

class ColorControlsTest : public test::OutputPanelTest<ColorControls> {
protected:
    const QString driver = QStringLiteral("Let the Canon driver manage color");
    const QString program = QStringLiteral("Convert in the app to the selected ICC");

    [[nodiscard]] bool isConfirmed() const { return form().colorWorkflow.driverColorCorrectionDisabledConfirmed; }

    /// Answers the next dialog with an output profile.
    void offerProfile() {
        services.chosenFiles = {
            {QUrl::fromLocalFile(folder.write(QStringLiteral("press.icc"), bytes(samples::pressProfile())))}};
    }

    static QByteArray bytes(const samples::Bytes& data) {
        return {reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size())}; // NOLINT
    }
};

TEST_F(ColorControlsTest, LeaveTheColoursToTheDriverAtFirst) {
    EXPECT_TRUE(shows("ICC colour management"));
    EXPECT_EQ(entriesOf("colorModeBox"), (QStringList{driver, program}));
    EXPECT_EQ(find<QComboBox>("colorModeBox").currentText(), driver);
    EXPECT_EQ(find("colorModeBox").accessibleName(), QStringLiteral("ICC colour management"));
    EXPECT_EQ(textOf("colorModeExplanation"),
              QStringLiteral("Preserve the source colour space and let the Canon workflow manage colour. The selected "
                             "ICC is recorded with the preset and is not used to convert this PDF."));
    for (const char* hidden : {"renderingIntentBox", "importProfileButton", "clearProfileButton", "outputProfileName",
                               "correctionOffToggle", "colorPreflight"}) {
        EXPECT_FALSE(isShown(hidden)) << hidden;
    }
}

TEST_F(ColorControlsTest, ConvertIfThatIsChosen) {
    choose("colorModeBox", program);
    EXPECT_EQ(form().colorWorkflow.mode, ColorManagementMode::appManaged);
    EXPECT_TRUE(textOf("colorModeExplanation").startsWith(QStringLiteral("ColorSync converts")));
    EXPECT_TRUE(shows("Rendering intent"));
    EXPECT_EQ(textOf("importProfileButton"), QStringLiteral("Import output ICC…"));
    EXPECT_TRUE(isShown("clearProfileButton"));
    EXPECT_EQ(find("correctionOffToggle").accessibleName(),
              QStringLiteral("I confirmed that Canon colour correction is off"));
    EXPECT_TRUE(shows("I confirmed that Canon colour correction is off"));
    EXPECT_TRUE(shows("This is a manual record for this session, not a verification or change to Canon settings. Check "
                      "again after changing artwork or presets."));
    EXPECT_TRUE(shows("Choose an ICC that matches the printer, canvas and quality."));
    EXPECT_EQ(find("colorPreflight").palette().color(QPalette::WindowText), OrvexTheme::danger);
}

TEST_F(ColorControlsTest, SpeakChinese) {
    const test::InChinese chinese;
    model->setColorManagementMode(ColorManagementMode::appManaged);
    open();
    for (const char* text : {"ICC 颜色管理", "渲染意图", "我已确认佳能颜色校正已关闭",
                             "这只是本次运行中的人工记录，不代表已核实或更改佳能设置。更换作品或预设后请重新检查。"}) {
        EXPECT_TRUE(shows(text)) << text;
    }
    EXPECT_EQ(textOf("importProfileButton"), QStringLiteral("导入输出 ICC…"));
}

TEST_F(ColorControlsTest, TakeTheIntent) {
    choose("colorModeBox", program);
    EXPECT_EQ(find<QComboBox>("renderingIntentBox").currentText(), QStringLiteral("Relative colorimetric"));
    choose("renderingIntentBox", QStringLiteral("Perceptual"));
    EXPECT_EQ(form().colorWorkflow.intent, ColorRenderingIntent::perceptual);
}

TEST_F(ColorControlsTest, ImportAndClearTheProfile) {
    choose("colorModeBox", program);
    EXPECT_FALSE(isShown("outputProfileName"));
    offerProfile();
    click("importProfileButton");
    ASSERT_TRUE(form().icc);
    EXPECT_TRUE(isShown("outputProfileName"));
    EXPECT_EQ(textOf("outputProfileName"), form().icc->name);
    click("clearProfileButton");
    EXPECT_FALSE(form().icc);
    EXPECT_FALSE(isShown("outputProfileName"));
}

TEST_F(ColorControlsTest, ImportNoProfileWithoutAStore) {
    choose("colorModeBox", program);
    EXPECT_TRUE(isEnabled("importProfileButton"));
    put(model->presetsAvailable, false);
    EXPECT_FALSE(isEnabled("importProfileButton"));
}

TEST_F(ColorControlsTest, TakeTheConfirmationUntilTheModeChanges) {
    choose("colorModeBox", program);
    click("correctionOffToggle");
    EXPECT_TRUE(isConfirmed());
    EXPECT_TRUE(find<QCheckBox>("correctionOffToggle").isChecked());
    choose("colorModeBox", driver);
    choose("colorModeBox", program);
    EXPECT_FALSE(isConfirmed());
    EXPECT_FALSE(find<QCheckBox>("correctionOffToggle").isChecked());
}

TEST_F(ColorControlsTest, ShowTheWholeConfirmationInANarrowColumn) {
    choose("colorModeBox", program);
    panel->setFixedWidth(300);
    panel->resize(300, panel->layout()->totalHeightForWidth(300));
    const QWidget& toggle = find("correctionOffToggle");
    EXPECT_GE(toggle.height(), toggle.heightForWidth(toggle.width()));
    EXPECT_GT(toggle.height(), 2 * toggle.fontMetrics().height() - 2);
}

} // namespace
} // namespace orvex
