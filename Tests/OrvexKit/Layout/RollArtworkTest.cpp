#include "Layout/RollArtwork.h"

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
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto badSource = "Artwork must reference a local source image file.";
constexpr auto badPixels = "Artwork pixel width and height must be positive.";
constexpr auto badOriginals = "Original physical dimensions must be valid positive values in inches.";
constexpr auto badRotation = "Rotation must be 0, 90, 180 or 270 degrees.";
constexpr auto badAspect = "The original physical dimensions do not match the pixel aspect ratio. The operation was "
                           "stopped to avoid distortion.";
constexpr auto badSize = "Artwork dimensions must be valid positive values in inches.";
constexpr auto tooWide =
    "The artwork width plus two 2.5-inch manual-trim borders must not exceed 60 inches. Reduce its size.";
constexpr auto badRollWidth =
    "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both "
    "2.5-inch white borders.";
constexpr auto badPosition = "Artwork positions must be valid nonnegative values in inches.";
constexpr auto outside60 = "The complete manual-trim frame must lie within the 60-inch roll.";
constexpr auto imprecise = "These coordinates or dimensions exceed the precision needed to retain the artwork and its "
                           "2.5-inch manual-trim borders.";

RollArtworkSource source() {
    return {.id = test::id(7),
            .sourceURL = QUrl(QStringLiteral("file:///a%20b/my%20picture.png")),
            .pixelWidth = 600,
            .pixelHeight = 300};
}

TEST(RollArtwork, isMadeWithWhatItsSourceLeavesOut) {
    const RollArtwork made = RollArtwork::make(source());
    EXPECT_EQ(made.id, test::id(7));
    EXPECT_EQ(made.title, u"my picture.png");
    EXPECT_EQ(made.pixelWidth, 600);
    EXPECT_EQ(made.pixelHeight, 300);
    EXPECT_EQ(made.originalWidthInches, 2.0);
    EXPECT_EQ(made.originalHeightInches, 1.0);
    EXPECT_EQ(made.widthInches, 2.0);
    EXPECT_EQ(made.xInches, 0.0);
    EXPECT_EQ(made.yInches, 0.0);
    EXPECT_EQ(made.rotationQuarterTurns, 0);
}

TEST(RollArtwork, spreadsThePixelsOfItsDisplayedSideOverItsWidth) {
    RollArtwork artwork = RollArtwork::make(source());
    EXPECT_EQ(artwork.effectivePixelsPerInch(), 300.0);
    artwork.widthInches = 4.0;
    EXPECT_EQ(artwork.effectivePixelsPerInch(), 150.0);
    artwork.rotationQuarterTurns = 3; // 300 pixels lie on the 4 inches now
    EXPECT_EQ(artwork.effectivePixelsPerInch(), 75.0);
}

TEST(RollArtwork, takesTheNaturalWidthOfItsTurn) {
    RollArtworkSource turned = source();
    turned.rotationQuarterTurns = 3;
    EXPECT_EQ(RollArtwork::make(turned).widthInches, 1.0);
    turned.rotationQuarterTurns = -1; // Stored as given, and odd.
    EXPECT_EQ(RollArtwork::make(turned).widthInches, 1.0);
    EXPECT_EQ(RollArtwork::make(turned).rotationQuarterTurns, -1);
}

TEST(RollArtwork, keepsWhatItsSourceStates) {
    RollArtworkSource whole = source();
    whole.title = QStringLiteral("Title");
    whole.originalWidthInches = 20.0;
    whole.originalHeightInches = 10.0;
    whole.widthInches = 5.0;
    whole.xInches = 1.5;
    whole.yInches = 2.5;
    const RollArtwork made = RollArtwork::make(whole);
    EXPECT_EQ(made.title, u"Title");
    EXPECT_EQ(made.originalWidthInches, 20.0);
    EXPECT_EQ(made.originalHeightInches, 10.0);
    EXPECT_EQ(made.widthInches, 5.0);
    EXPECT_EQ(made.xInches, 1.5);
    EXPECT_EQ(made.yInches, 2.5);
}

TEST(RollArtwork, isTitledAfterTheLastComponentOfItsPath) {
    RollArtworkSource named = source();
    const auto titleOf = [&](const char* url) {
        named.sourceURL = QUrl(QString::fromUtf8(url));
        return RollArtwork::make(named).title.toStdString();
    };
    EXPECT_EQ(titleOf("file:///a/b.png"), "b.png");
    EXPECT_EQ(titleOf("file:///a/b/"), "b");
    EXPECT_EQ(titleOf("file:///a/50%25%20%E7%94%BB.tif"), "50% 画.tif");
    EXPECT_EQ(titleOf("file:///"), "/");
    EXPECT_EQ(titleOf("file:b.png"), "b.png");
}

TEST(RollArtwork, differsInEveryField) {
    const RollArtwork one = artworkAt(1, 2, 3, 4);
    RollArtwork other = one;
    EXPECT_EQ(other, one);
    other.rotationQuarterTurns = 2;
    EXPECT_NE(other, one);
    other = one;
    other.yInches = 2.0000000001;
    EXPECT_NE(other, one);
    other = one;
    other.title = QStringLiteral("other");
    EXPECT_NE(other, one);
}

