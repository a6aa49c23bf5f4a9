#include "BatchSizing/BatchSizeList.h"

#include "BatchSizing/BatchSizeRow.h"
#include "BatchView.h"

#include <QScrollBar>

#include <ctime>

namespace orvex::test {
namespace {

class BatchSizeListTest : public BatchView {
protected:
    [[nodiscard]] QList<BatchSizeRow*> rows() const { return view->findChildren<BatchSizeRow*>(); }

    [[nodiscard]] qsizetype rowsWithControls() const {
        return std::ranges::count_if(rows(), [](const BatchSizeRow* row) { return row->hasControls(); });
    }

    /// Whether a control lies wholly in the part of the table that is seen.
    [[nodiscard]] bool isInView(const QWidget* control) const {
        const QWidget* viewport = part<BatchSizeList>("batchRows")->viewport();
        return viewport->rect().contains(QRect(control->mapTo(viewport, QPoint()), control->size()));
    }
};

TEST_F(BatchSizeListTest, makesTheControlsOfTheRowsInView) {
    openMany(500);
    EXPECT_EQ(rows().size(), 500);
    EXPECT_LT(rowsWithControls(), 60);
    EXPECT_TRUE(rows().first()->hasControls());
    EXPECT_FALSE(rows().at(250)->hasControls());
    part<BatchSizeList>("batchRows")->verticalScrollBar()->setValue(rows().at(250)->y());
    settleView();
    EXPECT_TRUE(rows().at(250)->hasControls());
    EXPECT_LT(rowsWithControls(), 120);
}

TEST_F(BatchSizeListTest, opensAtOnceWithManyRows) {
    openMany(500);
    view.reset();
    const std::clock_t before = std::clock(); // of this process alone, however busy the machine is
    view = std::make_unique<BatchSizingView>(*model);
    view->open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    settleView();
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC * 3 / 10);
}

TEST_F(BatchSizeListTest, makesTheControlsThatAHigherWindowShows) {
    openMany(500);
    view->resize(1000, 4000);
    settleView();
    for (const BatchSizeRow* row : rows().first(90)) {
        EXPECT_TRUE(row->hasControls());
    }
}

TEST_F(BatchSizeListTest, showsWhatHappenedToARowBeforeItWasSeen) {
    openMany(500);
    type("batchCommonSizeField", "6");
    click("batchFillButton");
    click("batchDeselectAllButton");
    part<BatchSizeList>("batchRows")->verticalScrollBar()->setValue(rows().at(250)->y());
    settleView();
    EXPECT_EQ(sizeTexts(250), "6.00 × 4.00");
    EXPECT_FALSE(button("batchTick250")->isChecked());
}

TEST_F(BatchSizeListTest, leadsTheKeyboardThroughEveryRow) {
    openMany(80);
    widget("batchTick0")->setFocus();
    for (int row = 0; row < 80; ++row) {
        for (const char* name : {"batchTick%1", "batchWidthField%1", "batchHeightField%1"}) {
            ASSERT_EQ(focusName(), QString::fromLatin1(name).arg(row).toStdString());
            ASSERT_TRUE(isInView(QApplication::focusWidget())) << focusName();
            press(Qt::Key_Tab);
        }
    }
    EXPECT_EQ(focusName(), "batchPasteToggle");
}

TEST_F(BatchSizeListTest, leadsTheKeyboardBackThroughEveryRow) {
    openMany(80);
    widget("batchPasteToggle")->setFocus();
    for (int row = 79; row >= 0; --row) {
        for (const char* name : {"batchHeightField%1", "batchWidthField%1", "batchTick%1"}) {
            press(Qt::Key_Backtab, Qt::ShiftModifier);
            ASSERT_EQ(focusName(), QString::fromLatin1(name).arg(row).toStdString());
            ASSERT_TRUE(isInView(QApplication::focusWidget())) << focusName();
        }
    }
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), "batchDeselectAllButton");
}

TEST_F(BatchSizeListTest, goesOnFromARowThatWasScrolledAway) {
    openMany(500);
    widget("batchWidthField3")->setFocus();
    part<BatchSizeList>("batchRows")->verticalScrollBar()->setValue(rows().at(400)->y());
    settleView();
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), "batchHeightField3");
    EXPECT_TRUE(isInView(QApplication::focusWidget()));
}

TEST_F(BatchSizeListTest, showsTheIssueBelowTheFieldsThatTheKeyboardReaches) {
    QList<RollArtwork> items;
    for (unsigned number = 1; number <= 40; ++number) {
        items.append(test::artwork(3.0, 2.0, number));
    }
    items.append(test::artwork(4.001, 3.0, 41));
    open(items);
    widget("batchPasteToggle")->setFocus();
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), "batchHeightField40");
    EXPECT_TRUE(isInView(widget("batchSizingIssue40")));
}

TEST_F(BatchSizeListTest, showsTheFieldsOfARowThatIsHigherThanTheTable) {
    RollArtwork wordy = test::artwork(30.0, 20.0, 1);
    wordy.title = QString(3000, u'W');
    open({wordy});
    EXPECT_GT(rows().first()->height(), part<BatchSizeList>("batchRows")->viewport()->height());
    part<BatchSizeList>("batchRows")->verticalScrollBar()->setValue(800);
    widget("batchPasteToggle")->setFocus();
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), "batchHeightField0");
    EXPECT_TRUE(isInView(QApplication::focusWidget()));
}

TEST_F(BatchSizeListTest, makesRoomForTheIssueOfARow) {
    openTwo();
    const int before = rows().first()->height();
    type("batchWidthField0", "4000");
    EXPECT_TRUE(widget("batchSizingIssue0")->isVisible());
    EXPECT_GT(rows().first()->height(), before);
    EXPECT_GE(rows().at(1)->y(), rows().first()->y() + rows().first()->height());
}

TEST_F(BatchSizeListTest, isEmptyForAnEmptyCanvas) {
    openMany(0);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(textOf("batchSelectionLabel"), "0 of 0 selected");
    EXPECT_FALSE(widget("batchCalculateButton")->isEnabled());
}

} // namespace
} // namespace orvex::test
