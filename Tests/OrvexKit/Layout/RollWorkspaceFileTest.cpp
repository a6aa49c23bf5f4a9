#include "Layout/RollWorkspaceFile.h"

#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "LayoutFile.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using test::artworkAt;
using test::layoutFile;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

constexpr auto badFile = "The layout file version or data is invalid. The original file has been retained.";

RollWorkspaceFile sampleFile() {
    RollWorkspaceFile file;
    file.layout = RollLayout({artworkAt(1.5, 2, 10, 20)});
    file.selection = test::id(1);
    file.sizingDescriptions.insert(QStringLiteral("00000001-0000-0000-0000-000000000000"),
                                   QStringLiteral("24 × 16 in/out"));
    file.gapInches = 0.25;
    return file;
}

TEST(RollWorkspaceFile, isWrittenSortedWithPlainSlashes) {
    EXPECT_EQ(sampleFile().encode().toStdString(), layoutFile);
}

TEST(RollWorkspaceFile, isReadAsWritten) {
    EXPECT_EQ(RollWorkspaceFile::decode(layoutFile), sampleFile());
}

TEST(RollWorkspaceFile, leavesOutAnAbsentSelection) {
    RollWorkspaceFile file = sampleFile();
    file.selection.reset();
    EXPECT_FALSE(file.toJson().contains(u"selection"));
    EXPECT_EQ(RollWorkspaceFile::decode(file.encode()), file);
}

TEST(RollWorkspaceFile, readsANullSelectionAsNone) {
    const auto file = RollWorkspaceFile::decode(
        R"({"version":1,"layout":{"schemaVersion":1,"items":[]},"selection":null,"sizingDescriptions":{},"gapInches":0})");
    EXPECT_EQ(file, RollWorkspaceFile());
}

std::string decodingFailure(const QJsonObject& object) {
    try {
        (void)RollWorkspaceFile::decode(platform::writeJson(object, platform::JsonForm::compactLine));
    } catch (const platform::JsonError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

TEST(RollWorkspaceFile, requiresEveryKeyButTheSelection) {
    const QJsonObject whole = sampleFile().toJson();
    ASSERT_EQ(whole.size(), 5);
    for (const QString& key : whole.keys()) {
        QJsonObject part = whole;
        part.remove(key);
        EXPECT_EQ(decodingFailure(part),
                  key == u"selection" ? "(none)" : key.toStdString() + ": The required key is missing.");
    }
}

TEST(RollWorkspaceFile, refusesWrongTypesAtTheirKeys) {
    QJsonObject object = sampleFile().toJson();
    object[u"selection"] = QStringLiteral("art1");
    EXPECT_EQ(decodingFailure(object), "selection: Expected a UUID.");
    object = sampleFile().toJson();
    object[u"sizingDescriptions"] = QJsonObject{{QStringLiteral("a"), 1}};
    EXPECT_EQ(decodingFailure(object), "sizingDescriptions.a: Expected text.");
    object = sampleFile().toJson();
    QJsonObject layout = object[u"layout"].toObject();
    layout[u"widthInches"] = 4;
    object[u"layout"] = layout;
    EXPECT_EQ(decodingFailure(object),
              "layout.widthInches: Roll width must be a valid value greater than 5 and no more "
              "than 60 inches to retain both 2.5-inch white borders.");
}

TEST(RollWorkspaceFile, isNotWrittenWithNumbersThatJsonLacks) {
    RollWorkspaceFile file = sampleFile();
    file.gapInches = nan;
    EXPECT_THROW((void)file.encode(), platform::JsonInvalidNumber);
    file = sampleFile();
    file.layout.widthInches = 61.0;
    EXPECT_THROW((void)file.encode(), platform::JsonInvalidNumber);
}

std::string validationOf(void (*change)(RollWorkspaceFile&)) {
    RollWorkspaceFile file = sampleFile();
    file.layout.items.append(artworkAt(20, 2, 10, 20, 2));
    change(file);
    return test::refusalOf([&] { file.validate(); });
}

TEST(RollWorkspaceFile, isValidWithWhatOnlyExportRefuses) {
    EXPECT_EQ(validationOf([](RollWorkspaceFile&) {}), "(none)");
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.gapInches = -0.0; }), "(none)");
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.layout.items[1].xInches = 2.0; }), "(none)");
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.layout.items.clear(); }), "(none)");
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.selection = test::id(77); }), "(none)");
}

TEST(RollWorkspaceFile, refusesAnotherVersionRepeatedIdsAndABadGapAlike) {
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.version = 2; }), badFile);
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.layout.schemaVersion = 2; }), badFile);
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.layout.items[1].id = test::id(1); }), badFile);
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.gapInches = -0.001; }), badFile);
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.gapInches = nan; }), badFile);
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) {
                  f.version = 0;
                  f.layout.widthInches = 70.0;
              }),
              badFile);
}

TEST(RollWorkspaceFile, refusesTheWidthAndThenEachArtworkInItsOwnWords) {
    EXPECT_EQ(
        validationOf([](RollWorkspaceFile& f) { f.layout.widthInches = 70.0; }),
        "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch white "
        "borders.");
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) {
                  f.layout.items[0].xInches = 58.0;
                  f.layout.items[1].xInches = -1.0;
              }),
              "The complete manual-trim frame must lie within the 60-inch roll.");
}

TEST(RollWorkspaceFile, refusesInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(validationOf([](RollWorkspaceFile& f) { f.version = 2; }), "排版文件的版本或数据无效。原文件已保留。");
}

} // namespace
} // namespace orvex
