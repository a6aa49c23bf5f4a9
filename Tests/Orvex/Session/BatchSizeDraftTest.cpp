#include "BatchSizeDraft.h"

#include "InLocale.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::artwork;
using test::InChinese;
using test::refusalOf;

constexpr double roll = 60.0;

const char* const noPair = "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this roll. The "
                           "artwork was not changed, stretched or rounded at lower precision.";

BatchSizeDraft draftOf(double width, double height) {
    return BatchSizeDraft::make(artwork(width, height), roll);
}

/// "width text × height text".
std::string texts(const BatchSizeDraft& row) {
    return (row.widthText + QStringLiteral(" × ") + row.heightText).toStdString();
}

void edit(BatchSizeDraft& row, const char* text, BatchDimension dimension) {
    row.edit(QString::fromUtf8(text), dimension);
}

TEST(BatchSizeDraft, opensTickedAtThePresentSizeOfQuarterInches) {
    const BatchSizeDraft row = draftOf(24.0, 16.0);
    EXPECT_EQ(row.item, artwork(24.0, 16.0));
    EXPECT_EQ(row.reference, row.item);
    EXPECT_EQ(row.rollWidth, roll);
    EXPECT_TRUE(row.enabled);
    EXPECT_EQ(row.width, 24.0);
    EXPECT_EQ(row.height, 16.0);
    EXPECT_EQ(texts(row), "24.00 × 16.00");
    EXPECT_EQ(row.sizingIssue, std::nullopt);
}

TEST(BatchSizeDraft, opensAtTheNearestPairOfQuarterInches) {
    const BatchSizeDraft row = draftOf(24.3, 16.2);
    EXPECT_EQ(row.width, 24.0);
    EXPECT_EQ(row.height, 16.0);
    EXPECT_EQ(texts(row), "24.00 × 16.00");
    EXPECT_EQ(row.item.widthInches, 24.3);
}

TEST(BatchSizeDraft, opensAtThePresentSizeWithAnIssueWhereThereIsNoPair) {
    const BatchSizeDraft row = draftOf(4.001, 3.0);
    EXPECT_EQ(row.width, 4.001);
    EXPECT_EQ(row.height, artwork(4.001, 3.0).heightInches());
    EXPECT_EQ(texts(row), "4.001 × 3.00");
    EXPECT_EQ(test::messageOf(row.sizingIssue), noPair);
    EXPECT_TRUE(row.enabled);
}

TEST(BatchSizeDraft, setsTheOtherFieldWhileOneIsTypedAndLeavesThatAlone) {
    BatchSizeDraft row = draftOf(3.0, 2.0);
    edit(row, "24", BatchDimension::width);
    EXPECT_EQ(texts(row), "24 × 16.00");
    EXPECT_EQ(row.text(BatchDimension::width).toStdString(), "24");
    EXPECT_EQ(row.text(BatchDimension::height).toStdString(), "16.00");
    EXPECT_EQ(row.width, 24.0);
    EXPECT_EQ(row.height, 16.0);
    row.confirm();
    EXPECT_EQ(texts(row), "24.00 × 16.00");
}

TEST(BatchSizeDraft, takesTheNearestSizeOfTheDimensionThatIsTyped) {
    BatchSizeDraft row = draftOf(3.0, 2.0);
    edit(row, "24.1", BatchDimension::width);
    EXPECT_EQ(texts(row), "24.1 × 16.00");
    row.confirm();
    EXPECT_EQ(texts(row), "24.00 × 16.00");
    edit(row, "16.3", BatchDimension::height);
    EXPECT_EQ(texts(row), "24.75 × 16.3");
    EXPECT_EQ(row.width, 24.75);
    EXPECT_EQ(row.height, 16.5);
}

TEST(BatchSizeDraft, hasNoValueAndNoIssueForAnEmptyField) {
    BatchSizeDraft row = draftOf(4.001, 3.0);
    edit(row, "", BatchDimension::width);
    EXPECT_EQ(row.width, std::nullopt);
    EXPECT_EQ(row.height, artwork(4.001, 3.0).heightInches());
    EXPECT_EQ(row.sizingIssue, std::nullopt);
    EXPECT_EQ(texts(row), " × 3.00");
    row.confirm();
    EXPECT_EQ(texts(row), " × 3.00");
}

