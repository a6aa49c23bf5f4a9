#include "Workspace/RollHelpLines.h"

#include "InChinese.h"
#include "PanelFixture.h"
#include "Theme/OrvexTheme.h"

namespace orvex {
namespace {

class RollHelpLinesTest : public test::CanvasPanelTest<RollHelpLines> {};

TEST_F(RollHelpLinesTest, ExplainMouseAndKeyboard) {
    openWith(1);
    EXPECT_TRUE(shows("Drag the border frame to move an artwork; drag its lower-right corner to scale proportionally "
                      "in any direction. Moving does not extend the roll. Enlarging extends it only as needed, leaving "
                      "a 2.5-inch bottom border. Outer trim dashes are included in the PDF."));
    EXPECT_TRUE(shows("Select an artwork, then use arrow keys to move it 0.01 in, or Shift + arrow keys for 0.1 in. "
                      "Hold to move continuously; release to create one undo step. Quarter-inch snapping does not "
                      "affect keyboard moves."));
}

TEST_F(RollHelpLinesTest, ExplainThemInChinese) {
    const test::InChinese chinese;
    openWith(1);
    EXPECT_TRUE(shows("拖动白边外框可移动作品，拖动右下角可朝任意方向等比例缩放。移动不会加长卷布；放大只按需要加长，"
                      "并保留底部 2.5 英寸白边。外沿的裁剪虚线包含在 PDF 中。"));
    EXPECT_TRUE(shows("选中作品后，用方向键每次移动 0.01 英寸，用 Shift + 方向键每次移动 0.1 英寸。按住可连续移动，"
                      "松开后记为一个可撤销的步骤。0.25 英寸吸附不影响键盘移动。"));
}

TEST_F(RollHelpLinesTest, TellWhatKeepsTheRollFromBeingExported) {
    openWith(0);
    EXPECT_TRUE(shows("Add artwork to the roll canvas first."));
    EXPECT_EQ(find("rollExportIssue").palette().color(QPalette::WindowText), OrvexTheme::danger);
    import({picture(QStringLiteral("a.png"), 120, 80)});
    announced();
    EXPECT_FALSE(isShown("rollExportIssue"));
}

} // namespace
} // namespace orvex
