#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

using platform::JsonForm;
using platform::JsonNumbers;
using platform::JsonReader;
using test::Snapshot;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr auto badRollWidth =
    "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both "
    "2.5-inch white borders.";

constexpr auto badRollWidthAtItsKey =
    "widthInches: Roll width must be a valid value greater than 5 and no more than 60 "
    "inches to retain both 2.5-inch white borders.";

RollLayout decoded(const QByteArray& json) {
    return RollLayout::fromJson(JsonReader::parse(json));
}

/// The message of the JsonError that an operation ends in, or "(none)".
template <typename Operation>
std::string failureOf(Operation&& operation) {
    try {
        operation();
    } catch (const platform::JsonError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

std::string decodingFailure(const QByteArray& json) {
    return failureOf([&] { (void)decoded(json); });
}

constexpr auto storedLayout = R"({
    "items": [
        {
            "id": "9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4",
            "originalHeightInches": 13.333333333333334,
            "originalWidthInches": 20,
            "pixelHeight": 4000,
            "pixelWidth": 6000,
            "rotationQuarterTurns": 3,
            "sourceURL": "file:///Users/me/My%20Pictures/%E7%94%BB.tif",
            "title": "画 \"one\"/two",
            "widthInches": 13.25,
            "xInches": 0.1,
            "yInches": 1e-07
        }
    ],
    "schemaVersion": 1,
    "widthInches": 42.5
}
)";

TEST(RollLayoutJson, readsAndWritesEveryField) {
    const RollLayout layout = decoded(storedLayout);
    EXPECT_EQ(layout.schemaVersion, 1);
    EXPECT_EQ(layout.widthInches, 42.5);
    ASSERT_EQ(layout.items.size(), 1);
    const RollArtwork& item = layout.items.at(0);
    EXPECT_EQ(item.id, QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4"));
    EXPECT_EQ(item.sourceURL.toLocalFile(), QStringLiteral("/Users/me/My Pictures/画.tif"));
    EXPECT_EQ(item.title, QStringLiteral("画 \"one\"/two"));
    EXPECT_EQ(item.pixelWidth, 6000);
    EXPECT_EQ(item.pixelHeight, 4000);
    EXPECT_EQ(item.originalWidthInches, 20.0);
    EXPECT_EQ(item.originalHeightInches, 13.333333333333334);
    EXPECT_EQ(item.widthInches, 13.25);
    EXPECT_EQ(item.xInches, 0.1);
    EXPECT_EQ(item.yInches, 1e-7);
    EXPECT_EQ(item.rotationQuarterTurns, 3);
    EXPECT_EQ(platform::writeJson(layout.toJson(), JsonForm::pretty).toStdString(), storedLayout);
}

TEST(RollLayoutJson, comesBackToTheLastBit) {
    RollLayout layout({test::artwork(10.001, 20.002, 1), test::artwork(33.333, 1.0, 2)}, 5.000001);
    layout.items[0].widthInches = 1.0 / 3.0;
    layout.items[0].xInches = std::numeric_limits<double>::denorm_min();
    layout.items[0].yInches = std::numeric_limits<double>::max();
    layout.items[1].pixelWidth = std::numeric_limits<qint64>::max();
    layout.items[1].rotationQuarterTurns = std::numeric_limits<qint64>::min();
    layout.items[1].title = QString::fromUtf8("\u0001\t\u2028😀");
    for (const JsonForm form : {JsonForm::pretty, JsonForm::prettyEscapedSlashes, JsonForm::compactLine}) {
        EXPECT_EQ(Snapshot(decoded(platform::writeJson(layout.toJson(), form))), Snapshot(layout));
    }
}

TEST(RollLayoutJson, readsTheSpellingsOfOtherWriters) {
    const RollLayout layout = decoded("\xEF\xBB\xBF"
                                      R"( { "schemaVersion" : 1.0 , "later" : {"x" : [null]},
        "items" : [ { "id" : "9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4", "sourceURL" : "file:\/\/\/a\/b.png",
        "title" : "\u753b", "pixelWidth" : 6e3, "pixelHeight" : 4000.0, "originalWidthInches" : 20,
        "originalHeightInches" : 13.333333333333334, "widthInches" : 20, "xInches" : 0, "yInches" : 0.0E+0,
        "rotationQuarterTurns" : 0.0, "colour" : "red" } ] } )");
    EXPECT_EQ(layout.widthInches, 60.0);
    ASSERT_EQ(layout.items.size(), 1);
    EXPECT_EQ(layout.items.at(0).id, QUuid::fromString(u"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"));
    EXPECT_EQ(layout.items.at(0).sourceURL, QUrl(QStringLiteral("file:///a/b.png")));
    EXPECT_EQ(layout.items.at(0).title, QStringLiteral("画"));
    EXPECT_EQ(layout.items.at(0).pixelWidth, 6000);
    EXPECT_EQ(test::messageOf(layout.structureValidationError()), "(none)");
}

