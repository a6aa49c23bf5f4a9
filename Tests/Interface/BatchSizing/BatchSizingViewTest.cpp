#include "BatchView.h"

#include <QClipboard>
#include <QPlainTextEdit>
#include <QRegularExpression>

namespace orvex::test {
namespace {

class BatchSizingViewTest : public BatchView {
protected:
    /// Puts a text into the editor as it comes from another program.
    void paste(const char* text) const {
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        part<QPlainTextEdit>("batchPasteEditor")->paste();
        settleView();
    }
};

const char* const noPair = "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
                           "artwork was not changed, stretched or rounded at lower precision.";

/// All texts that a label shows, sorted.
QStringList shownTexts(const QWidget& window) {
    QStringList texts;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty()) {
            texts.append(label->text());
        }
    }
    texts.sort();
    return texts;
}

// The window

TEST_F(BatchSizingViewTest, isAModalWindowOfItsSize) {
    openTwo();
    EXPECT_EQ(view->objectName(), QStringLiteral("batchSizingView"));
    EXPECT_EQ(view->windowTitle().toStdString(), "Batch Sizes & Canvas Optimization");
    EXPECT_EQ(view->windowModality(), Qt::WindowModal);
    EXPECT_EQ(view->minimumSize(), QSize(900, 620));
    EXPECT_EQ(view->size(), QSize(1000, 710));
}

TEST_F(BatchSizingViewTest, isModalHoweverItIsShown) {
    start();
    EXPECT_EQ(BatchSizingView(*model).windowModality(), Qt::WindowModal);
}

TEST_F(BatchSizingViewTest, saysWhatItDoes) {
    openTwo();
    QStringList expected{
        QStringLiteral("Batch Sizes & Canvas Optimization"),
        QStringLiteral("Artwork sizes exclude borders. Both dimensions use the nearest proportional quarter-inch size "
                       "without distortion. Press Return or leave the field to confirm."),
        QStringLiteral("Set dimension"),
        QStringLiteral("Common size"),
        QStringLiteral("2 of 2 selected"),
        QStringLiteral("Artwork width"),
        QStringLiteral("Artwork height"),
        QStringLiteral("art1"),
        QStringLiteral("art2"),
        QStringLiteral("Only selected artworks are resized; all artworks are rearranged together. Each keeps a "
                       "2.5-inch border on every side, with no extra gap between trim frames."),
        QStringLiteral("Enter sizes, then click “Calculate Preview”"),
        QStringLiteral("Preview leaves your artwork unchanged. Apply, then undo in one step."),
    };
    expected.sort();
    EXPECT_EQ(shownTexts(*view), expected);
}

TEST_F(BatchSizingViewTest, namesItsButtons) {
    openTwo();
    EXPECT_EQ(button("batchWidthChoice")->text().toStdString(), "Artwork width");
    EXPECT_EQ(button("batchHeightChoice")->text().toStdString(), "Artwork height");
    EXPECT_EQ(button("batchFillButton")->text().toStdString(), "Fill Selected");
    EXPECT_EQ(button("batchSelectAllButton")->text().toStdString(), "Select All");
    EXPECT_EQ(button("batchDeselectAllButton")->text().toStdString(), "Deselect All");
    EXPECT_EQ(button("batchPasteToggle")->text().toStdString(), "Paste Multiple Sizes");
    EXPECT_EQ(button("batchPasteFillButton")->text().toStdString(), "Fill Selected from Pasted Sizes");
    EXPECT_EQ(button("batchRotationSwitch")->text().toStdString(), "Allow 90° rotation to save canvas");
    EXPECT_EQ(button("batchCancelButton")->text().toStdString(), "Cancel");
    EXPECT_EQ(button("batchCalculateButton")->text().toStdString(), "Calculate Preview");
    EXPECT_EQ(button("batchApplyButton")->text().toStdString(), "Apply Sizes && Layout");
    EXPECT_EQ(widget("batchDimensionPicker")->accessibleName().toStdString(), "Set dimension");
    EXPECT_EQ(widget("batchPasteEditor")->accessibleName().toStdString(), "Paste artwork sizes");
    EXPECT_EQ(widget("batchCommonSizeField")->accessibleName().toStdString(), "Common size");
}

