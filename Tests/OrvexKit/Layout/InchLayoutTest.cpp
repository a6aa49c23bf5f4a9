#include "Layout/InchLayout.h"

#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace orvex {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(PrintUnits, holdsTheConstants) {
    EXPECT_EQ(PrintUnits::mmPerInch, 25.4);
    EXPECT_EQ(PrintUnits::whiteBorderInches, 2.5);
    EXPECT_EQ(PrintUnits::bothBordersInches, 5.0);
    EXPECT_EQ(PrintUnits::whiteBorderMM, 63.5);
}

TEST(PrintUnits, convertsBetweenInchesAndMillimetres) {
    EXPECT_EQ(PrintUnits::inches(1524.0), 60.0);
    EXPECT_EQ(PrintUnits::inches(18000.0), 708.6614173228347);
    EXPECT_EQ(PrintUnits::millimetres(60.0), 1524.0);
    EXPECT_EQ(PrintUnits::millimetres(2.5), 63.5);
}

TEST(PrintUnits, showsMillimetresAsInchesInTheLocale) {
    EXPECT_EQ(PrintUnits::formatMMAsInches(1524.0).toStdString(), "60");
    EXPECT_EQ(PrintUnits::formatMMAsInches(1000.0).toStdString(), "39.37");
    EXPECT_EQ(PrintUnits::formatMMAsInches(63.5).toStdString(), "2.5");
    EXPECT_EQ(PrintUnits::formatMMAsInches(50000.0).toStdString(), "1968.504");
    EXPECT_EQ(PrintUnits::formatMMAsInches(1000.0, QLocale(QStringLiteral("de_DE"))).toStdString(), "39,37");
}

struct Typed {
    const char* name;
    const char* text;
    const char* locale;
    std::optional<double> expected;
};

void PrintTo(const Typed& param, std::ostream* out) {
    *out << param.name;
}

class ParseDecimalInput : public ::testing::TestWithParam<Typed> {};

TEST_P(ParseDecimalInput, readsPlainDecimalsOnly) {
    const Typed& typed = GetParam();
    EXPECT_EQ(PrintUnits::parseDecimalInput(QString::fromUtf8(typed.text), QLocale(QString::fromUtf8(typed.locale))),
              typed.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseDecimalInput,
    ::testing::Values(Typed{"blanksAndLineFeed", "  12.5\n", "en_US", 12.5},
                      Typed{"everyKindOfBlank", "\u3000\t\u00a0\u2028 7\u0085\v\f\r\u2029", "en_US", 7.0},
                      Typed{"empty", "", "en_US", {}}, Typed{"onlyBlanks", "   ", "en_US", {}},
                      Typed{"blankInside", "1 2", "en_US", {}}, Typed{"germanComma", "1,5", "de_DE", 1.5},
                      Typed{"germanPoint", "1.5", "de_DE", 1.5}, Typed{"commaInEnglish", "1,5", "en_US", {}},
                      Typed{"germanBoth", "1.234,5", "de_DE", {}}, Typed{"arabicSeparator", "1٫5", "ar_EG", 1.5},
                      Typed{"arabicDigits", "١", "ar_EG", {}}, Typed{"exponent", "1e2", "en_US", 100.0},
                      Typed{"upperExponent", "1E-2", "en_US", 0.01}, Typed{"germanExponent", "2,5e1", "de_DE", 25.0},
                      Typed{"plus", "+3", "en_US", 3.0}, Typed{"minus", "-3", "en_US", -3.0},
                      Typed{"pointFirst", ".5", "en_US", 0.5}, Typed{"pointLast", "5.", "en_US", 5.0},
                      Typed{"zero", "0", "en_US", 0.0}, Typed{"twoPoints", "1.2.3", "en_US", {}},
                      Typed{"twoCommas", "1,2,3", "de_DE", {}}, Typed{"twoSigns", "--1", "en_US", {}},
                      Typed{"lonePoint", ".", "en_US", {}}, Typed{"loneComma", ",", "de_DE", {}},
                      Typed{"loneSign", "-", "en_US", {}}, Typed{"loneExponent", "e5", "en_US", {}},
                      Typed{"openExponent", "1e", "en_US", {}}, Typed{"withUnit", "12 in", "en_US", {}},
                      Typed{"overflow", "1e999", "en_US", {}}, Typed{"underflow", "1e-999", "en_US", 0.0},
                      Typed{"hexadecimal", "0x10", "en_US", {}}, Typed{"infinity", "inf", "en_US", {}},
                      Typed{"notANumber", "nan", "en_US", {}}, Typed{"fullWidthDigits", "１２", "zh_CN", {}},
                      Typed{"outsideThePlane", "1\U0001F600", "en_US", {}},
                      Typed{"manyDigits", "0.1000000000000000055511151231257827021181583404541015625", "en_US", 0.1}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ParseDecimalInput, refusesATextWithANulInside) {
    EXPECT_EQ(PrintUnits::parseDecimalInput(QString(QChar(u'1')) + QChar(u'\0'), QLocale::c()), std::nullopt);
}

TEST(CanvasMedia, describesTheRoll) {
    EXPECT_EQ(CanvasMedia::name().toStdString(), "HP Professional Matte Canvas · J3E87B");
    EXPECT_EQ(CanvasMedia::rollWidthMM, 1524.0);
    EXPECT_EQ(CanvasMedia::rollLengthMetres, 15.2);
    EXPECT_TRUE(CanvasMedia::sourceURL().isValid());
    EXPECT_EQ(CanvasMedia::sourceURL().scheme(), u"https");
}

TEST(ArtPrintLayout, holdsTheReferenceFormat) {
    EXPECT_EQ(ArtPrintLayout::maximumPageWidthMM, 1524.0);
    EXPECT_EQ(ArtPrintLayout::orvexPixelWidth, 18000);
    EXPECT_EQ(ArtPrintLayout::orvexPixelHeight, 12000);
    EXPECT_EQ(ArtPrintLayout::orvexPixelCount, 216000000U);
}

TEST(ArtPrintLayout, describesTheReferencePageInTheSameWordsInEveryLanguage) {
    const DocumentSettings settings = ArtPrintLayout::orvex18K60Inch(12.5, Placement::fill);
    EXPECT_EQ(settings.widthMM, 1524.0);
    EXPECT_EQ(settings.heightMM, 1016.0);
    EXPECT_EQ(settings.marginMM, 12.5);
    EXPECT_EQ(settings.placement, Placement::fill);
    EXPECT_EQ(settings.paperSource.toStdString(), "卷纸");
    EXPECT_EQ(settings.mediaNote.toStdString(),
              "ORVEX 18,000 × 12,000 · 60 英寸画布；实际可打印区域须以当前驱动和介质为准");
    EXPECT_EQ(settings.driverPageSize, QString());
}

TEST(EffectivePPI, isThatOfTheImageOnThePage) {
    const auto page = ArtPrintLayout::orvex18K60Inch(63.5, Placement::fit);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(18000, 12000, page), 342.85714285714283);
    const auto square = ArtPrintLayout::orvex18K60Inch(0.0, Placement::fit);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(12000, 12000, square), 300.0);
}

