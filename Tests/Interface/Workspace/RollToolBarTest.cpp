#include "Workspace/RollToolBar.h"

#include "InChinese.h"
#include "PanelFixture.h"

#include <QAction>
#include <QPushButton>

namespace orvex {
namespace {

class RollToolBarTest : public test::CanvasPanelTest<RollToolBar> {
protected:
    /// Whether the control is disabled while the session is busy, and enabled again after it.
    void expectLockedByWork(const char* name) {
        EXPECT_TRUE(isEnabled(name)) << name;
        put(model->busy, true);
        EXPECT_FALSE(isEnabled(name)) << name;
        put(model->busy, false);
        EXPECT_TRUE(isEnabled(name)) << name;
    }
};

TEST_F(RollToolBarTest, TellsTheSizeOfTheCanvasAndTheCountOfArtworks) {
    openWith(0);
    EXPECT_EQ(textOf("rollTitleLine"), QStringLiteral("60 in wide × 0 in long"));
    EXPECT_EQ(textOf("rollArtworkCount"), QStringLiteral("0 artworks"));
    place({artwork(12.0, 8.25)});
    announced();
    EXPECT_EQ(textOf("rollTitleLine"), QStringLiteral("60 in wide × 13.25 in long"));
    EXPECT_EQ(textOf("rollArtworkCount"), QStringLiteral("1 artworks"));
    const test::InChinese chinese;
    panel->syncFromSession();
    EXPECT_EQ(textOf("rollTitleLine"), QStringLiteral("宽 60 英寸 × 长 13.25 英寸"));
    EXPECT_EQ(textOf("rollArtworkCount"), QStringLiteral("1 幅作品"));
}

TEST_F(RollToolBarTest, NamesItsControls) {
    openWith(1);
    EXPECT_TRUE(shows("Canvas width"));
    EXPECT_TRUE(shows("After changing roll width, press Return or leave the field to rearrange automatically. Artwork "
                      "sizes and 2.5-inch borders are preserved."));
    EXPECT_EQ(textOf("batchSizesButton"), QStringLiteral("Batch Sizes && Optimization…"));
    EXPECT_EQ(find("batchSizesButton").accessibleName(), QStringLiteral("Batch Sizes & Optimization…"));
    EXPECT_EQ(textOf("rotateButton"), QStringLiteral("Rotate 90°"));
    EXPECT_EQ(find("rotateButton").toolTip(),
              QStringLiteral("Rotate the selected artwork clockwise, keeping proportions and physical scale while "
                             "swapping width and height"));
    EXPECT_EQ(textOf("autoPackButton"), QStringLiteral("Auto Pack"));
    EXPECT_EQ(textOf("layoutFileButton"), QStringLiteral("Layout File"));
    EXPECT_EQ(textOf("fitWidthButton"), QStringLiteral("Fit Width"));
    EXPECT_EQ(textOf("snapToggle"), QStringLiteral("Snap to 0.25 in"));
}

TEST_F(RollToolBarTest, NamesItsControlsInChinese) {
    const test::InChinese chinese;
    openWith(1);
    EXPECT_TRUE(shows("画布宽度"));
    EXPECT_TRUE(shows("修改卷布宽度后，按回车键或离开输入框即自动重新排版。作品尺寸和 2.5 英寸白边保持不变。"));
    EXPECT_EQ(textOf("batchSizesButton"), QStringLiteral("批量尺寸与省布排版…"));
    EXPECT_EQ(find("undoLayoutButton").accessibleName(), QStringLiteral("撤销排版"));
    EXPECT_EQ(textOf("snapToggle"), QStringLiteral("吸附到 0.25 英寸"));
}

TEST_F(RollToolBarTest, NamesTheButtonsThatShowAPictureOnly) {
    openWith(1);
    const QMap<const char*, QString> names{{"undoLayoutButton", QStringLiteral("Undo Layout")},
                                           {"redoLayoutButton", QStringLiteral("Redo Layout")},
                                           {"zoomOutButton", QStringLiteral("Zoom out canvas")},
                                           {"zoomInButton", QStringLiteral("Zoom in canvas")}};
    for (auto each = names.cbegin(); each != names.cend(); ++each) {
        EXPECT_EQ(find(each.key()).accessibleName(), each.value());
        EXPECT_EQ(find(each.key()).toolTip(), each.value());
        EXPECT_FALSE(find<QPushButton>(each.key()).icon().isNull());
    }
}

TEST_F(RollToolBarTest, RearrangesForTheWidthThatIsTyped) {
    openWith(2);
    EXPECT_EQ(textOf("rollWidthField"), QStringLiteral("60"));
    enter("rollWidthField", QStringLiteral("44.5"));
    settle();
    announced();
    EXPECT_EQ(model->rollLayout().widthInches, 44.5);
    EXPECT_EQ(textOf("rollWidthField"), QStringLiteral("44.5"));
    EXPECT_EQ(textOf("rollTitleLine"), QStringLiteral("44.5 in wide × 13 in long"));
}

TEST_F(RollToolBarTest, LocksTheWidthDuringWorkAndMovements) {
    openWith(1);
    expectLockedByWork("rollWidthField");
    put(model->arrangingGesture, true);
    EXPECT_FALSE(isEnabled("rollWidthField"));
}

TEST_F(RollToolBarTest, OpensTheBatchPanel) {
    openWith(0);
    EXPECT_FALSE(isEnabled("batchSizesButton"));
    openWith(1);
    expectLockedByWork("batchSizesButton");
    click("batchSizesButton");
    EXPECT_TRUE(model->batchSizingPresented());
}

TEST_F(RollToolBarTest, ClosesAKeyboardRunBeforeTheBatchPanelOpens) {
    openWith(1);
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectOneStepOfRun([this] { click("batchSizesButton"); });
}

TEST_F(RollToolBarTest, RotatesTheSelectedArtwork) {
    openWith(1);
    expectLockedByWork("rotateButton");
    expectOneStep([this] { click("rotateButton"); });
    EXPECT_EQ(item(0).rotationQuarterTurns, 1);
    put(model->selectedArtworkID, std::optional<QUuid>());
    EXPECT_FALSE(isEnabled("rotateButton"));
}

TEST_F(RollToolBarTest, PacksWithoutAGap) {
    openWith(0);
    EXPECT_FALSE(isEnabled("autoPackButton"));
    openWith(2);
    expectLockedByWork("autoPackButton");
    model->moveArtwork(idOf(1), 40.0, std::nullopt);
    model->setRollGap(3.0);
    click("autoPackButton");
    EXPECT_EQ(item(1).xInches, 17.0);
    EXPECT_EQ(model->arrangementGap(), 0.0);
}

TEST_F(RollToolBarTest, GoesBackAndForthInTheHistory) {
    openWith(1);
    EXPECT_FALSE(isEnabled("undoLayoutButton"));
    EXPECT_FALSE(isEnabled("redoLayoutButton"));
    click("rotateButton");
    expectLockedByWork("undoLayoutButton");
    click("undoLayoutButton");
    settle();
    announced();
    EXPECT_EQ(item(0).rotationQuarterTurns, 0);
    EXPECT_FALSE(isEnabled("undoLayoutButton"));
    expectLockedByWork("redoLayoutButton");
    click("redoLayoutButton");
    settle();
    EXPECT_EQ(item(0).rotationQuarterTurns, 1);
}

TEST_F(RollToolBarTest, SavesAndOpensLayoutFiles) {
    openWith(1);
    expectLockedByWork("layoutFileButton");
    auto& save = find<QAction>("saveLayoutFileAction");
    auto& open = find<QAction>("openLayoutFileAction");
    EXPECT_EQ(save.text(), QStringLiteral("Save Layout…"));
    EXPECT_EQ(open.text(), QStringLiteral("Open Layout…"));
    save.trigger();
    EXPECT_EQ(services.saveRequests.size(), 1);
    open.trigger();
    ASSERT_EQ(services.openRequests.size(), 1);
    EXPECT_EQ(services.openRequests[0].kind, FileKind::layout);
}

TEST_F(RollToolBarTest, ZoomsTheBoard) {
    openWith(1);
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("100%"));
    click("zoomInButton");
    EXPECT_EQ(model->rollZoom(), 1.25);
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("125%"));
    click("fitWidthButton");
    EXPECT_EQ(model->rollZoom(), 1.0);
    click("zoomOutButton");
    EXPECT_EQ(model->rollZoom(), 0.8);
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("80%"));
}

