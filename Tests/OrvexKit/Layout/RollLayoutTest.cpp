#include "Layout/RollLayout.h"

#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

using test::artwork;
using test::artworkAt;
using test::messageOf;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr auto badRollWidth =
    "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both "
    "2.5-inch white borders.";
constexpr auto badVersion = "This roll layout version is unsupported.";

TEST(RollLayout, beginsEmptyAndSixtyInchesWide) {
    const RollLayout layout;
    EXPECT_EQ(layout.schemaVersion, 1);
    EXPECT_TRUE(layout.items.isEmpty());
    EXPECT_EQ(layout.widthInches, 60.0);
    EXPECT_EQ(layout.lengthInches(), 0.0);
    EXPECT_EQ(messageOf(layout.structureValidationError()), "(none)");
    EXPECT_EQ(RollLayout::currentSchemaVersion, 1);
    EXPECT_EQ(RollLayout::rollWidthInches, 60.0);
    EXPECT_EQ(RollLayout::defaultGapInches, 0.0);
}

TEST(RollLayout, isAsLongAsItsLowestFrame) {
    const RollLayout layout({artworkAt(0, 10, 10, 20, 1), artworkAt(30, 0, 10, 12, 2)});
    EXPECT_EQ(layout.lengthInches(), 35.0);
}

TEST(RollLayout, isNeverShorterThanNothing) {
    EXPECT_EQ(RollLayout({artworkAt(0, -100, 10, 20)}).lengthInches(), 0.0);
}

TEST(RollLayout, hasNoLengthOnceAnEdgeIsNotFinite) {
    EXPECT_TRUE(std::isnan(RollLayout({artwork(10, 10, 1), artworkAt(0, nan, 10, 20, 2)}).lengthInches()));
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isnan(RollLayout({artworkAt(0, -infinity, 10, 20, 2)}).lengthInches()));
}

TEST(RollLayout, isAValueOfItsOwn) {
    const RollLayout original({artwork(10, 10)});
    RollLayout copy = original;
    copy.items[0].xInches = 3.0;
    EXPECT_EQ(original.items.at(0).xInches, 0.0);
    EXPECT_NE(copy, original);
}

struct Width {
    const char* name;
    double inches;
    bool valid;
};

void PrintTo(const Width& param, std::ostream* out) {
    *out << param.name;
}

class RollLayoutWidth : public ::testing::TestWithParam<Width> {};

TEST_P(RollLayoutWidth, isTestedWithoutTolerance) {
    EXPECT_EQ(messageOf(RollLayout({}, GetParam().inches).widthValidationError()),
              GetParam().valid ? "(none)" : badRollWidth);
}

INSTANTIATE_TEST_SUITE_P(Values, RollLayoutWidth,
                         ::testing::Values(Width{"sixty", 60.0, true}, Width{"beyondSixty", 60.0000000001, false},
                                           Width{"five", 5.0, false}, Width{"aboveFive", 5.000001, true},
                                           Width{"negative", -20.0, false}, Width{"notANumber", nan, false}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(RollLayoutStructure, reportsVersionWidthIdsAndItemsInThisOrder) {
    RollLayout layout({artworkAt(-1, 0, 10, 10, 1), artwork(10, 10, 1), artworkAt(58, 0, 10, 10, 3)}, 70.0);
    layout.schemaVersion = 9;
    EXPECT_EQ(messageOf(layout.structureValidationError()), badVersion);
    layout.schemaVersion = 1;
    EXPECT_EQ(messageOf(layout.structureValidationError()), badRollWidth);
    layout.widthInches = 60.0;
    EXPECT_EQ(messageOf(layout.structureValidationError()), "Duplicate artwork IDs.");
    layout.items[1].id = test::id(2);
    EXPECT_EQ(messageOf(layout.structureValidationError()),
              "art1：Artwork positions must be valid nonnegative values in inches.");
    layout.items[0].xInches = 0.0;
    EXPECT_EQ(messageOf(layout.structureValidationError()),
              "art3：The complete manual-trim frame must lie within the 60-inch roll.");
    layout.items[2].xInches = 0.0;
    EXPECT_EQ(messageOf(layout.structureValidationError()), "(none)");
}

TEST(RollLayoutStructure, isReportedInChinese) {
    const test::InChinese chinese;
    RollLayout layout({artworkAt(-1, 0, 10, 10, 1)});
    EXPECT_EQ(messageOf(layout.structureValidationError()), "art1：作品位置必须是有效的非负数值（英寸）。");
    layout.schemaVersion = 0;
    EXPECT_EQ(messageOf(layout.structureValidationError()), "不支持此卷布排版的版本。");
}

TEST(RollLayoutExport, asksForArtwork) {
    EXPECT_EQ(messageOf(RollLayout().exportValidationError()), "Add artwork to the roll canvas first.");
}

TEST(RollLayoutExport, reportsTheStructureFirst) {
    EXPECT_EQ(messageOf(RollLayout({}, 4.0).exportValidationError()), badRollWidth);
}

TEST(RollLayoutExport, acceptsFramesThatTouch) {
    const RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(15, 0, 10, 10, 2), artworkAt(0, 15, 10, 10, 3)});
    EXPECT_EQ(messageOf(layout.exportValidationError()), "(none)");
}