TEST(EffectivePPI, isAbsentWhereRoundingLeavesTheImageNoWidth) {
    DocumentSettings page;
    page.widthMM = 50.0;
    page.heightMM = 100.0;
    page.marginMM = 24.999999999999996;
    ASSERT_EQ(page.validationError(), std::nullopt);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(100, 100, page), std::nullopt);
}

TEST(EffectivePPI, isAbsentWithoutPixelsOrAValidPage) {
    const auto page = ArtPrintLayout::orvex18K60Inch(0.0, Placement::fit);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(0, 100, page), std::nullopt);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(100, -1, page), std::nullopt);
    EXPECT_EQ(ArtPrintLayout::effectivePPI(100, 100, ArtPrintLayout::orvex18K60Inch(-1.0, Placement::fit)),
              std::nullopt);
}

DocumentSettings base() {
    DocumentSettings settings;
    settings.paperSource = QStringLiteral("tray");
    settings.mediaNote = QStringLiteral("note");
    settings.driverPageSize = QStringLiteral("A4");
    settings.placement = Placement::fill;
    return settings;
}

TEST(BorderedArtworkLayout, keepsTheBordersWhileTheImageScales) {
    const auto page = BorderedArtworkLayout::settings(PageWidthInches{60.0}, 18000, 12000, base());
    EXPECT_EQ(page.widthMM, 1524.0);
    EXPECT_EQ(page.heightMM, 1058.3333333333333);
    EXPECT_EQ(page.imageRect(18000, 12000), (Rect{180.0, 180.0, 3960.0, 2640.0}));
}

TEST(BorderedArtworkLayout, takesTheTextsOfThePaperFromTheBase) {
    const auto page = BorderedArtworkLayout::settings(PageWidthInches{60.0}, 18000, 12000, base());
    EXPECT_EQ(page.marginMM, 63.5);
    EXPECT_EQ(page.placement, Placement::fit);
    EXPECT_EQ(page.driverPageSize, QString());
    EXPECT_EQ(page.paperSource, u"tray");
    EXPECT_EQ(page.mediaNote, u"note");
}

TEST(BorderedArtworkLayout, followsAGivenHeight) {
    const auto page = BorderedArtworkLayout::settings(PageHeightInches{41.666666666666664}, 18000, 12000, base());
    EXPECT_EQ(page.widthMM, 1524.0);
    EXPECT_EQ(page.heightMM, 1058.3333333333333);
}

TEST(BorderedArtworkLayout, takesTheLimitForAWidthThatRoundingPutsBeyondIt) {
    // (132.33583489681052 - 5) * 533 / 1234 + 5 is 60.000000000000014 inches, 1524.0000000000002 mm.
    const auto page = BorderedArtworkLayout::settings(PageHeightInches{132.33583489681052}, 533, 1234, base());
    EXPECT_EQ(page.widthMM, 1524.0);
}

