#include "Workspace/RollSummaryView.h"

#include "InChinese.h"
#include "PanelFixture.h"

namespace orvex {
namespace {

class RollSummaryViewTest : public test::CanvasPanelTest<RollSummaryView> {};

TEST_F(RollSummaryViewTest, TellsTheRulesOfTheRoll) {
    openWith(1);
    EXPECT_TRUE(shows("Roll Layout"));
    EXPECT_EQ(textOf("rollSummarySize"),
              QStringLiteral("Roll width: 60 in · Length adjusts to the layout\nArtwork borders: 2.5 in on every side\n"
                             "Trim dashes: printed at the outer border edge"));
    EXPECT_TRUE(shows("Auto Pack uses no gap between frames and prioritizes filling empty space. Each artwork keeps "
                      "its own border."));
    EXPECT_TRUE(shows("The custom gap goes between trim frames. Auto Pack always uses zero gap and keeps artwork "
                      "sizes."));
    EXPECT_TRUE(shows("Layout files save artwork sizes, positions, and original-file references. Media and ICC choices "
                      "use print presets."));
    EXPECT_TRUE(shows("Trim dashes at the roll edge may fall within the driver’s unprintable area. For a complete edge "
                      "line, reduce the artwork size and move it inward."));
}

TEST_F(RollSummaryViewTest, TellsThemInChinese) {
    const test::InChinese chinese;
    openWith(1);
    EXPECT_TRUE(shows("卷布排版"));
    EXPECT_EQ(textOf("rollSummarySize"),
              QStringLiteral("卷布宽度：60 英寸 · 长度随排版变化\n作品白边：四边各 2.5 英寸\n裁剪虚线：印在白边外沿"));
    EXPECT_TRUE(shows("自定义手裁框间距"));
    EXPECT_EQ(textOf("arrangeWithGapButton"), QStringLiteral("按自定义间距排列"));
}

TEST_F(RollSummaryViewTest, ArrangesWithTheGapThatIsTyped) {
    openWith(2);
    EXPECT_TRUE(shows("Custom frame gap"));
    EXPECT_EQ(textOf("rollGapField"), QStringLiteral("0"));
    enter("rollGapField", QStringLiteral("1.5"));
    EXPECT_EQ(model->arrangementGap(), 1.5);
    EXPECT_EQ(textOf("rollGapField"), QStringLiteral("1.5"));
    EXPECT_EQ(textOf("arrangeWithGapButton"), QStringLiteral("Arrange with Custom Gap"));
    click("arrangeWithGapButton");
    EXPECT_EQ(item(1).xInches, 18.5);
    EXPECT_EQ(model->arrangementGap(), 1.5);
}

TEST_F(RollSummaryViewTest, LocksTheGapWhileTheSessionIsBusy) {
    openWith(1);
    EXPECT_TRUE(isEnabled("rollGapField"));
    EXPECT_TRUE(isEnabled("arrangeWithGapButton"));
    put(model->busy, true);
    EXPECT_FALSE(isEnabled("rollGapField"));
    EXPECT_FALSE(isEnabled("arrangeWithGapButton"));
    put(model->busy, false);
}

TEST_F(RollSummaryViewTest, HasNothingToArrangeOnAnEmptyRoll) {
    openWith(0);
    EXPECT_TRUE(isEnabled("rollGapField"));
    EXPECT_FALSE(isEnabled("arrangeWithGapButton"));
}

TEST_F(RollSummaryViewTest, TellsWhatBecameOfTheAutosave) {
    openWith(1);
    EXPECT_EQ(textOf("rollSaveMessage"), QStringLiteral("Layouts save automatically"));
    put(model->rollSaveMessage, QStringLiteral("The disk is full."));
    EXPECT_TRUE(shows("The disk is full."));
    put(model->rollSaveMessage, QString());
    EXPECT_FALSE(isShown("rollSaveMessage"));
}

TEST_F(RollSummaryViewTest, ShowsEachWarningOfASource) {
    openWith(2);
    EXPECT_FALSE(isShown("rollLoadWarnings"));
    put(model->rollLoadWarnings, QHash<QUuid, QString>{{idOf(1), QStringLiteral("<b>b</b> is gone")},
                                                       {idOf(0), QStringLiteral("a has changed")}});
    EXPECT_TRUE(isShown("rollLoadWarnings"));
    EXPECT_EQ(textOf("rollLoadWarnings"), QStringLiteral("a has changed\n<b>b</b> is gone"));
    EXPECT_EQ(find<QLabel>("rollLoadWarnings").textFormat(), Qt::PlainText);
}

TEST_F(RollSummaryViewTest, ShowsTheAdvisoryIfThereIsOne) {
    openWith(1);
    EXPECT_FALSE(isShown("rollAdvisory"));
    RollArtwork far = item(0);
    far.yInches = 2000.0;
    put(model->rollLayout, RollLayout({far}));
    ASSERT_TRUE(model->rollAdvisory());
    EXPECT_TRUE(isShown("rollAdvisory"));
    EXPECT_EQ(textOf("rollAdvisory"), *model->rollAdvisory());
}

} // namespace
} // namespace orvex
