#include "Command.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::runCommand;

QJsonObject apply(const QByteArray& line) {
    return QJsonDocument::fromJson(runCommand({q("apply")}, line).output).object();
}

/// An artwork of 50 x 10 or, turned by a quarter in its file, 10 x 50 inches.
QByteArray artwork(const char* id, bool isTall) {
    return QByteArray(R"({"id":"00000000-0000-0000-0000-00000000000)") + id +
           R"(","sourceURL":"file:///tmp/a.jpg","title":"a.jpg","xInches":0,"yInches":0,"rotationQuarterTurns":0,)" +
           (isTall ? R"("pixelWidth":100,"pixelHeight":500,"originalWidthInches":10,"originalHeightInches":50,)"
                     R"("widthInches":10})"
                   : R"("pixelWidth":500,"pixelHeight":100,"originalWidthInches":50,"originalHeightInches":10,)"
                     R"("widthInches":50})");
}

QByteArray layout() {
    return R"({"schemaVersion":1,"items":[)" + artwork("1", false) + "," + artwork("2", true) +
           R"(],"widthInches":60})";
}

QByteArray request(const char* operation, const char* args) {
    return QByteArray(R"({"id":1,"op":")") + operation + R"(","layout":)" + layout() + R"(,"args":)" + args + "}";
}

double lastWidth(const QJsonObject& answer) {
    return answer[q("layout")][q("items")].toArray().last()[q("widthInches")].toDouble();
}

TEST(ApplyCanvasSaving, optimizesAnArrangement) {
    const QJsonObject answer = apply(request("optimizeArrangement", R"({"allowQuarterTurns":true,"gapInches":0})"));
    EXPECT_EQ(answer[q("ok")], true);
    EXPECT_EQ(lastWidth(answer), 50);
    EXPECT_FALSE(answer.contains(q("result")));
}

TEST(ApplyCanvasSaving, changesTheRollWidth) {
    const QJsonObject answer = apply(request("changeRollWidth", R"({"allowQuarterTurns":true,"to":55})"));
    EXPECT_EQ(answer[q("layout")][q("widthInches")], 55);
    EXPECT_EQ(apply(request("changeRollWidth", R"({"allowQuarterTurns":true,"to":"NaN"})"))[q("error")],
              q("Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch "
                "white borders."));
}

TEST(ApplyCanvasSaving, removesAndOptimizes) {
    const QJsonObject removed =
        apply(request("removeAndOptimize",
                      R"({"id":"00000000-0000-0000-0000-000000000001","allowQuarterTurns":true,"gapInches":0})"));
    EXPECT_EQ(removed[q("result")], true);
    EXPECT_EQ(removed[q("layout")][q("items")].toArray().size(), 1);
    const QJsonObject unknown =
        apply(request("removeAndOptimize",
                      R"({"id":"00000000-0000-0000-0000-000000000009","allowQuarterTurns":true,"gapInches":0})"));
    EXPECT_EQ(unknown[q("result")], false);
    EXPECT_EQ(unknown[q("layout")][q("items")].toArray().size(), 2);
}

TEST(ApplyCanvasSaving, sizesArtworks) {
    const QJsonObject answer = apply(request(
        "sizingArtworks",
        R"({"allowQuarterTurns":false,"requests":[{"id":"00000000-0000-0000-0000-000000000002","heightInches":25}]})"));
    EXPECT_EQ(lastWidth(answer), 5);
    EXPECT_EQ(apply(request("sizingArtworks", R"({"allowQuarterTurns":false,"requests":[{}]})"))[q("usage")], true);
}

TEST(ApplyCanvasSaving, readsBatchSizes) {
    const QJsonObject answer =
        apply(R"({"id":1,"op":"batchSizeRequests","args":{"text":"24 × 16\n\n9x13.5","artworkIDs":[)"
              R"("00000000-0000-0000-0000-00000000000a","00000000-0000-0000-0000-00000000000B"]}})");
    const QJsonObject first{
        {q("id"), q("00000000-0000-0000-0000-00000000000A")}, {q("widthInches"), 24}, {q("heightInches"), 16}};
    const QJsonObject second{
        {q("id"), q("00000000-0000-0000-0000-00000000000B")}, {q("widthInches"), 9}, {q("heightInches"), 13.5}};
    EXPECT_EQ(answer[q("result")], (QJsonArray{first, second}));
    EXPECT_FALSE(answer.contains(q("layout")));
}

TEST(PackCommand, turnsArtworksOnlyWhereAllowed) {
    const auto packedLength = [](const QStringList& options) {
        const CommandResult packed = runCommand(QStringList{q("pack"), q("-")} + options, layout());
        EXPECT_EQ(packed.status, 0) << packed.errors.toStdString();
        const QJsonObject length =
            apply(R"({"id":1,"op":"lengthInches","layout":)" + packed.json().toJson(QJsonDocument::Compact) + "}");
        return length[q("result")].toDouble();
    };
    EXPECT_EQ(packedLength({}), 70);
    EXPECT_EQ(packedLength({q("--turns")}), 30);
    EXPECT_EQ(packedLength({q("--turns"), q("--gap"), q("2")}), 32);
    EXPECT_EQ(packedLength({q("--turns"), q("--width"), q("20")}), 110);
}

TEST(PackCommand, namesWhatANarrowerRollCannotHold) {
    const CommandResult refused = runCommand({q("pack"), q("-"), q("--width"), q("20")}, layout());
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, QByteArray());
    EXPECT_EQ(refused.errors,
              q("These artworks cannot fit a 20-inch roll at their current print sizes with 2.5-inch borders on every "
                "side: a.jpg. Change their sizes first. The roll width and layout were not changed.\n"));
}

