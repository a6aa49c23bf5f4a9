#include "OutputOptions/OutputControls.h"

#include "OutputPanelFixture.h"

namespace orvex {
namespace {

class OutputControlsTest : public test::OutputPanelTest<OutputControls> {};

TEST_F(OutputControlsTest, FollowEachOtherInReadingOrder) {
    const QStringList expected{QStringLiteral("mediaNameField"),     QStringLiteral("mediaNoteField"),
                               QStringLiteral("qualityBox"),         QStringLiteral("colorModeBox"),
                               QStringLiteral("renderingIntentBox"), QStringLiteral("importProfileButton"),
                               QStringLiteral("clearProfileButton"), QStringLiteral("correctionOffToggle"),
                               QStringLiteral("presetBox"),          QStringLiteral("presetNameField"),
                               QStringLiteral("savePresetButton"),   QStringLiteral("updatePresetButton"),
                               QStringLiteral("deletePresetButton"), QStringLiteral("makeDefaultButton"),
                               QStringLiteral("stageRollButton"),    QStringLiteral("printRollButton")};
    model->setColorManagementMode(ColorManagementMode::appManaged);
    announced();
    EXPECT_EQ(tabOrder(), expected);
}

TEST_F(OutputControlsTest, FitAColumnHoweverLongTheNames) {
    const int before = panel->minimumSizeHint().width();
    model->setPresetName(QString(150, u'W'));
    model->savePreset(true);
    model->bindCanvasDefault();
    model->setColorManagementMode(ColorManagementMode::appManaged);
    model->setQualityChoice(QString(150, u'Q'));
    model->setMediaName(QString(150, u'M'));
    announced();
    ASSERT_EQ(model->canvasDefaultName(), QString(150, u'W'));
    EXPECT_EQ(panel->minimumSizeHint().width(), before);
    EXPECT_LE(before, 326);
}

} // namespace
} // namespace orvex
