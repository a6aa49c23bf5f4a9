#include "OutputChoices.h"

#include "InChinese.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

const QStringList offered{QStringLiteral("600dpi"), QStringLiteral("1200dpi")};

TEST(QualityChoices, BeginWithTheDriversOwnSetting) {
    const QList<LabelledValue> expected{{QStringLiteral("Use current Canon settings"), {}},
                                        {QStringLiteral("600dpi"), QStringLiteral("600dpi")},
                                        {QStringLiteral("1200dpi"), QStringLiteral("1200dpi")}};
    EXPECT_EQ(OutputChoices::qualities(offered, QString()), expected);
    EXPECT_EQ(OutputChoices::qualities(offered, QStringLiteral("1200dpi")), expected);
}

TEST(QualityChoices, KeepOneThatTheDriverDoesNotOffer) {
    const QList<LabelledValue> expected{{QStringLiteral("Use current Canon settings"), {}},
                                        {QStringLiteral("2400dpi · Currently unavailable"), QStringLiteral("2400dpi")}};
    EXPECT_EQ(OutputChoices::qualities({}, QStringLiteral("2400dpi")), expected);
    const test::InChinese chinese;
    const QList<LabelledValue> inChinese{{QStringLiteral("沿用佳能当前设置"), {}},
                                         {QStringLiteral("2400dpi · 当前不可用"), QStringLiteral("2400dpi")}};
    EXPECT_EQ(OutputChoices::qualities({}, QStringLiteral("2400dpi")), inChinese);
}

TEST(ColorChoices, AreAllModesAndIntentsByTheirRawValues) {
    const QList<LabelledValue> modes{
        {QStringLiteral("Let the Canon driver manage color"), QStringLiteral("driverManaged")},
        {QStringLiteral("Convert in the app to the selected ICC"), QStringLiteral("appManaged")}};
    EXPECT_EQ(OutputChoices::colorManagementModes(), modes);
    const QList<LabelledValue> intents{
        {QStringLiteral("Perceptual"), QStringLiteral("perceptual")},
        {QStringLiteral("Relative colorimetric"), QStringLiteral("relativeColorimetric")},
        {QStringLiteral("Saturation"), QStringLiteral("saturation")},
        {QStringLiteral("Absolute colorimetric"), QStringLiteral("absoluteColorimetric")}};
    EXPECT_EQ(OutputChoices::renderingIntents(), intents);
}

TEST(ColorChoices, AreExplainedByMode) {
    EXPECT_EQ(OutputChoices::explanation(ColorManagementMode::driverManaged),
              QStringLiteral("Preserve the source colour space and let the Canon workflow manage colour. The selected "
                             "ICC is recorded with the preset and is not used to convert this PDF."));
    EXPECT_EQ(OutputChoices::explanation(ColorManagementMode::appManaged),
              QStringLiteral("ColorSync converts original-resolution pixels and embeds the output profile. The preview "
                             "is not soft-proofed. The ICC must match the iPF9400, canvas and quality; an HP printer "
                             "ICC is not a substitute."));
    const test::InChinese chinese;
    EXPECT_EQ(OutputChoices::explanation(ColorManagementMode::driverManaged),
              QStringLiteral("保留源色彩空间，由佳能流程管理颜色。所选 ICC 只随预设记录，不用于转换此 PDF。"));
}

TEST(PresetChoices, BeginWithSettingsOfNone) {
    const QUuid id(QStringLiteral("{0f0e0d0c-0b0a-4908-8706-050403020100}"));
    const QList<PrintPreset> presets{{.id = id, .name = QStringLiteral("Satin"), .createdAt = {}, .updatedAt = {}}};
    const QList<LabelledValue> expected{
        {QStringLiteral("Custom settings"), {}},
        {QStringLiteral("Satin"), QStringLiteral("0F0E0D0C-0B0A-4908-8706-050403020100")}};
    EXPECT_EQ(OutputChoices::presets(presets), expected);
    const test::InChinese chinese;
    EXPECT_EQ(OutputChoices::presets({}).first().text, QStringLiteral("自定义设置"));
}

TEST(CanvasDefault, IsThePresetsNameOrHowToChooseOne) {
    EXPECT_EQ(OutputChoices::canvasDefault(QStringLiteral("Satin")), QStringLiteral("Satin"));
    EXPECT_EQ(OutputChoices::canvasDefault(std::nullopt),
              QStringLiteral("Save a preset, then make it the default to load automatically on reopening."));
    const test::InChinese chinese;
    EXPECT_EQ(OutputChoices::canvasDefault(std::nullopt),
              QStringLiteral("保存预设并将其设为默认后，重新打开时会自动载入。"));
}

} // namespace
} // namespace orvex