TEST(BatchSizeDraft, hasNoValueForATextThatIsNoNumber) {
    BatchSizeDraft row = draftOf(24.0, 16.0);
    edit(row, "sixteen", BatchDimension::height);
    EXPECT_EQ(row.height, std::nullopt);
    EXPECT_EQ(row.width, 24.0);
    EXPECT_EQ(texts(row), "24.00 × sixteen");
}

TEST(BatchSizeDraft, saysWhyAnEntryCannotBeMetAndKeepsItsTexts) {
    BatchSizeDraft row = draftOf(24.0, 16.0);
    edit(row, "55.25", BatchDimension::width);
    EXPECT_TRUE(row.sizingIssue);
    EXPECT_EQ(row.width, 55.25);
    EXPECT_EQ(row.height, 16.0);
    row.confirm();
    EXPECT_EQ(texts(row), "55.25 × 16.00");
    edit(row, "0", BatchDimension::width);
    EXPECT_TRUE(row.sizingIssue);
    edit(row, "55", BatchDimension::width);
    EXPECT_EQ(row.sizingIssue, std::nullopt);
    EXPECT_EQ(texts(row), "55 × 36.50");
}

TEST(BatchSizeDraft, readsAndShowsNumbersOfTheLocale) {
    const test::InLocale german("de_DE");
    BatchSizeDraft row = draftOf(24.0, 16.0);
    EXPECT_EQ(texts(row), "24,00 × 16,00");
    edit(row, "24,75", BatchDimension::width);
    EXPECT_EQ(texts(row), "24,75 × 16,50");
}

TEST(BatchSizeDraft, asksForBothDimensions) {
    BatchSizeDraft row = draftOf(3.0, 2.0);
    edit(row, "24.1", BatchDimension::width);
    EXPECT_EQ(row.request(), (BatchArtworkSizeRequest{.id = test::id(1), .widthInches = 24.0, .heightInches = 16.0}));
}

TEST(BatchSizeDraft, asksForNothingWithAnIssue) {
    const BatchSizeDraft row = draftOf(4.001, 3.0);
    EXPECT_EQ(refusalOf([&] { (void)row.request(); }), std::string("「art1」：") + noPair);
    const InChinese chinese;
    EXPECT_EQ(
        refusalOf([&] { (void)draftOf(4.001, 3.0).request(); }),
        "「art1」：此卷布上没有宽高均为 1/4 英寸整数倍且比例精确的尺寸。作品未改动、未拉伸，也未以较低精度取整。");
}

TEST(BatchSizeDraft, asksForNothingWithoutASize) {
    BatchSizeDraft row = draftOf(24.0, 16.0);
    edit(row, "", BatchDimension::height);
    EXPECT_EQ(refusalOf([&] { (void)row.request(); }), "“art1”: Enter a valid size greater than zero, in inches.");
    const InChinese chinese;
    EXPECT_EQ(refusalOf([&] { (void)row.request(); }), "「art1」：请输入大于零的有效尺寸（英寸）。");
}

TEST(BatchSizeDraft, leavesPlaceholdersInATitleAlone) {
    RollArtwork titled = artwork(24.0, 16.0);
    titled.title = QStringLiteral("50%1");
    BatchSizeDraft row = BatchSizeDraft::make(titled, roll);
    edit(row, "", BatchDimension::width);
    EXPECT_EQ(refusalOf([&] { (void)row.request(); }), "“50%1”: Enter a valid size greater than zero, in inches.");
}

TEST(BatchSizeDraft, takesTheTurnOfAPastedSize) {
    BatchSizeDraft row = draftOf(3.0, 2.0);
    edit(row, "999", BatchDimension::width);
    RollArtwork turned = artwork(3.0, 2.0).turned();
    turned.widthInches = 16.1;
    row.take(turned);
    EXPECT_EQ(row.reference, turned);
    EXPECT_EQ(row.item, artwork(3.0, 2.0));
    EXPECT_EQ(texts(row), "16.00 × 24.00");
    EXPECT_EQ(row.width, 16.0);
    EXPECT_EQ(row.height, 24.0);
    EXPECT_EQ(row.sizingIssue, std::nullopt);
    edit(row, "8", BatchDimension::width);
    EXPECT_EQ(texts(row), "8 × 12.00");
}

TEST(BatchSizeDraft, staysAsItIsWhereAPastedSizeHasNoPair) {
    BatchSizeDraft row = draftOf(24.0, 16.0);
    const BatchSizeDraft before = row;
    EXPECT_EQ(refusalOf([&] { row.take(artwork(4.001, 3.0)); }), noPair);
    EXPECT_EQ(row, before);
}

} // namespace
} // namespace orvex
