#include "BatchPanel.h"
#include "InLocale.h"

namespace orvex {
namespace {

using test::artwork;
using test::id;
using test::InChinese;

const char* const noPair = "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
                           "artwork was not changed, stretched or rounded at lower precision.";

class BatchSizingModelTest : public test::BatchPanel {};

TEST_F(BatchSizingModelTest, opensOverTheLayoutWithEveryRowTicked) {
    openTwo();
    EXPECT_EQ(panel->original(), RollLayout({artwork(30.0, 20.0, 1), artwork(30.0, 20.0, 2)}));
    EXPECT_EQ(panel->enabledIDs(), (QList<QUuid>{id(1), id(2)}));
    EXPECT_EQ(texts(1), "30.00 × 20.00");
    EXPECT_EQ(panel->dimension(), BatchDimension::width);
    EXPECT_EQ(panel->commonSize(), QString());
    EXPECT_TRUE(panel->allowRotation());
    EXPECT_EQ(panel->pastedSizes(), QString());
    EXPECT_FALSE(panel->pasteExpanded());
    EXPECT_EQ(panel->preview(), std::nullopt);
    EXPECT_EQ(issue(), "(none)");
    EXPECT_FALSE(panel->calculating());
    EXPECT_EQ(panel->dimensionFocus(), std::nullopt);
    EXPECT_EQ(panel->previousDimensionFocus(), std::nullopt);
    EXPECT_TRUE(panel->canCalculatePreview());
    EXPECT_FALSE(panel->canApply());
}

TEST_F(BatchSizingModelTest, sizesItsRowsForTheWidthOfTheRoll) {
    open({artwork(30.0, 20.0)}, 40.0);
    EXPECT_EQ(row(1).rollWidth, 40.0);
    type(width(1), "36");
    EXPECT_TRUE(row(1).sizingIssue);
}

TEST_F(BatchSizingModelTest, keepsTheSettingsOfTheCommonControls) {
    openTwo();
    panel->setDimension(BatchDimension::height);
    panel->setCommonSize(QStringLiteral("24"));
    panel->setAllowRotation(false);
    panel->setPastedSizes(QStringLiteral("1 2"));
    panel->setPasteExpanded(true);
    EXPECT_EQ(panel->dimension(), BatchDimension::height);
    EXPECT_EQ(panel->commonSize().toStdString(), "24");
    EXPECT_FALSE(panel->allowRotation());
    EXPECT_EQ(panel->pastedSizes().toStdString(), "1 2");
    EXPECT_TRUE(panel->pasteExpanded());
}

TEST_F(BatchSizingModelTest, announcesChangesOnceATurnOfTheEventLoop) {
    openTwo();
    int changes = 0;
    QObject::connect(panel.get(), &BatchSizingModel::changed, panel.get(), [&] { ++changes; });
    type(width(1), "24");
    type(width(1), "24.");
    panel->deselectAll();
    EXPECT_EQ(changes, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(changes, 1);
}

// Typing and confirmation

TEST_F(BatchSizingModelTest, typesIntoOneRowOnly) {
    openTwo();
    type(width(2), "24");
    EXPECT_EQ(texts(1), "30.00 × 20.00");
    EXPECT_EQ(texts(2), "24 × 16.00");
    type(height(2), "20");
    EXPECT_EQ(texts(2), "30.00 × 20");
}

TEST_F(BatchSizingModelTest, ignoresAFieldOfNoRow) {
    openTwo();
    type(width(3), "24");
    panel->submit(width(3));
    panel->setEnabled(id(3), false);
    EXPECT_EQ(texts(1), "30.00 × 20.00");
    EXPECT_EQ(texts(2), "30.00 × 20.00");
    EXPECT_EQ(panel->enabledIDs().size(), 2);
}

TEST_F(BatchSizingModelTest, confirmsAFieldOnReturnAndReleasesTheKeyboard) {
    openTwo();
    panel->setDimensionFocus(width(1));
    type(width(1), "24.1");
    EXPECT_EQ(texts(1), "24.1 × 16.00");
    panel->submit(width(1));
    EXPECT_EQ(texts(1), "24.00 × 16.00");
    EXPECT_EQ(panel->dimensionFocus(), std::nullopt);
    EXPECT_EQ(panel->previousDimensionFocus(), std::nullopt);
}

TEST_F(BatchSizingModelTest, confirmsAFieldThatIsLeftForAnother) {
    openTwo();
    panel->setDimensionFocus(width(1));
    EXPECT_EQ(panel->dimensionFocus(), width(1));
    EXPECT_EQ(panel->previousDimensionFocus(), width(1));
    type(width(1), "24.1");
    panel->setDimensionFocus(height(2));
    EXPECT_EQ(texts(1), "24.00 × 16.00");
    EXPECT_EQ(panel->previousDimensionFocus(), height(2));
    type(height(2), "4");
    EXPECT_EQ(texts(2), "6.00 × 4");
    panel->setDimensionFocus(std::nullopt);
    EXPECT_EQ(texts(2), "6.00 × 4.00");
}

TEST_F(BatchSizingModelTest, confirmsAFieldThatIsLeftForTheOtherOfItsRow) {
    openTwo();
    panel->setDimensionFocus(width(1));
    type(width(1), "24.1");
    panel->setDimensionFocus(height(1));
    EXPECT_EQ(texts(1), "24.00 × 16.00");
}

TEST_F(BatchSizingModelTest, confirmsNothingWhileTheKeyboardStays) {
    openTwo();
    panel->setDimensionFocus(width(1));
    type(width(1), "24.1");
    panel->setDimensionFocus(width(1));
    EXPECT_EQ(texts(1), "24.1 × 16.00");
}

TEST_F(BatchSizingModelTest, leavesTheTextOfARowWithoutASizeWhenItIsConfirmed) {
    openTwo();
    type(width(1), "");
    panel->submit(width(1));
    EXPECT_EQ(texts(1), " × 20.00");
    type(width(2), "99");
    panel->submit(width(2));
    EXPECT_EQ(texts(2), "99 × 20.00");
    EXPECT_TRUE(row(2).sizingIssue);
}

// Ticking

TEST_F(BatchSizingModelTest, tellsTheTickedRowsInTheirOrder) {
    open({artwork(3.0, 2.0, 7), artwork(3.0, 2.0, 5), artwork(3.0, 2.0, 6)});
    panel->setEnabled(id(5), false);
    EXPECT_EQ(panel->enabledIDs(), (QList<QUuid>{id(7), id(6)}));
    EXPECT_EQ(panel->selectionText().toStdString(), "2 of 3 selected");
    panel->deselectAll();
    EXPECT_EQ(panel->enabledIDs(), QList<QUuid>{});
    EXPECT_EQ(panel->selectionText().toStdString(), "0 of 3 selected");
    EXPECT_FALSE(panel->canCalculatePreview());
    panel->selectAll();
    EXPECT_EQ(panel->enabledIDs(), (QList<QUuid>{id(7), id(5), id(6)}));
    EXPECT_TRUE(panel->canCalculatePreview());
    const InChinese chinese;
    EXPECT_EQ(panel->selectionText().toStdString(), "已选 3 幅，共 3 幅");
}

TEST_F(BatchSizingModelTest, namesTickBoxesAndFields) {
    open({artwork(3.0, 2.0)});
    EXPECT_EQ(BatchSizingModel::tickLabel(row(1)).toStdString(), "Select artwork art1");
    EXPECT_EQ(BatchSizingModel::fieldLabel(row(1), BatchDimension::width).toStdString(), "art1, Artwork width, inches");
    EXPECT_EQ(BatchSizingModel::fieldLabel(row(1), BatchDimension::height).toStdString(),
              "art1, Artwork height, inches");
    const InChinese chinese;
    EXPECT_EQ(BatchSizingModel::tickLabel(row(1)).toStdString(), "选择作品 art1");
    EXPECT_EQ(BatchSizingModel::fieldLabel(row(1), BatchDimension::width).toStdString(), "art1，作品宽度，英寸");
    EXPECT_EQ(BatchSizingModel::fieldLabel(row(1), BatchDimension::height).toStdString(), "art1，作品高度，英寸");
}

// The common size

TEST_F(BatchSizingModelTest, fillsAndConfirmsTheTickedRows) {
    open({artwork(30.0, 20.0, 1), artwork(30.0, 20.0, 2), artwork(20.0, 20.0, 3)});
    panel->setEnabled(id(2), false);
    fill("24.1");
    EXPECT_EQ(texts(1), "24.00 × 16.00");
    EXPECT_EQ(texts(2), "30.00 × 20.00");
    EXPECT_EQ(texts(3), "24.00 × 24.00");
    panel->setDimension(BatchDimension::height);
    fill("10");
    EXPECT_EQ(texts(1), "15.00 × 10.00");
    EXPECT_EQ(texts(3), "10.00 × 10.00");
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchSizingModelTest, showsTheIssueOfARowThatTheCommonSizeDoesNotFit) {
    openTwo();
    fill("56");
    EXPECT_TRUE(row(1).sizingIssue);
    EXPECT_EQ(texts(1), "56 × 20.00");
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchSizingModelTest, refusesACommonSizeForNoRow) {
    openTwo();
    panel->deselectAll();
    fill("24");
    EXPECT_EQ(issue(), "Select the artworks to resize first.");
    const InChinese chinese;
    fill("24");
    EXPECT_EQ(issue(), "请先选择要修改尺寸的作品。");
    EXPECT_EQ(texts(1), "30.00 × 20.00");
}

TEST_F(BatchSizingModelTest, refusesACommonSizeThatIsNone) {
    openTwo();
    for (const char* text : {"", "0", "-1", "abc", "1e999", "24,5"}) {
        fill(text);
        EXPECT_EQ(issue(), "Enter a valid size greater than zero, in inches.") << text;
        EXPECT_EQ(texts(1), "30.00 × 20.00") << text;
    }
    const InChinese chinese;
    fill("0");
    EXPECT_EQ(issue(), "请输入大于零的有效尺寸（英寸）。");
}

TEST_F(BatchSizingModelTest, readsTheCommonSizeInTheLocale) {
    const test::InLocale german("de_DE");
    openTwo();
    fill("24,75");
    EXPECT_EQ(texts(1), "24,75 × 16,50");
}

// Pasted sizes

TEST_F(BatchSizingModelTest, fillsTheTickedRowsInTheirOrderWithPastedSizes) {
    open({artwork(30.0, 20.0, 1), artwork(30.0, 20.0, 2), artwork(20.0, 20.0, 3)});
    panel->setEnabled(id(2), false);
    paste("24 × 16\n\n8.5x8.5\n");
    EXPECT_EQ(texts(1), "24.00 × 16.00");
    EXPECT_EQ(texts(2), "30.00 × 20.00");
    EXPECT_EQ(texts(3), "8.50 × 8.50");
    EXPECT_EQ(issue(), "(none)");
}

TEST_F(BatchSizingModelTest, takesTheNearestPairOfAPastedSize) {
    open({artwork(30.0, 20.0)});
    paste("24.3 16.2");
    EXPECT_EQ(texts(1), "24.00 × 16.00");
}

TEST_F(BatchSizingModelTest, keepsTheProportionOfAPastedSizeThatTurns) {
    openTwo();
    type(width(1), "99");
    paste("16 24\n24 16");
    EXPECT_EQ(texts(1), "16.00 × 24.00");
    EXPECT_EQ(row(1).sizingIssue, std::nullopt);
    EXPECT_EQ(row(1).item, artwork(30.0, 20.0, 1));
    EXPECT_EQ(row(1).reference.rotationQuarterTurns, 1);
    EXPECT_EQ(row(2).reference.rotationQuarterTurns, 0);
    type(width(1), "8");
    EXPECT_EQ(texts(1), "8 × 12.00");
}

TEST_F(BatchSizingModelTest, turnsNoPastedSizeWhereTurnsAreNotAllowed) {
    open({artwork(30.0, 20.0)});
    panel->setAllowRotation(false);
    paste("16 24");
    EXPECT_EQ(issue(), "“art1”: These dimensions would change the source aspect ratio. Enter only width or height for "
                       "proportional scaling, or enter a width × height pair matching the source ratio.");
    EXPECT_EQ(texts(1), "30.00 × 20.00");
}

TEST_F(BatchSizingModelTest, fillsNoRowIfOneLineIsBad) {
    openTwo();
    paste("24 16\n24,5 x 16");
    EXPECT_EQ(issue(), "Invalid dimensions on line 2. Enter a positive width × height pair, such as 24 × 16, in "
                       "inches.");
    paste("24 16");
    EXPECT_EQ(issue(), "Enter one width × height pair per artwork in list order: 2 lines are required; 1 were "
                       "provided.");
    paste("24 16\n24 17");
    EXPECT_EQ(issue().substr(0, 20), "“art2”: These di");
    EXPECT_EQ(texts(1), "30.00 × 20.00");
    EXPECT_EQ(row(1).reference, artwork(30.0, 20.0, 1));
}

TEST_F(BatchSizingModelTest, fillsNoRowIfOneHasNoPairOfQuarterInches) {
    open({artwork(30.0, 20.0, 1), artwork(4.001, 3.0, 2)});
    paste("24 16\n4.001 3");
    EXPECT_EQ(issue(), noPair);
    EXPECT_EQ(texts(1), "30.00 × 20.00");
}

TEST_F(BatchSizingModelTest, refusesPastedSizesForNoRow) {
    openTwo();
    panel->deselectAll();
    paste("24 16");
    EXPECT_EQ(issue(), "Select the artworks to fill with sizes first.");
    const InChinese chinese;
    paste("24 16");
    EXPECT_EQ(issue(), "请先选择要填入尺寸的作品。");
}

TEST_F(BatchSizingModelTest, readsPastedSizesWithAPointInEveryLocale) {
    const test::InLocale german("de_DE");
    openTwo();
    paste("24.75 16.5\n3 2");
    EXPECT_EQ(texts(1), "24,75 × 16,50");
}

} // namespace
} // namespace orvex
