#include "Layout/BatchArtworkSizing.h"

#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

using test::artwork;
using test::artworkAt;
using test::refusalOf;
using test::Snapshot;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Requests = QList<BatchArtworkSizeRequest>;

// sizingArtworks

constexpr auto aspectRefusal =
    "“art1”: These dimensions would change the source aspect ratio. Enter only width or height for proportional "
    "scaling, or enter a width × height pair matching the source ratio.";
constexpr auto widthRefusal =
    "“art1”: With 2.5-inch borders on both sides, this artwork exceeds the 60-inch roll. Change its size or allow 90° "
    "rotation. The app will not shrink it automatically.";

/// An artwork of 30 x 20 inches at a place of its own.
RollLayout threeByTwo() {
    return RollLayout({artworkAt(4, 7, 30, 20, 1)});
}

std::string sizingRefusal(const RollLayout& layout, const Requests& requests, bool allowQuarterTurns) {
    const Snapshot before(layout);
    const std::string refusal = refusalOf([&] { (void)layout.sizingArtworks(requests, allowQuarterTurns); });
    EXPECT_EQ(Snapshot(layout), before);
    return refusal;
}

TEST(SizingArtworks, takesAPairOfTheProportions) {
    const RollLayout layout = threeByTwo();
    const RollLayout sized = layout.sizingArtworks({{test::id(1), 24.0, 16.0}}, false);
    RollLayout expected = layout;
    expected.items[0].widthInches = 24.0;
    EXPECT_EQ(sized, expected);
    EXPECT_EQ(layout, threeByTwo());
}

TEST(SizingArtworks, replacesATypedHeightByTheExactOne) {
    const RollLayout sized = threeByTwo().sizingArtworks({{test::id(1), 24.0, 16.00000001}}, false);
    EXPECT_EQ(sized.items.at(0).widthInches, 24.0);
    EXPECT_EQ(sized.items.at(0).heightInches(), 16.0);
}

TEST(SizingArtworks, followsASingleDimension) {
    EXPECT_EQ(threeByTwo().sizingArtworks({{test::id(1), 15.0}}, false).items.at(0).heightInches(), 10.0);
    EXPECT_EQ(threeByTwo().sizingArtworks({{test::id(1), std::nullopt, 12.0}}, false).items.at(0).widthInches, 18.0);
}

TEST(SizingArtworks, refusesAnotherProportion) {
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 24.0, 17.0}}, true), aspectRefusal);
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 16.0, 24.0}}, false), aspectRefusal);
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 1e300, 1e-300}}, true), aspectRefusal);
}

TEST(SizingArtworks, turnsForAPairOfTheTurnedProportions) {
    const RollLayout sized = threeByTwo().sizingArtworks({{test::id(1), 16.0, 24.0}}, true);
    EXPECT_EQ(sized.items.at(0).rotationQuarterTurns, 1);
    EXPECT_EQ(sized.items.at(0).widthInches, 16.0);
    EXPECT_EQ(sized.items.at(0).heightInches(), 24.0);
    EXPECT_EQ(sized.items.at(0).yInches, 7.0);
}

TEST(SizingArtworks, turnsWhatFitsTheRollOnlySo) {
    const RollLayout sized = threeByTwo().sizingArtworks({{test::id(1), 57.0}}, true);
    EXPECT_EQ(sized.items.at(0).rotationQuarterTurns, 1);
    EXPECT_EQ(sized.items.at(0).widthInches, 38.0);
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 57.0}}, false), widthRefusal);
}

TEST(SizingArtworks, leavesAPairForTheTurnedFormUnturnedIfItFitsOnlySo) {
    const RollLayout sized = RollLayout({artwork(20, 30)}).sizingArtworks({{test::id(1), 57.0, 38.0}}, true);
    EXPECT_EQ(sized.items.at(0).rotationQuarterTurns, 0);
    EXPECT_EQ(sized.items.at(0).widthInches, 38.0);
}

TEST(SizingArtworks, refusesWhatFitsInNoWay) {
    EXPECT_EQ(sizingRefusal(RollLayout({artwork(20, 20)}), {{test::id(1), 57.0, 57.0}}, true), widthRefusal);
    EXPECT_EQ(sizingRefusal(RollLayout({artwork(20, 20)}), {{test::id(1), 57.0, 57.0}}, false), widthRefusal);
    EXPECT_EQ(
        sizingRefusal(RollLayout({artwork(20, 20)}, 42.12345), {{test::id(1), 57.0}}, true),
        "“art1”: With 2.5-inch borders on both sides, this artwork exceeds the 42.1234-inch roll. Change its size "
        "or allow 90° rotation. The app will not shrink it automatically.");
}