TEST_F(BatchSizingViewTest, speaksChinese) {
    const InChinese chinese;
    openTwo();
    EXPECT_EQ(view->windowTitle().toStdString(), "批量尺寸与省布排版");
    EXPECT_EQ(button("batchApplyButton")->text().toStdString(), "应用尺寸与排版");
    EXPECT_EQ(textOf("batchSelectionLabel"), "已选 2 幅，共 2 幅");
    EXPECT_EQ(textOf("batchEmptyLabel"), "请输入尺寸，然后点击“计算预览”");
    const QRegularExpression english(QStringLiteral("[A-Za-z]{4,}"));
    for (const QString& text : shownTexts(*view)) {
        EXPECT_FALSE(english.match(text).hasMatch()) << text.toStdString();
    }
}

// Rows

TEST_F(BatchSizingViewTest, opensWithTheSizesOfTheArtworks) {
    openTwo();
    EXPECT_EQ(textOf("batchTitle0"), "art1");
    EXPECT_TRUE(button("batchTick0")->isChecked());
    EXPECT_EQ(sizeTexts(0), "30.00 × 20.00");
    EXPECT_EQ(field("batchWidthField0")->width(), 100);
    EXPECT_EQ(field("batchHeightField0")->width(), 100);
    EXPECT_FALSE(widget("batchSizingIssue0")->isVisible());
}

TEST_F(BatchSizingViewTest, namesTheControlsOfARowByItsArtwork) {
    openTwo();
    EXPECT_EQ(button("batchTick1")->accessibleName().toStdString(), "Select artwork art2");
    EXPECT_EQ(field("batchWidthField1")->accessibleName().toStdString(), "art2, Artwork width, inches");
    EXPECT_EQ(field("batchHeightField1")->accessibleName().toStdString(), "art2, Artwork height, inches");
    EXPECT_EQ(field("batchHeightField1")->toolTip().toStdString(),
              "Both dimensions use the nearest proportional 0.25-inch size. The original aspect ratio determines the "
              "valid size increments.");
}

TEST_F(BatchSizingViewTest, saysBelowARowWhyItHasNoSize) {
    openWithBadRow();
    EXPECT_TRUE(widget("batchSizingIssue1")->isVisible());
    EXPECT_EQ(textOf("batchSizingIssue1"), noPair);
    EXPECT_EQ(sizeTexts(1), "4.001 × 3.00");
    type("batchWidthField1", "");
    EXPECT_FALSE(widget("batchSizingIssue1")->isVisible());
}

TEST_F(BatchSizingViewTest, showsHostileTitlesAsTheyStand) {
    RollArtwork hostile = test::artwork(30.0, 20.0, 1);
    hostile.title = QStringLiteral("<b>&&</b>\n") + QString(200, u'W');
    open({hostile});
    EXPECT_EQ(textOf("batchTitle0"), "<b>&&</b> " + std::string(200, 'W'));
    EXPECT_EQ(part<QLabel>("batchTitle0")->textFormat(), Qt::PlainText);
    EXPECT_EQ(view->width(), 1000);
    type("batchWidthField0", "0");
    click("batchCalculateButton");
    EXPECT_EQ(part<QLabel>("batchIssueLabel")->textFormat(), Qt::PlainText);
    EXPECT_GT(widget("batchIssueLabel")->height(), 2 * view->fontMetrics().height());
    EXPECT_EQ(view->width(), 1000);
}

TEST_F(BatchSizingViewTest, fillsTheOtherFieldAsOneIsTyped) {
    openTwo();
    type("batchWidthField0", "24");
    EXPECT_EQ(sizeTexts(0), "24 × 16.00");
    type("batchHeightField1", "10");
    EXPECT_EQ(sizeTexts(1), "15.00 × 10");
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
}

TEST_F(BatchSizingViewTest, leavesTheTypedTextAloneWhileItIsTyped) {
    openTwo();
    type("batchWidthField0", "24.1");
    EXPECT_EQ(sizeTexts(0), "24.1 × 16.00");
    field("batchWidthField0")->setCursorPosition(1);
    QTest::keyClicks(field("batchWidthField0"), QStringLiteral("0"));
    settleView();
    EXPECT_EQ(field("batchWidthField0")->text().toStdString(), "204.1");
    EXPECT_EQ(field("batchWidthField0")->cursorPosition(), 2);
}