TEST(RollLayoutJson, takesSixtyInchesForAFileWithoutAWidth) {
    EXPECT_EQ(decoded(R"({"schemaVersion":1,"items":[]})"), RollLayout());
}

TEST(RollLayoutJson, refusesABadWidthAtItsKey) {
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[],"widthInches":70})"), badRollWidthAtItsKey);
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[],"widthInches":5})"), badRollWidthAtItsKey);
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[],"widthInches":null})"),
              "widthInches: Expected a number.");
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[],"widthInches":"NaN"})"),
              "widthInches: Expected a number.");
}

TEST(RollLayoutJson, refusesABadWidthInChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[],"widthInches":70})"),
              "widthInches：卷布宽度必须是大于 5 且不超过 60 英寸的有效数值，才能保留两侧各 2.5 英寸白边。");
}

TEST(RollLayoutJson, loadsAnotherVersionThatEveryOperationThenRefuses) {
    const RollLayout layout = decoded(R"({"schemaVersion":9,"items":[]})");
    EXPECT_EQ(layout.schemaVersion, 9);
    EXPECT_EQ(test::messageOf(layout.structureValidationError()), "This roll layout version is unsupported.");
    EXPECT_EQ(layout.toJson()[u"schemaVersion"].toInteger(), 9);
}

TEST(RollLayoutJson, doesNotValidateItems) {
    RollLayout layout({test::artworkAt(-5, 1e300, 10, 10, 1), test::artwork(900, 10, 1)});
    layout.items[0].pixelWidth = -3;
    layout.items[1].sourceURL = QUrl(QStringLiteral("https://a.example/b"));
    const RollLayout read = decoded(platform::writeJson(layout.toJson(), JsonForm::pretty));
    EXPECT_EQ(Snapshot(read), Snapshot(layout));
    EXPECT_EQ(test::messageOf(read.structureValidationError()), "Duplicate artwork IDs.");
}

TEST(RollLayoutJson, requiresEveryOtherKey) {
    EXPECT_EQ(decodingFailure(R"({"items":[]})"), "schemaVersion: The required key is missing.");
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1})"), "items: The required key is missing.");
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":null})"), "items: Expected an array.");
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1.5,"items":[]})"), "schemaVersion: Expected an integer.");
    EXPECT_EQ(decodingFailure(R"({"schemaVersion":1,"items":[7]})"), "items[0]: Expected an object.");
    EXPECT_EQ(decodingFailure("[]"), "Expected an object.");
}