TEST_F(RollToolBarTest, ZoomsWithinLimitsEvenWhileTheSessionIsBusy) {
    openWith(0);
    put(model->busy, true);
    for (int count = 0; count < 10; ++count) {
        click("zoomInButton");
    }
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("300%"));
    for (int count = 0; count < 20; ++count) {
        click("zoomOutButton");
    }
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("20%"));
    click("fitWidthButton");
    EXPECT_EQ(textOf("zoomText"), QStringLiteral("100%"));
    put(model->busy, false);
}

TEST_F(RollToolBarTest, LeavesRoomForTheLargestZoom) {
    openWith(0);
    const QWidget& zoom = find("zoomText");
    EXPECT_GE(zoom.width(), 44);
    EXPECT_GE(zoom.width(), zoom.fontMetrics().horizontalAdvance(QStringLiteral("300%")));
}

TEST_F(RollToolBarTest, TurnsSnappingOnAndOff) {
    openWith(0);
    auto& snap = find<QCheckBox>("snapToggle");
    EXPECT_TRUE(snap.isChecked());
    put(model->busy, true);
    click("snapToggle");
    EXPECT_FALSE(model->rollSnapToQuarter());
    EXPECT_FALSE(snap.isChecked());
    model->setRollSnapToQuarter(true);
    announced();
    EXPECT_TRUE(snap.isChecked());
    put(model->busy, false);
}

TEST_F(RollToolBarTest, FitsANarrowColumnInFurtherRows) {
    openWith(1);
    panel->setFixedWidth(540);
    panel->resize(540, panel->layout()->totalHeightForWidth(540));
    for (const auto* button : panel->findChildren<QPushButton*>()) {
        const QRect place(button->mapTo(panel.get(), QPoint()), button->size());
        EXPECT_TRUE(panel->rect().contains(place)) << button->objectName().toStdString();
        EXPECT_GE(button->width(), button->sizeHint().width()) << button->objectName().toStdString();
    }
    EXPECT_GT(find("snapToggle").mapTo(panel.get(), QPoint()).y(), find("rotateButton").geometry().bottom());
}

TEST_F(RollToolBarTest, IsReachedByTabInReadingOrder) {
    openWith(1);
    const QStringList expected{
        QStringLiteral("rollWidthField"),   QStringLiteral("batchSizesButton"), QStringLiteral("rotateButton"),
        QStringLiteral("autoPackButton"),   QStringLiteral("undoLayoutButton"), QStringLiteral("redoLayoutButton"),
        QStringLiteral("layoutFileButton"), QStringLiteral("zoomOutButton"),    QStringLiteral("zoomInButton"),
        QStringLiteral("fitWidthButton"),   QStringLiteral("snapToggle")};
    EXPECT_EQ(tabOrder(), expected);
}

} // namespace
} // namespace orvex