TEST_F(BatchSizingViewTest, takesTheTickOfARow) {
    openTwo();
    click("batchTick0");
    EXPECT_EQ(view->model().enabledIDs(), QList<QUuid>{test::id(2)});
    EXPECT_EQ(textOf("batchSelectionLabel"), "1 of 2 selected");
    click("batchTick0");
    EXPECT_EQ(textOf("batchSelectionLabel"), "2 of 2 selected");
}

TEST_F(BatchSizingViewTest, ticksAllOrNone) {
    openTwo();
    click("batchDeselectAllButton");
    EXPECT_FALSE(button("batchTick0")->isChecked());
    EXPECT_FALSE(button("batchTick1")->isChecked());
    EXPECT_EQ(textOf("batchSelectionLabel"), "0 of 2 selected");
    EXPECT_FALSE(widget("batchCalculateButton")->isEnabled());
    click("batchSelectAllButton");
    EXPECT_TRUE(button("batchTick0")->isChecked());
    EXPECT_TRUE(button("batchTick1")->isChecked());
    EXPECT_TRUE(widget("batchCalculateButton")->isEnabled());
}

// The common size

TEST_F(BatchSizingViewTest, fillsTheTickedRowsWithTheCommonWidth) {
    openTwo();
    click("batchTick1");
    EXPECT_TRUE(button("batchWidthChoice")->isChecked());
    type("batchCommonSizeField", "24");
    click("batchFillButton");
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
    EXPECT_EQ(sizeTexts(1), "30.00 × 20.00");
}

TEST_F(BatchSizingViewTest, fillsTheTickedRowsWithTheCommonHeight) {
    openTwo();
    click("batchHeightChoice");
    EXPECT_FALSE(button("batchWidthChoice")->isChecked());
    type("batchCommonSizeField", "24");
    click("batchFillButton");
    EXPECT_EQ(sizeTexts(0), "36.00 × 24.00");
    EXPECT_EQ(sizeTexts(1), "36.00 × 24.00");
    click("batchWidthChoice");
    EXPECT_EQ(view->model().dimension(), BatchDimension::width);
}

TEST_F(BatchSizingViewTest, saysWhatIsWrongWithTheCommonSize) {
    openTwo();
    EXPECT_STREQ(issueText(), "(none)");
    type("batchCommonSizeField", "abc");
    click("batchFillButton");
    EXPECT_STREQ(issueText(), "Enter a valid size greater than zero, in inches.");
    click("batchDeselectAllButton");
    EXPECT_STREQ(issueText(), "(none)");
    click("batchFillButton");
    EXPECT_STREQ(issueText(), "Select the artworks to resize first.");
}

// Pasted sizes

TEST_F(BatchSizingViewTest, opensAndClosesThePasteSection) {
    openTwo();
    EXPECT_FALSE(widget("batchPasteContent")->isVisible());
    click("batchPasteToggle");
    EXPECT_TRUE(widget("batchPasteContent")->isVisible());
    EXPECT_TRUE(shownTexts(*view).contains(
        QStringLiteral("Enter width × height on each line, such as 24 × 16, in the selected artwork order. You can "
                       "paste two columns. Sizes must match each original’s aspect ratio.")));
    paste("24 16");
    click("batchPasteToggle");
    EXPECT_FALSE(widget("batchPasteContent")->isVisible());
    click("batchPasteToggle");
    EXPECT_EQ(part<QPlainTextEdit>("batchPasteEditor")->toPlainText().toStdString(), "24 16");
}

TEST_F(BatchSizingViewTest, fillsTheTickedRowsWithPastedSizes) {
    openTwo();
    click("batchPasteToggle");
    paste("24 x 16\n12\t8");
    click("batchPasteFillButton");
    EXPECT_STREQ(issueText(), "(none)");
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
    EXPECT_EQ(sizeTexts(1), "12.00 × 8.00");
}