TEST(PackCommand, keepsTheGapOfAWorkspaceUnlessAnotherIsAskedFor) {
    const QByteArray workspace = R"({"version":1,"sizingDescriptions":{},"gapInches":3,"layout":)" + layout() + "}";
    const auto secondY = [&](const QStringList& options) {
        const QJsonObject packed = runCommand(QStringList{q("pack"), q("-")} + options, workspace).json().object();
        EXPECT_EQ(packed[q("gapInches")], 3);
        return packed[q("layout")][q("items")][1][q("yInches")];
    };
    EXPECT_EQ(secondY({}), 18);
    EXPECT_EQ(secondY({q("--gap"), q("0")}), 15);
}

class RollSizes : public ::testing::Test {
protected:
    /// 50 x 10 or 10 x 50 inches at 10 per inch.
    QString image(const char* name, bool isTall) {
        test::TiffFixture tiff{.width = isTall ? 100U : 500U, .height = isTall ? 500U : 100U};
        tiff.density = {10, 10};
        tiff.pixels.fill('\x5a', 500 * 100 * 3);
        return folder_.write(q(name), tiff.bytes());
    }

    CommandResult roll(const QStringList& arguments) const {
        return runCommand(QStringList{q("roll"), q("-o"), folder_.path(q("roll.pdf"))} + arguments);
    }

    static QJsonValue widthOf(const CommandResult& result, qsizetype index) {
        return result.json().object()[q("layout")][q("items")][index][q("widthInches")];
    }

    test::TemporaryFolder folder_;
};

TEST_F(RollSizes, areThoseOfTheImagesUnlessOthersAreGiven) {
    const QString wide = image("wide.tif", false);
    const QString tall = image("tall.tif", true);
    const CommandResult result =
        roll({wide, tall, tall, wide, q("--size"), q("-"), q("--size"), q("4x20"), q("--size"), q("-x10")});
    ASSERT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(widthOf(result, 0), 50);
    EXPECT_EQ(widthOf(result, 1), 4);
    EXPECT_EQ(widthOf(result, 2), 2);
    EXPECT_EQ(widthOf(result, 3), 50);
}

TEST_F(RollSizes, areGivenToImagesThatTheImportRuleCannotSize) {
    test::TiffFixture tiff{.width = 401, .height = 300};
    tiff.density = {10, 10};
    tiff.pixels.fill('\x5a', 401 * 300 * 3);
    const QString odd = folder_.write(q("odd.tif"), tiff.bytes());
    EXPECT_EQ(roll({odd}).status, 1);
    const CommandResult sized = roll({odd, q("--size"), q("20x-")});
    ASSERT_EQ(sized.status, 0) << sized.errors.toStdString();
    EXPECT_EQ(widthOf(sized, 0), 20);
}

TEST_F(RollSizes, thatDistortAreRefusedAndNothingIsWritten) {
    const CommandResult result = roll({image("wide.tif", false), q("--size"), q("24x16")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, QByteArray());
    EXPECT_TRUE(result.errors.startsWith(q("“wide.tif”: These dimensions would change the source aspect ratio.")));
    EXPECT_EQ(folder_.names(), QStringList{q("wide.tif")});
}

TEST_F(RollSizes, thatAreNoneAreWrongUsage) {
    const QString wide = image("wide.tif", false);
    for (const char* size : {"24", "24x", "x16", "axb", "", "24x16x2", "24 x 16"}) {
        EXPECT_EQ(roll({wide, q("--size"), q(size)}).status, 2) << size;
    }
    EXPECT_EQ(roll({wide, q("--size"), q("-"), q("--size"), q("-")}).status, 2);
    EXPECT_EQ(roll({q("-")}).status, 2);
}

TEST_F(RollSizes, tellWhatTurnsSave) {
    const QStringList images{image("wide.tif", false), image("tall.tif", true)};
    const QJsonObject plain = roll(images).json().object();
    EXPECT_EQ(plain[q("lengthInches")], 70);
    EXPECT_EQ(plain[q("conventionalLengthInches")], 70);
    const QJsonObject turned = roll(images + QStringList{q("--turns")}).json().object();
    EXPECT_EQ(turned[q("lengthInches")], 30);
    EXPECT_EQ(turned[q("conventionalLengthInches")], 70);
    EXPECT_EQ(turned[q("layout")][q("items")][1][q("rotationQuarterTurns")], 1);
}

} // namespace
} // namespace orvex
