#include "Command.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::q;

/// The answers to these lines, parsed.
QList<QJsonObject> answers(const QByteArray& lines) {
    const test::CommandResult result = test::runCommand({q("apply")}, lines);
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_TRUE(result.output.isEmpty() || result.output.endsWith('\n'));
    QList<QJsonObject> objects;
    for (const QByteArray& line : result.output.split('\n')) {
        if (!line.isEmpty()) {
            objects.append(QJsonDocument::fromJson(line).object());
        }
    }
    return objects;
}

QJsonObject answer(const QByteArray& line) {
    const QList<QJsonObject> all = answers(line + '\n');
    EXPECT_EQ(all.size(), 1);
    return all.value(0);
}

const QByteArray artwork = R"({"id":"00000000-0000-0000-0000-00000000000A","sourceURL":"file:///tmp/a.jpg",)"
                           R"("title":"a.jpg","pixelWidth":300,"pixelHeight":200,"originalWidthInches":3,)"
                           R"("originalHeightInches":2,"widthInches":3,"xInches":0,"yInches":0,)"
                           R"("rotationQuarterTurns":0})";

QByteArray layoutOf(const QByteArray& items) {
    return R"({"schemaVersion":1,"items":[)" + items + R"(],"widthInches":60})";
}

TEST(Apply, answersEveryLineInOrderWithItsId) {
    const QList<QJsonObject> all =
        answers(R"({"id":1,"op":"lengthInches","layout":)" + layoutOf({}) + "}\n" +
                R"({"id":"b","op":"lengthInches","layout":)" + layoutOf(artwork) + "}\n" +
                R"({"id":{"c":[null]},"op":"widthValidationError","layout":)" + layoutOf({}) + "}");
    ASSERT_EQ(all.size(), 3);
    EXPECT_EQ(all[0], (QJsonObject{{q("id"), 1}, {q("ok"), true}, {q("result"), 0}}));
    EXPECT_EQ(all[1], (QJsonObject{{q("id"), q("b")}, {q("ok"), true}, {q("result"), 7}}));
    EXPECT_EQ(all[2][q("id")], (QJsonObject{{q("c"), QJsonArray{QJsonValue()}}}));
    EXPECT_TRUE(all[2][q("result")].isNull());
}

TEST(Apply, givesTheChangedLayoutBack) {
    const QJsonObject json = answer(R"({"id":1,"op":"append","layout":)" + layoutOf({}) + R"(,"args":{"artwork":)" +
                                    artwork + R"(,"gapInches":0}})");
    EXPECT_EQ(json[q("ok")], true);
    EXPECT_EQ(json[q("result")], q("00000000-0000-0000-0000-00000000000A"));
    EXPECT_EQ(json[q("layout")][q("items")].toArray().size(), 1);
}

TEST(Apply, hasNoResultForAMove) {
    const QJsonObject json =
        answer(R"({"id":1,"op":"move","layout":)" + layoutOf(artwork) +
               R"(,"args":{"id":"00000000-0000-0000-0000-00000000000a","xInches":4,"yInches":5}})");
    EXPECT_EQ(json.keys(), (QStringList{q("id"), q("layout"), q("ok")}));
    EXPECT_EQ(json[q("layout")][q("items")][0][q("yInches")], 5);
}

TEST(Apply, reportsARefusalOfTheKit) {
    EXPECT_EQ(answer(R"({"id":1,"op":"rotate","layout":)" + layoutOf({}) +
                     R"(,"args":{"id":"00000000-0000-0000-0000-00000000000A"}})"),
              (QJsonObject{{q("id"), 1}, {q("ok"), false}, {q("error"), q("This artwork was not found.")}}));
}

TEST(Apply, letsNumbersThatJsonLacksThrough) {
    const QByteArray layout = R"({"schemaVersion":1,"items":[],"widthInches":"NaN"})";
    EXPECT_EQ(answer(R"({"id":1,"op":"widthValidationError","layout":)" + layout + "}")[q("result")],
              q("Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch "
                "white borders."));
    EXPECT_EQ(answer(R"({"id":1,"op":"autoArrange","layout":)" + layoutOf({}) +
                     R"(,"args":{"gapInches":"Infinity"}})")[q("error")],
              q("Artwork spacing must be a valid nonnegative value in inches."));
    QByteArray far = artwork;
    far.replace(R"("yInches":0)", R"("yInches":"-Infinity")");
    EXPECT_EQ(answer(R"({"id":1,"op":"lengthInches","layout":)" + layoutOf(far) + "}")[q("result")], q("NaN"));
}