TEST(RollArtwork, swapsItsNaturalSizeWithAnOddTurn) {
    RollArtwork turned = artwork(10, 20);
    turned.rotationQuarterTurns = 1;
    turned.widthInches = 40.0;
    EXPECT_EQ(turned.naturalWidthInches(), 20.0);
    EXPECT_EQ(turned.naturalHeightInches(), 10.0);
    EXPECT_EQ(turned.heightInches(), 20.0);
    EXPECT_EQ(turned.scale(), 2.0);
    EXPECT_EQ(turned.scalePercent(), 200.0);
    turned.rotationQuarterTurns = 2;
    EXPECT_EQ(turned.naturalWidthInches(), 10.0);
    EXPECT_EQ(turned.heightInches(), 80.0);
}

TEST(RollArtwork, dividesBeforeItMultipliesForItsHeight) {
    RollArtwork thirds = artwork(3, 1);
    thirds.widthInches = 2.1;
    EXPECT_EQ(thirds.heightInches(), 2.1 * (1.0 / 3.0));
    EXPECT_NE(thirds.heightInches(), 2.1 * 1.0 / 3.0);
}

TEST(RollArtwork, hasABorderOfTwoAndAHalfInchesOnEverySide) {
    const RollArtwork placed = artworkAt(1, 2, 10, 20);
    EXPECT_EQ(placed.trimRectInches(), (Rect{1.0, 2.0, 15.0, 25.0}));
    EXPECT_EQ(placed.artworkRectInches(), (Rect{3.5, 4.5, 10.0, 20.0}));
}

RollArtwork with(void (*change)(RollArtwork&)) {
    RollArtwork changed = artwork(30, 20);
    change(changed);
    return changed;
}

struct Rule {
    const char* name;
    RollArtwork artwork;
    double rollWidth;
    const char* expected;
};

void PrintTo(const Rule& param, std::ostream* out) {
    *out << param.name;
}

class RollArtworkValidation : public ::testing::TestWithParam<Rule> {};