TEST(BorderedArtworkLayout, takesTheLimitForAHeightThatRoundingPutsBeyondIt) {
    const auto page = BorderedArtworkLayout::settings(PageWidthInches{5.570228052935847}, 1, 1234, base());
    EXPECT_EQ(page.heightMM, 18000.0);
}

/// The widths or heights, in inches upward from the limit, whose millimetres are snapped, and the first that is not.
template <typename Draft>
void expectSnapping(double limitInches, double limitMM, double roundingMM, Draft&& draftMM) {
    int beyond = 0;
    for (double inches = limitInches; beyond < 3; inches = std::nextafter(inches, infinity)) {
        const double mm = inches * 25.4;
        const bool within = mm <= limitMM + roundingMM;
        EXPECT_EQ(draftMM(inches), within && mm > limitMM ? limitMM : mm);
        beyond += within ? 0 : 1;
    }
}

TEST(BorderedArtworkLayout, snapsExactlySixteenUnitsBeyondTheLimits) {
    expectSnapping(60.0, 1524.0, 3.637978807091713e-12, [](double inches) {
        return BorderedArtworkLayout::draft(PageWidthInches{inches}, 1, 1, DocumentSettings()).widthMM;
    });
    expectSnapping(18000.0 / 25.4, 18000.0, 5.820766091346741e-11, [](double inches) {
        return BorderedArtworkLayout::draft(PageHeightInches{inches}, 1, 1, DocumentSettings()).heightMM;
    });
}

TEST(BorderedArtworkLayout, draftsWithoutAnyValidation) {
    const auto empty = BorderedArtworkLayout::draft(PageWidthInches{15.0}, 0, 0, base());
    EXPECT_EQ(empty.widthMM, 381.0);
    EXPECT_EQ(empty.heightMM, 381.0);
    EXPECT_EQ(BorderedArtworkLayout::draft(PageHeightInches{15.0}, -4, 0, base()).widthMM, 381.0);
    EXPECT_TRUE(std::isnan(BorderedArtworkLayout::draft(PageWidthInches{nan}, 1, 1, base()).widthMM));
    EXPECT_EQ(BorderedArtworkLayout::draft(PageWidthInches{infinity}, 1, 1, base()).widthMM, infinity);
    EXPECT_EQ(BorderedArtworkLayout::draft(PageWidthInches{100.0}, 1, 1, base()).widthMM, 2540.0);
}

constexpr auto badPixels = "Artwork pixel width and height must be positive.";
constexpr auto badDimension =
    "Page dimensions must be valid numbers greater than the combined 5 inches of white borders.";
constexpr auto outOfRange = "Page width must be 1.969–60 inches and height 1.969–708.661 inches. Both must exceed 5 "
                            "inches for a 2.5-inch border "
                            "on every side. Check device and media limits as well.";

std::string widthRefusal(double inches, qint64 pixelWidth = 1, qint64 pixelHeight = 1) {
    return test::refusalOf(
        [&] { (void)BorderedArtworkLayout::settings(PageWidthInches{inches}, pixelWidth, pixelHeight, base()); });
}

std::string heightRefusal(double inches, qint64 pixelWidth = 1, qint64 pixelHeight = 1) {
    return test::refusalOf(
        [&] { (void)BorderedArtworkLayout::settings(PageHeightInches{inches}, pixelWidth, pixelHeight, base()); });
}

TEST(BorderedArtworkLayout, refusesPixelsFirstThenTheDimensionThenThePage) {
    EXPECT_EQ(widthRefusal(nan, 0, 1), badPixels);
    EXPECT_EQ(widthRefusal(20.0, 1, -1), badPixels);
    EXPECT_EQ(heightRefusal(20.0, 1, 0), badPixels);
    EXPECT_EQ(widthRefusal(nan), badDimension);
    EXPECT_EQ(widthRefusal(infinity), badDimension);
    EXPECT_EQ(widthRefusal(5.0), badDimension);
    EXPECT_EQ(heightRefusal(5.0), badDimension);
    EXPECT_EQ(widthRefusal(5.0000001), "(none)");
    EXPECT_EQ(widthRefusal(5.0000001, 1, 100000000000), outOfRange);
    EXPECT_EQ(widthRefusal(60.001), outOfRange);
    EXPECT_EQ(heightRefusal(709.0), outOfRange);
}

TEST(BorderedArtworkLayout, refusesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(widthRefusal(20.0, 0, 1), "作品的像素宽度和高度必须为正数。");
    EXPECT_EQ(widthRefusal(5.0), "页面尺寸必须是有效数字，且须大于两侧白边合计的 5 英寸。");
    EXPECT_EQ(widthRefusal(61.0),
              "页面宽度须为 1.969–60 英寸，高度须为 1.969–708.661 英寸；两者都须大于 5 英寸，四边才能各留 "
              "2.5 英寸白边。另请核对设备和介质的限制。");
}

} // namespace
} // namespace orvex
