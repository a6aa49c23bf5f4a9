#include "Layout/Document.h"

#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

using platform::JsonReader;
using test::messageOf;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto notNumbers = "Dimensions must be valid numbers.";
constexpr auto outOfRange = "Page width must be 1.969–60 inches and height 1.969–708.661 inches. Both must exceed 5 "
                            "inches for a 2.5-inch border "
                            "on every side. Check device and media limits as well.";
constexpr auto badMargins = "Margins must be nonnegative and less than half the shorter page dimension.";

DocumentSettings page(double widthMM, double heightMM, double marginMM) {
    DocumentSettings settings;
    settings.widthMM = widthMM;
    settings.heightMM = heightMM;
    settings.marginMM = marginMM;
    return settings;
}

TEST(DocumentSettings, beginsAsAnA4PageOnTheRoll) {
    const DocumentSettings settings;
    EXPECT_EQ(settings.widthMM, 210.0);
    EXPECT_EQ(settings.heightMM, 297.0);
    EXPECT_EQ(settings.marginMM, 10.0);
    EXPECT_EQ(settings.placement, Placement::fit);
    EXPECT_EQ(settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(settings.mediaNote, QString());
    EXPECT_EQ(settings.driverPageSize, QString());
    EXPECT_EQ(messageOf(settings.validationError()), "(none)");
}

struct PageRule {
    const char* name;
    DocumentSettings settings;
    const char* expected;
};

void PrintTo(const PageRule& param, std::ostream* out) {
    *out << param.name;
}

class DocumentSettingsValidation : public ::testing::TestWithParam<PageRule> {};

TEST_P(DocumentSettingsValidation, reportsTheFirstRuleBroken) {
    EXPECT_EQ(messageOf(GetParam().settings.validationError()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rules, DocumentSettingsValidation,
                         ::testing::Values(PageRule{"widthNaN", page(nan, 0, 0), notNumbers},
                                           PageRule{"heightInfinite", page(60, infinity, 0), notNumbers},
                                           PageRule{"marginNaN", page(60, 60, nan), notNumbers},
                                           PageRule{"narrowest", page(50, 50, 0), "(none)"},
                                           PageRule{"tooNarrow", page(49.999, 60, -1), outOfRange},
                                           PageRule{"widest", page(1524, 1000, 10), "(none)"},
                                           PageRule{"tooWide", page(1524.0000000001, 1000, 10), outOfRange},
                                           PageRule{"longest", page(60, 18000, 0), "(none)"},
                                           PageRule{"tooLong", page(60, 18000.00001, 0), outOfRange},
                                           PageRule{"tooShort", page(60, 49.9, 0), outOfRange},
                                           PageRule{"negativeMargin", page(60, 60, -0.001), badMargins},
                                           PageRule{"noMargin", page(60, 60, 0), "(none)"},
                                           PageRule{"marginsMeet", page(100, 60, 30), badMargins},
                                           PageRule{"marginsAlmostMeet", page(100, 60, 29.999), "(none)"}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(DocumentSettings, reportsItsRulesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(messageOf(page(nan, 0, 0).validationError()), "尺寸必须是有效数字。");
    EXPECT_EQ(messageOf(page(60, 60, 30).validationError()), "页边距不能为负，且须小于页面短边的一半。");
}

TEST(DocumentSettings, measuresThePageInPoints) {
    const DocumentSettings settings = page(254.0, 508.0, 25.4);
    EXPECT_EQ(settings.pageSize(), (Size{720.0, 1440.0}));
    EXPECT_EQ(settings.contentRect(), (Rect{72.0, 72.0, 576.0, 1296.0}));
}

TEST(DocumentSettings, fitsAnImageIntoTheMiddleOfTheContent) {
    EXPECT_EQ(page(254.0, 508.0, 25.4).imageRect(300, 200), (Rect{72.0, 528.0, 576.0, 384.0}));
}

TEST(DocumentSettings, fillsTheContentAndOverhangsIt) {
    DocumentSettings settings = page(254.0, 508.0, 25.4);
    settings.placement = Placement::fill;
    EXPECT_EQ(settings.imageRect(300, 200), (Rect{-612.0000000000001, 72.0, 1944.0000000000002, 1296.0}));
}

TEST(DocumentSettings, givesAnImageWithoutPixelsNoArea) {
    const Rect none = page(254.0, 508.0, 25.4).imageRect(0, 0);
    EXPECT_EQ(none, (Rect{360.0, 720.0, 0.0, 0.0}));
    EXPECT_EQ(page(254.0, 508.0, 25.4).imageRect(0, 200).width, 0.0);
}

TEST(Placement, isStoredInChineseInEveryLanguage) {
    EXPECT_EQ(rawValue(Placement::fit), QStringLiteral("完整放入"));
    EXPECT_EQ(rawValue(Placement::fill), QStringLiteral("填满并裁边"));
    EXPECT_EQ(placement(QStringLiteral("完整放入")), Placement::fit);
    EXPECT_EQ(placement(QStringLiteral("填满并裁边")), Placement::fill);
    EXPECT_EQ(placement(QStringLiteral("Fit whole image")), std::nullopt);
}

TEST(Placement, isLabelledInTheCurrentLanguage) {
    EXPECT_EQ(label(Placement::fit).toStdString(), "Fit whole image");
    EXPECT_EQ(label(Placement::fill).toStdString(), "Fill and crop");
    const test::InChinese chinese;
    EXPECT_EQ(label(Placement::fit).toStdString(), "完整放入");
    EXPECT_EQ(label(Placement::fill).toStdString(), "填满并裁边");
}

constexpr auto storedSettings = R"({
    "driverPageSize": "Custom.4320x3000",
    "heightMM": 1058.3333333333333,
    "marginMM": 63.5,
    "mediaNote": "a/b",
    "paperSource": "卷纸",
    "placement": "填满并裁边",
    "widthMM": 1524
}
)";

DocumentSettings decoded(const QByteArray& json) {
    return DocumentSettings::fromJson(JsonReader::parse(json));
}

TEST(DocumentSettingsJson, readsAndWritesItsSevenKeys) {
    const DocumentSettings settings = decoded(storedSettings);
    EXPECT_EQ(settings.widthMM, 1524.0);
    EXPECT_EQ(settings.heightMM, 1058.3333333333333);
    EXPECT_EQ(settings.marginMM, 63.5);
    EXPECT_EQ(settings.placement, Placement::fill);
    EXPECT_EQ(settings.paperSource, QStringLiteral("卷纸"));
    EXPECT_EQ(settings.mediaNote, QStringLiteral("a/b"));
    EXPECT_EQ(settings.driverPageSize, QStringLiteral("Custom.4320x3000"));
    EXPECT_EQ(platform::writeJson(settings.toJson(), platform::JsonForm::pretty), storedSettings);
}

TEST(DocumentSettingsJson, requiresEveryKey) {
    const QJsonObject whole = DocumentSettings().toJson();
    ASSERT_EQ(whole.size(), 7);
    for (const QString& key : whole.keys()) {
        QJsonObject part = whole;
        part.remove(key);
        try {
            (void)decoded(platform::writeJson(part, platform::JsonForm::compactLine));
            ADD_FAILURE() << key.toStdString() << " is missed by no one";
        } catch (const platform::JsonError& error) {
            EXPECT_EQ(error.keyPath(), key);
            EXPECT_EQ(error.description().toStdString(), "The required key is missing.");
        }
    }
}

TEST(DocumentSettingsJson, refusesAnUnknownPlacement) {
    QJsonObject object = DocumentSettings().toJson();
    object[QStringLiteral("placement")] = QStringLiteral("fit");
    try {
        (void)decoded(platform::writeJson(object, platform::JsonForm::compactLine));
        FAIL();
    } catch (const platform::JsonError& error) {
        EXPECT_EQ(error.message().toStdString(), "placement: Unknown placement.");
    }
}

TEST(DocumentSettingsJson, writesNumbersThatJsonLacksOnlyWhereAskedTo) {
    const DocumentSettings settings = page(nan, infinity, -infinity);
    EXPECT_THROW((void)settings.toJson(), platform::JsonInvalidNumber);
    const QJsonObject lenient = settings.toJson(platform::JsonNumbers::orNonFiniteText);
    EXPECT_EQ(lenient[u"widthMM"].toString(), u"NaN");
    EXPECT_EQ(lenient[u"heightMM"].toString(), u"Infinity");
    EXPECT_EQ(lenient[u"marginMM"].toString(), u"-Infinity");
}

} // namespace
} // namespace orvex