TEST(SizingArtworks, allowsAWidthBeyondTheRollByTheToleranceOnly) {
    EXPECT_EQ(threeByTwo().sizingArtworks({{test::id(1), 55.0 + 5e-10}}, false).items.at(0).widthInches, 55.0 + 5e-10);
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 55.0 + 2e-9}}, false), widthRefusal);
}

TEST(SizingArtworks, turnsAnArtworkThatIsTooLongToTurnAtItsPresentSize) {
    // At its present size of 40 x 80 inches it could not lie across the roll.
    const RollLayout sized = RollLayout({artwork(40, 80)}).sizingArtworks({{test::id(1), 50.0, 25.0}}, true);
    EXPECT_EQ(sized.items.at(0).rotationQuarterTurns, 1);
    EXPECT_EQ(sized.items.at(0).widthInches, 50.0);
}

TEST(SizingArtworks, asksForADimension) {
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1)}}, true),
              "“art1”: Enter at least an artwork width or height in inches.");
}

TEST(SizingArtworks, refusesDimensionsThatAreNotPositive) {
    for (const double bad : {0.0, -1.0, nan, infinity}) {
        for (const Requests& requests : {Requests{{test::id(1), bad}}, Requests{{test::id(1), std::nullopt, bad}},
                                         Requests{{test::id(1), 24.0, bad}}}) {
            EXPECT_EQ(sizingRefusal(threeByTwo(), requests, true),
                      "“art1”: Artwork width and height must be valid positive values in inches.");
        }
    }
}

TEST(SizingArtworks, refusesDimensionsThatFollowBeyondAllNumbers) {
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), std::nullopt, 1.7e308}}, true),
              "“art1”: The dimensions calculated from the source aspect ratio are invalid. Batch sizes were not "
              "applied.");
}

TEST(SizingArtworks, passesOnARefusalOfTheResizeAsItIs) {
    // Out there the edges of so small an image are one number.
    EXPECT_EQ(sizingRefusal(RollLayout({artworkAt(0, 1e15, 5, 10)}), {{test::id(1), 1e-12}}, false),
              "These coordinates or dimensions exceed the precision needed to retain the artwork and its 2.5-inch "
              "manual-trim borders.");
}

TEST(SizingArtworks, givesACopyWithoutRequests) {
    EXPECT_EQ(threeByTwo().sizingArtworks({}, true), threeByTwo());
}

TEST(SizingArtworks, leavesTheOthersAndTheOrderAlone) {
    const RollLayout layout({artworkAt(0, 0, 30, 20, 1), artworkAt(35, 0, 20, 10, 2), artworkAt(0, 40, 10, 10, 3)});
    const RollLayout sized = layout.sizingArtworks({{test::id(3), 12.0}, {test::id(1), 27.0}}, true);
    RollLayout expected = layout;
    expected.items[0].widthInches = 27.0;
    expected.items[2].widthInches = 12.0;
    EXPECT_EQ(sized, expected);
}

TEST(SizingArtworks, checksTheLayoutBeforeTheRequests) {
    const Requests repeated{{test::id(1), 10.0}, {test::id(1), 12.0}};
    RollLayout layout({artworkAt(0, -1, 10, 10, 1), artworkAt(0, 0, 10, 10, 1)}, 70.0);
    layout.schemaVersion = 0;
    EXPECT_EQ(sizingRefusal(layout, repeated, true), "This roll layout version is unsupported.");
    layout.schemaVersion = 1;
    EXPECT_EQ(
        sizingRefusal(layout, repeated, true),
        "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch white "
        "borders.");
    layout.widthInches = 60.0;
    EXPECT_EQ(sizingRefusal(layout, repeated, true), "Duplicate artwork IDs. Batch sizes were not applied.");
    layout.items[1].id = test::id(2);
    EXPECT_EQ(sizingRefusal(layout, repeated, true),
              "“art1”: Artwork positions must be valid nonnegative values in inches.");
    layout.items[0].yInches = 20.0;
    EXPECT_EQ(sizingRefusal(layout, repeated, true),
              "Duplicate size requests for the same artwork. Batch sizes were not applied.");
    EXPECT_EQ(sizingRefusal(layout, {{test::id(1)}, {test::id(3), 10.0}}, true),
              "The batch includes artwork that no longer exists. Reopen the size list.");
}