TEST(Apply, tellsWrongUsageFromARefusal) {
    for (const QByteArray& line : QList<QByteArray>{
             "", "nonsense", "[]", "1", R"({"id":5})", R"({"id":5,"op":7})", R"({"id":5,"op":"paint"})",
             R"({"id":5,"op":"lengthInches"})", R"({"id":5,"op":"lengthInches","layout":{}})",
             R"({"id":5,"op":"move","layout":{"schemaVersion":1,"items":[]}})",
             R"({"id":5,"op":"nudge","layout":{"schemaVersion":1,"items":[]},"args":{"id":)"
             R"("00000000-0000-0000-0000-00000000000A","direction":"north","accelerated":false,"canvasLength":1}})",
             R"({"id":5,"op":"pageDraft","args":{"pixelWidth":1,"pixelHeight":1}})"}) {
        const QJsonObject json = answer(line);
        EXPECT_EQ(json[q("ok")], false) << line.toStdString();
        EXPECT_EQ(json[q("usage")], true) << line.toStdString();
        EXPECT_TRUE(json[q("error")].isString()) << line.toStdString();
        EXPECT_TRUE(json[q("id")].isNull() || json[q("id")] == 5) << line.toStdString();
    }
}

TEST(Apply, namesAMissingArgumentByItsPlaceEvenWithoutAnyArguments) {
    EXPECT_EQ(answer(R"({"id":1,"op":"remove","layout":{"schemaVersion":1,"items":[]}})")[q("error")],
              q("args.id: The required key is missing."));
}

TEST(Apply, goesOnAfterALineThatIsNone) {
    EXPECT_EQ(answers("nonsense\n"
                      R"({"id":2,"op":"parseDecimalInput","args":{"text":" 1,5 ","locale":"de_DE"}})")
                  .value(1)[q("result")],
              1.5);
}

TEST(Apply, knowsThePureFunctions) {
    const auto result = [](const QByteArray& line) { return answer(line).value(q("result")); };
    EXPECT_EQ(result(R"({"op":"constrainedMoveY","args":{"requestedY":9,"trimHeight":7,"canvasLength":10}})"), 3);
    EXPECT_EQ(result(R"({"op":"resizedWidth","args":{"startWidth":30,"startHeight":10,"translationX":10,)"
                     R"("translationY":10,"originX":0,"rollWidthInches":60}})"),
              42);
    EXPECT_EQ(result(R"({"op":"formatMMAsInches","args":{"mm":1000,"locale":"de_DE"}})"), q("39,37"));
    EXPECT_TRUE(result(R"({"op":"parseDecimalInput","args":{"text":"1,5","locale":"en_US"}})").isNull());
    EXPECT_EQ(result(R"({"op":"resolveLanguage","args":{"configured":null,"preferredLanguages":["zh-TW"]}})"),
              q("simplifiedChinese"));
    EXPECT_EQ(result(R"({"op":"qaWorkspace","args":{"arguments":["--orvex-qa-workspace","/tmp/../a"]}})"), q("/a"));
    EXPECT_EQ(result(R"({"op":"localizedPhysicalSizeSource","args":{"text":"文件标注 72 ppi"}})"),
              q("File metadata: 72 ppi"));
    EXPECT_EQ(result(R"({"op":"quarterInchSize","args":{"artwork":)" + artwork +
                     R"(,"target":24.1,"dimension":"width","rollWidthInches":60,"strategy":"bothDimensions"}})"),
              (QJsonObject{{q("widthInches"), 24}, {q("heightInches"), 16}, {q("scale"), 8}}));
    EXPECT_TRUE(result(R"({"op":"artworkValidationError","args":{"artwork":)" + artwork + R"(,"rollWidthInches":60}})")
                    .isNull());
    EXPECT_EQ(
        result(R"({"op":"pageSettings","args":{"pageWidthInches":60,"pixelWidth":3,"pixelHeight":2}})")[q("widthMM")],
        1524);
    EXPECT_EQ(
        answer(R"({"op":"pageSettings","args":{"pageHeightInches":5,"pixelWidth":3,"pixelHeight":2}})")[q("error")],
        q("Page dimensions must be valid numbers greater than the combined 5 inches of white borders."));
}

TEST(Apply, givesThePaperSizesOfADriversDescription) {
    EXPECT_EQ(answer(R"({"id":1,"op":"paperDimensions","args":{"text":"*PaperDimension A4/A4: \"595.28 841.89\"\n)"
                     R"(*PaperDimension Bad: \"1 2 3\"\n*PaperDimension Roll60/60 in: \"4320 14400\"\n"}})"),
              (QJsonObject{{q("id"), 1},
                           {q("ok"), true},
                           {q("result"), QJsonObject{{q("A4"), QJsonArray{595.28, 841.89}},
                                                     {q("Roll60"), QJsonArray{4320, 14400}}}}}));
    EXPECT_EQ(answer(R"({"id":1,"op":"paperDimensions","args":{"text":""}})")[q("result")], QJsonObject());
    EXPECT_EQ(answer(R"({"id":1,"op":"paperDimensions","args":{}})")[q("usage")], true);
}

TEST(Apply, refusesALineBeyondItsLimitWithoutHoldingIt) {
    const QByteArray tooLong((qsizetype{1} << 25) + 1, ' ');
    const QList<QJsonObject> all =
        answers(tooLong + "\n"
                          R"({"id":2,"op":"lengthInches","layout":{"schemaVersion":1,"items":[]}})"
                          "\n");
    ASSERT_EQ(all.size(), 2);
    EXPECT_EQ(all[0][q("usage")], true);
    EXPECT_EQ(all[1][q("result")], 0);
}

} // namespace
} // namespace orvex