TEST_P(RollArtworkValidation, reportsTheFirstRuleBroken) {
    EXPECT_EQ(messageOf(GetParam().artwork.validationError(GetParam().rollWidth)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    RollWidths, RollArtworkValidation,
    ::testing::Values(
        Rule{"sixty", artwork(55, 20), 60.0, "(none)"},
        Rule{"beyondSixty", artwork(30, 20), 60.0000000001, badRollWidth},
        Rule{"five", artwork(0.001, 0.001), 5.0, badRollWidth}, Rule{"notANumber", artwork(30, 20), nan, badRollWidth},
        Rule{"beforeTheArtwork", with([](RollArtwork& a) { a.sourceURL.clear(); }), infinity, badRollWidth},
        Rule{"barelyAboveFive", with([](RollArtwork& a) { a.widthInches = 0.000001; }), 5.000001, "(none)"},
        Rule{"barelyAboveFiveByTheTolerance", with([](RollArtwork& a) { a.widthInches = 0.0000010009; }), 5.000001,
             "(none)"},
        Rule{"barelyAboveFiveAndTooWide", with([](RollArtwork& a) { a.widthInches = 0.0000010011; }), 5.000001,
             "The artwork width plus two 2.5-inch manual-trim borders must not exceed 5 inches. Change its "
             "size or rotate it explicitly."}),
    [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Core, RollArtworkValidation,
    ::testing::Values(
        Rule{"webAddress", with([](RollArtwork& a) { a.sourceURL = QUrl(QStringLiteral("https://a.example/b.png")); }),
             60.0, badSource},
        Rule{"relativePath", with([](RollArtwork& a) { a.sourceURL = QUrl(QStringLiteral("file:b.png")); }), 60.0,
             badSource},
        Rule{"noAddress", with([](RollArtwork& a) { a.sourceURL.clear(); }), 60.0, badSource},
        Rule{"noPixelsAcross", with([](RollArtwork& a) { a.pixelWidth = 0; }), 60.0, badPixels},
        Rule{"negativePixelsDown", with([](RollArtwork& a) { a.pixelHeight = -1; }), 60.0, badPixels},
        Rule{"noOriginalWidth", with([](RollArtwork& a) { a.originalWidthInches = 0.0; }), 60.0, badOriginals},
        Rule{"infiniteOriginalHeight", with([](RollArtwork& a) { a.originalHeightInches = infinity; }), 60.0,
             badOriginals},
        Rule{"fourTurns", with([](RollArtwork& a) { a.rotationQuarterTurns = 4; }), 60.0, badRotation},
        Rule{"negativeTurns", with([](RollArtwork& a) { a.rotationQuarterTurns = -1; }), 60.0, badRotation},
        Rule{"aspectWithinTolerance", with([](RollArtwork& a) { a.originalWidthInches *= 1.0 + 1e-11; }), 60.0,
             "(none)"},
        Rule{"aspectBeyondTolerance", with([](RollArtwork& a) { a.originalWidthInches *= 1.0 + 1e-9; }), 60.0,
             badAspect},
        Rule{"aspectNotFinite", with([](RollArtwork& a) {
                 a.originalWidthInches = 1e300;
                 a.originalHeightInches = 1e-300;
             }),
             60.0, badAspect},
        Rule{"noWidth", with([](RollArtwork& a) { a.widthInches = 0.0; }), 60.0, badSize},
        Rule{"widthNaN", with([](RollArtwork& a) { a.widthInches = nan; }), 60.0, badSize},
        Rule{"heightUnderflows", with([](RollArtwork& a) {
                 a.pixelWidth = 1000000;
                 a.pixelHeight = 1;
                 a.originalHeightInches = 30.0 / 1000000.0;
                 a.widthInches = 5e-324;
             }),
             60.0, badSize},
        Rule{"widest", artwork(55, 20), 60.0, "(none)"},
        Rule{"widestByTheTolerance", with([](RollArtwork& a) { a.widthInches = 55.0000000005; }), 60.0, "(none)"},
        Rule{"tooWide", with([](RollArtwork& a) { a.widthInches = 55.00000001; }), 60.0, tooWide},
        Rule{"tooWideForAnyRollFirst", with([](RollArtwork& a) { a.widthInches = 56.0; }), 24.0, tooWide},
        Rule{"tooWideForThisRoll", artwork(30, 20), 24.5,
             "The artwork width plus two 2.5-inch manual-trim borders must not exceed 24.5 inches. Change its size or "
             "rotate it explicitly."}),
    [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Position, RollArtworkValidation,
    ::testing::Values(Rule{"xNaN", artworkAt(nan, 0, 30, 20), 60.0, badPosition},
                      Rule{"yInfinite", artworkAt(0, infinity, 30, 20), 60.0, badPosition},
                      Rule{"xNegative", artworkAt(-1e-12, 0, 30, 20), 60.0, badPosition},
                      Rule{"yNegative", artworkAt(0, -1, 30, 20), 60.0, badPosition},
                      Rule{"negativeZero", artworkAt(-0.0, -0.0, 30, 20), 60.0, "(none)"},
                      Rule{"atTheRightEdge", artworkAt(25, 0, 30, 20), 60.0, "(none)"},
                      Rule{"atTheRightEdgeByTheTolerance", artworkAt(25.0000000005, 0, 30, 20), 60.0, "(none)"},
                      Rule{"overTheRightEdge", artworkAt(25.00000001, 0, 30, 20), 60.0, outside60},
                      Rule{"farOutside", artworkAt(1e300, 0, 30, 20), 60.0, outside60},
                      Rule{"lowestOfAll", artworkAt(0, std::numeric_limits<double>::max(), 30, 20), 60.0, imprecise},
                      Rule{"tooFarForItsBorders", artworkAt(0, 1e17, 30, 20), 60.0, imprecise},
                      Rule{"farButPrecise", artworkAt(0, 1e12, 30, 20), 60.0, "(none)"},
                      Rule{"widthLostInItsBorder", with([](RollArtwork& a) { a.widthInches = 1e-300; }), 60.0,
                           imprecise}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(RollArtwork, namesTheRollWidthInTheLocale) {
    EXPECT_EQ(messageOf(artworkAt(20, 0, 30, 20).validationError(42.125)),
              "The complete manual-trim frame must lie within the 42.125-inch roll.");
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    const auto german = messageOf(artworkAt(20, 0, 30, 20).validationError(42.125));
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    EXPECT_EQ(german, "The complete manual-trim frame must lie within the 42,125-inch roll.");
}

TEST(RollArtwork, isValidatedForSixtyInchesByDefault) {
    EXPECT_EQ(messageOf(artworkAt(25, 0, 30, 20).validationError()), "(none)");
    EXPECT_EQ(messageOf(artworkAt(26, 0, 30, 20).validationError()), outside60);
}

TEST(RollArtwork, validatesItsSizeWithoutItsPosition) {
    EXPECT_EQ(messageOf(artworkAt(nan, -1, 30, 20).sizeValidationError(60.0)), "(none)");
    EXPECT_EQ(messageOf(artworkAt(nan, -1, 30, 20).coreValidationError()), "(none)");
    EXPECT_EQ(messageOf(artwork(30, 20).sizeValidationError(70.0)), badRollWidth);
}

TEST(RollArtwork, reportsItsRulesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(messageOf(with([](RollArtwork& a) { a.sourceURL.clear(); }).coreValidationError()),
              "作品的原图必须是本机文件。");
    EXPECT_EQ(messageOf(artwork(30, 20).sizeValidationError(24.5)),
              "作品宽度加两侧各 2.5 英寸手裁白边不能超过 24.5 英寸。请手动修改尺寸或旋转作品。");
    EXPECT_EQ(messageOf(artworkAt(25.1, 0, 30, 20).validationError()), "完整的手裁框必须位于 60 英寸卷布之内。");
    EXPECT_EQ(messageOf(rollWidthValidationError(5.0)),
              "卷布宽度必须是大于 5 且不超过 60 英寸的有效数值，才能保留两侧各 2.5 英寸白边。");
}

} // namespace
} // namespace orvex