TEST_F(BatchSizingViewTest, turnsPastedSizesOnlyWhereTheSwitchAllowsIt) {
    openTwo();
    click("batchRotationSwitch");
    EXPECT_FALSE(view->model().allowRotation());
    click("batchPasteToggle");
    paste("16 24\n16 24");
    click("batchPasteFillButton");
    EXPECT_STRNE(issueText(), "(none)");
    EXPECT_EQ(sizeTexts(0), "30.00 × 20.00");
    click("batchRotationSwitch");
    click("batchPasteFillButton");
    EXPECT_EQ(sizeTexts(0), "16.00 × 24.00");
}

// The preview

TEST_F(BatchSizingViewTest, comparesTheArrangements) {
    openTwo();
    EXPECT_FALSE(widget("batchApplyButton")->isEnabled());
    calculate();
    EXPECT_TRUE(widget("batchRollPreview")->isVisible());
    EXPECT_EQ(widget("batchRollPreview")->accessibleName().toStdString(),
              "Optimized preview, 60 inches wide, 35 inches long, 2 artworks");
    EXPECT_EQ(textOf("batchPreviewHeadline"), "60 × 35 in");
    EXPECT_EQ(textOf("batchPreviewComparison"),
              "Conventional layout at the same sizes: 50 in long\nCanvas saved: 15 in\nUtilization including borders: "
              "83.3%\nArtwork utilization: 57.1%");
    EXPECT_TRUE(shownTexts(*view).contains(
        QStringLiteral("Compares multiple arrangements and chooses a shorter layout. Keeps the requested sizes "
                       "without shrinking artworks to fill the canvas.")));
    EXPECT_TRUE(widget("batchApplyButton")->isEnabled());
    type("batchWidthField0", "24");
    EXPECT_FALSE(widget("batchRollPreview")->isVisible());
    EXPECT_TRUE(widget("batchEmptyLabel")->isVisible());
    EXPECT_FALSE(widget("batchApplyButton")->isEnabled());
}

TEST_F(BatchSizingViewTest, comparesTheArrangementsOfChangedSizesAnew) {
    openTwo();
    calculate();
    click("batchRotationSwitch");
    EXPECT_TRUE(widget("batchEmptyLabel")->isVisible());
    calculate();
    EXPECT_EQ(textOf("batchPreviewHeadline"), "60 × 50 in");
    EXPECT_EQ(widget("batchRollPreview")->accessibleName().toStdString(),
              "Optimized preview, 60 inches wide, 50 inches long, 2 artworks");
}

TEST_F(BatchSizingViewTest, showsThatItCalculates) {
    openTwo();
    {
        const Barrier barrier;
        click("batchCalculateButton");
        EXPECT_EQ(textOf("batchCalculatingLabel"), "Comparing canvas-saving layouts…");
        EXPECT_TRUE(widget("batchCalculatingLabel")->isVisible());
        EXPECT_TRUE(widget("batchCalculatingProgress")->isVisible());
        EXPECT_FALSE(widget("batchCalculateButton")->isEnabled());
        EXPECT_FALSE(widget("batchApplyButton")->isEnabled());
        EXPECT_TRUE(widget("batchCancelButton")->isEnabled());
    }
    awaitEnd();
    EXPECT_FALSE(widget("batchCalculatingLabel")->isVisible());
    EXPECT_TRUE(widget("batchCalculateButton")->isEnabled());
    EXPECT_TRUE(widget("batchApplyButton")->isEnabled());
}

TEST_F(BatchSizingViewTest, drawsThePicturesThatItIsGiven) {
    openTwo();
    QList<QUuid> asked;
    const auto pictures = [&asked](const RollArtwork& artwork) {
        asked.append(artwork.id);
        return QImage();
    };
    view = std::make_unique<BatchSizingView>(*model, pictures);
    view->open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    calculate();
    (void)view->grab();
    EXPECT_TRUE(asked.contains(test::id(1)));
    EXPECT_TRUE(asked.contains(test::id(2)));
}

TEST_F(BatchSizingViewTest, saysWhichRowKeepsItFromCalculating) {
    openWithBadRow();
    click("batchCalculateButton");
    EXPECT_EQ(std::string(issueText()), std::string("「art2」：") + noPair);
    click("batchTick1");
    EXPECT_STREQ(issueText(), "(none)");
    calculate();
    EXPECT_TRUE(widget("batchApplyButton")->isEnabled());
}

} // namespace
} // namespace orvex::test