TEST(SizingArtworks, refusesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1)}}, true), "「art1」：请至少输入作品的宽度或高度（英寸）。");
    EXPECT_EQ(sizingRefusal(threeByTwo(), {{test::id(1), 57.0}}, false),
              "「art1」：加两侧各 2.5 英寸白边后，此作品超出 60 英寸卷布。请修改尺寸，或允许旋转 90°。"
              "应用不会自动缩小作品。");
}

// The parser

Requests parsed(const char* text, const QList<QUuid>& ids = {test::id(1)}) {
    return BatchArtworkSizeParser::requests(QString::fromUtf8(text), ids);
}

std::string parsingRefusal(const char* text, const QList<QUuid>& ids = {test::id(1)}) {
    return refusalOf([&] { (void)parsed(text, ids); });
}

std::string badLine(int number) {
    return QStringLiteral("Invalid dimensions on line %1. Enter a positive width × height pair, such as 24 × 16, in "
                          "inches.")
        .arg(number)
        .toStdString();
}

TEST(BatchArtworkSizeParser, takesEveryUsualWayToWriteAPair) {
    for (const char* text : {"24x16", "24 X 16", "24 × 16", "24   16", "24\t16", "24×16", "  24 x16 ", "24\u00a016",
                             "24\u300016", "24 xX× 16", "x24 16x", "2.4e1 +16.0", "\n\n24 16\r\n", "24 16\u2028"}) {
        EXPECT_EQ(parsed(text), (Requests{{test::id(1), 24.0, 16.0}})) << text;
    }
}

TEST(BatchArtworkSizeParser, refusesWhatIsNoPairOfPositiveNumbers) {
    for (const char* text : {"24", "24 × 16 × 2", "0 × 5", "-1 × 5", "24,5 × 16", "24 × 16 in", "inf 5", "nan 5",
                             "5 1e999", "5 1e-999", "24*16", "２４ １６", "24 16\"", "0x10 5", "1_0 5", "1,000 5"}) {
        EXPECT_EQ(parsingRefusal(text), badLine(1)) << text;
    }
}

TEST(BatchArtworkSizeParser, readsNumbersAlikeInEveryLocale) {
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const std::string comma = parsingRefusal("24,5 × 16");
    const Requests point = parsed("24.5 × 16");
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(comma, badLine(1));
    EXPECT_EQ(point, (Requests{{test::id(1), 24.5, 16.0}}));
}

TEST(BatchArtworkSizeParser, pairsLinesWithIdsInOrder) {
    EXPECT_EQ(parsed("1 2\n\n \t \n3 4\v5 6", {test::id(9), test::id(7), test::id(8)}),
              (Requests{{test::id(9), 1.0, 2.0}, {test::id(7), 3.0, 4.0}, {test::id(8), 5.0, 6.0}}));
    EXPECT_EQ(parsed("", {}), Requests{});
}

TEST(BatchArtworkSizeParser, countsOnlyLinesThatAreNotEmpty) {
    EXPECT_EQ(parsingRefusal("\n1 2\n\n3\n4 5 6", {test::id(1), test::id(2), test::id(3)}), badLine(2));
}

TEST(BatchArtworkSizeParser, wantsALineForEachId) {
    EXPECT_EQ(parsingRefusal("1 2\n3 4", {test::id(1), test::id(2), test::id(3)}),
              "Enter one width × height pair per artwork in list order: 3 lines are required; 2 were provided.");
    EXPECT_EQ(parsingRefusal("1 2\nx", {test::id(1)}),
              "Enter one width × height pair per artwork in list order: 1 lines are required; 2 were provided.");
}

TEST(BatchArtworkSizeParser, refusesRepeatedIdsFirst) {
    EXPECT_EQ(parsingRefusal("x", {test::id(1), test::id(1)}),
              "The artwork list contains duplicate IDs. Reopen the size list.");
}

TEST(BatchArtworkSizeParser, refusesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(parsingRefusal("24"), "第 1 行的尺寸无效。请输入一对正数的宽 × 高，例如 24 × 16（英寸）。");
    EXPECT_EQ(parsingRefusal(""), "请按列表顺序为每件作品输入一行宽 × 高：需要 1 行，实际提供了 0 行。");
}

} // namespace
} // namespace orvex