TEST(RollArtworkJson, requiresAllElevenKeys) {
    const RollLayout layout({test::artwork(10, 10, 1), test::artwork(10, 10, 2)});
    const QJsonObject whole = layout.items.at(1).toJson();
    ASSERT_EQ(whole.size(), 11);
    for (const QString& key : whole.keys()) {
        for (const bool null : {false, true}) {
            QJsonObject part = whole;
            null ? void(part[key] = QJsonValue::Null) : part.remove(key);
            QJsonObject object = layout.toJson();
            object[u"items"] = QJsonArray{layout.items.at(0).toJson(), part};
            try {
                (void)decoded(platform::writeJson(object, JsonForm::compactLine));
                ADD_FAILURE() << key.toStdString() << " is missed by no one";
            } catch (const platform::JsonError& error) {
                EXPECT_EQ(error.keyPath(), QStringLiteral("items[1].") + key);
            }
        }
    }
}

TEST(RollArtworkJson, refusesTextsThatAreNoIdOrAddress) {
    QJsonObject object = test::artwork(10, 10).toJson();
    object[u"id"] = QStringLiteral("{9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4}");
    const auto failure = [&] {
        return failureOf([&] {
            (void)RollArtwork::fromJson(JsonReader::parse(platform::writeJson(object, JsonForm::compactLine)));
        });
    };
    EXPECT_EQ(failure(), "id: Expected a UUID.");
    object[u"id"] = QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4");
    object[u"sourceURL"] = QStringLiteral("http://a:b");
    EXPECT_EQ(failure(), "sourceURL: Expected a URL.");
}

TEST(RollLayoutJson, doesNotWriteABadWidth) {
    const RollLayout layout({}, 70.0);
    try {
        (void)layout.toJson();
        FAIL();
    } catch (const platform::JsonInvalidNumber& error) {
        EXPECT_EQ(error.keyPath(), u"widthInches");
        EXPECT_EQ(error.description().toStdString(), badRollWidth);
        EXPECT_EQ(error.number(), 70.0);
    }
}

TEST(RollLayoutJson, doesNotWriteNumbersThatJsonLacks) {
    EXPECT_EQ(failureOf([] { (void)RollLayout({test::artworkAt(nan, 0, 10, 10)}).toJson(); }),
              "xInches: JSON cannot hold this number.");
    EXPECT_EQ(failureOf([] { (void)RollLayout({test::artworkAt(0, infinity, 10, 10)}).toJson(); }),
              "yInches: JSON cannot hold this number.");
}

TEST(RollLayoutJson, readsAndWritesAnythingWhenLenient) {
    RollLayout layout({test::artworkAt(nan, -infinity, 10, 10)}, infinity);
    layout.items[0].originalWidthInches = infinity;
    const QJsonObject object = layout.toJson(LayoutCoding::lenient);
    EXPECT_EQ(object[u"widthInches"].toString(), u"Infinity");
    EXPECT_EQ(object[u"items"][0][u"xInches"].toString(), u"NaN");
    EXPECT_EQ(object[u"items"][0][u"yInches"].toString(), u"-Infinity");
    const auto bytes = platform::writeJson(object, JsonForm::compactLine);
    const RollLayout read =
        RollLayout::fromJson(JsonReader::parse(bytes, JsonNumbers::orNonFiniteText), LayoutCoding::lenient);
    EXPECT_EQ(read.widthInches, infinity);
    EXPECT_TRUE(std::isnan(read.items.at(0).xInches));
    EXPECT_EQ(read.items.at(0).yInches, -infinity);
    EXPECT_EQ(read.items.at(0).originalWidthInches, infinity);
}

TEST(RollLayoutJson, leavesABadWidthToTheOperationsWhenLenient) {
    const RollLayout read = RollLayout::fromJson(
        JsonReader::parse(R"({"schemaVersion":1,"items":[],"widthInches":70})"), LayoutCoding::lenient);
    EXPECT_EQ(read.widthInches, 70.0);
    EXPECT_EQ(read.toJson(LayoutCoding::lenient)[u"widthInches"].toDouble(), 70.0);
    EXPECT_EQ(test::messageOf(read.exportValidationError()), badRollWidth);
}

} // namespace
} // namespace orvex