TEST(RollLayoutExport, acceptsAnOverlapBelowTheTolerance) {
    const RollLayout layout({artworkAt(0, 0, 10, 10, 1), artworkAt(15 - 5e-10, 0, 10, 10, 2)});
    EXPECT_EQ(messageOf(layout.exportValidationError()), "(none)");
}

TEST(RollLayoutExport, namesTheFirstPairThatOverlapsInListOrder) {
    const RollLayout layout({artworkAt(0, 40, 10, 10, 1), artworkAt(14.999, 0, 10, 10, 2), artworkAt(0, 0, 10, 10, 3),
                             artworkAt(0, 40, 10, 10, 4)});
    EXPECT_EQ(messageOf(layout.exportValidationError()),
              "Manual-trim frames overlap: art1 and art4. Move the artwork or arrange automatically.");
    RollLayout two({layout.items.at(1), layout.items.at(2)});
    EXPECT_EQ(messageOf(two.exportValidationError()),
              "Manual-trim frames overlap: art2 and art3. Move the artwork or arrange automatically.");
}

TEST(RollLayoutExport, keepsPlaceholdersInTitlesAsTheyAre) {
    RollLayout layout({artwork(10, 10, 1), artwork(10, 10, 2)});
    layout.items[0].title = QStringLiteral("%2");
    EXPECT_EQ(messageOf(layout.exportValidationError()),
              "Manual-trim frames overlap: %2 and art2. Move the artwork or arrange automatically.");
}

TEST(RollLayoutExport, isReportedInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(messageOf(RollLayout().exportValidationError()), "请先在卷布画板上添加作品。");
    EXPECT_EQ(messageOf(RollLayout({artwork(10, 10, 1), artwork(10, 10, 2)}).exportValidationError()),
              "手裁框重叠：art1 与 art2。请移动作品或自动排版。");
}

TEST(RollLayoutSpacing, holdsWithoutPairs) {
    EXPECT_TRUE(RollLayout::hasSpacing({}, 10.0));
    EXPECT_TRUE(RollLayout::hasSpacing({artwork(10, 10)}, 10.0));
}

TEST(RollLayoutSpacing, countsTheGapOnEverySideWithTheTolerance) {
    const RollArtwork first = artworkAt(20, 20, 10, 10, 1);
    const auto spaced = [&](double x, double y) {
        return RollLayout::hasSpacing({first, artworkAt(x, y, 10, 10, 2)}, 2.0);
    };
    EXPECT_TRUE(spaced(37, 20));
    EXPECT_TRUE(spaced(37 - 5e-10, 20));
    EXPECT_FALSE(spaced(37 - 2e-9, 20));
    EXPECT_TRUE(spaced(3, 20));
    EXPECT_FALSE(spaced(3.01, 20));
    EXPECT_TRUE(spaced(20, 37));
    EXPECT_FALSE(spaced(20, 36.99));
    EXPECT_TRUE(spaced(20, 3));
    EXPECT_FALSE(spaced(20, 3.01));
    EXPECT_FALSE(spaced(36, 36)); // The corners are nearer than the gap along both axes.
}

} // namespace
} // namespace orvex
