#include "Shell/SafetyBanner.h"

#include "PanelTest.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;

class SafetyBannerTest : public test::PanelTest<SafetyBanner> {};

TEST_F(SafetyBannerTest, PromisesToLeaveTheSettingsAlone) {
    open();
    EXPECT_THAT(shownTexts(),
                ElementsAre("Manual Cutting · Preserve current panel settings",
                            "Cutting is disabled on your printer. The app sends no cutter parameters and does not "
                            "change Canon defaults. Before printing, confirm that this job uses Printer Default or has "
                            "cutting disabled in the Canon window."));
    EXPECT_EQ(buttonText("panelSettingsButton"), "Panel settings preserved");
}

TEST_F(SafetyBannerTest, SpeaksChinese) {
    openInChinese();
    EXPECT_THAT(shownTexts(),
                ElementsAre("手动裁切（Manual Cutting）· 沿用现有面板设置",
                            "打印机上的裁切已停用。本应用不发送任何刀具参数，也不更改佳能默认设置。打印前，"
                            "请在佳能窗口中确认本作业使用 Printer Default（打印机默认），或已停用裁切。"));
    EXPECT_EQ(buttonText("panelSettingsButton"), "已沿用面板设置");
}

TEST_F(SafetyBannerTest, LeadsToTheDiagnostics) {
    open();
    click("panelSettingsButton");
    EXPECT_EQ(model->tab(), 2);
    click("panelSettingsButton");
    EXPECT_EQ(model->tab(), 2);
}

TEST_F(SafetyBannerTest, EndsAMovementByKeysOnTheWayThere) {
    start();
    place({artwork()});
    open();
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    EXPECT_FALSE(model->rollUndoAvailable());
    click("panelSettingsButton");
    EXPECT_TRUE(model->rollUndoAvailable());
}

} // namespace
} // namespace orvex
