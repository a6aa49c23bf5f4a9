#include "Json/JsonWriter.h"

#include "Json/JsonError.h"
#include "Json/JsonReader.h"
#include "OrvexLanguage.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvex::platform {
namespace {

QJsonObject sample() {
    return {{QStringLiteral("b"), QJsonArray{1, QStringLiteral("x/y")}},
            {QStringLiteral("a/c"), QJsonObject{}},
            {QStringLiteral("A"), true},
            {QStringLiteral("empty"), QJsonArray{}}};
}

TEST(JsonWriter, sortsAndIndents) {
    EXPECT_EQ(writeJson(sample(), JsonForm::pretty).toStdString(), R"({
    "A": true,
    "a/c": {
    },
    "b": [
        1,
        "x/y"
    ],
    "empty": [
    ]
}
)");
}

TEST(JsonWriter, escapesSlashesWhereAsked) {
    const QByteArray bytes = writeJson(sample(), JsonForm::prettyEscapedSlashes);
    EXPECT_TRUE(bytes.contains(R"("a\/c": {)"));
    EXPECT_TRUE(bytes.contains(R"("x\/y")"));
    EXPECT_EQ(JsonReader::parse(bytes).value(), QJsonValue(sample()));
}

TEST(JsonWriter, keepsBackslashesBeforeSlashesApart) {
    const QJsonObject object{{QStringLiteral("v"), QStringLiteral("\\/\\\\//")}};
    const QByteArray bytes = writeJson(object, JsonForm::prettyEscapedSlashes);
    EXPECT_TRUE(bytes.contains(R"("\\\/\\\\\/\/")"));
    EXPECT_EQ(JsonReader::parse(bytes).at("v").text(), u"\\/\\\\//");
}

TEST(JsonWriter, writesOneLineWithoutItsLineFeed) {
    EXPECT_EQ(writeJson(sample(), JsonForm::compactLine).toStdString(),
              R"({"A":true,"a/c":{},"b":[1,"x/y"],"empty":[]})");
    const QJsonObject breaks{{QStringLiteral("v"), QString::fromUtf8("a\nb\r\u0085\u2028")}};
    EXPECT_FALSE(writeJson(breaks, JsonForm::compactLine).contains('\n'));
}

TEST(JsonWriter, escapesSlashesOnOneLineWhereAsked) {
    EXPECT_EQ(writeJson(sample(), JsonForm::compactEscapedSlashes).toStdString(),
              R"({"A":true,"a\/c":{},"b":[1,"x\/y"],"empty":[]})");
}

TEST(JsonWriter, writesArrays) {
    EXPECT_EQ(writeJson(QJsonArray{1, 2}, JsonForm::compactLine), "[1,2]");
    EXPECT_EQ(writeJson(QJsonArray{}, JsonForm::pretty), "[\n]\n");
}

TEST(JsonWriter, writesUtf8) {
    const QJsonObject object{{QStringLiteral("键"), QString::fromUtf8("卷纸😀")}};
    EXPECT_EQ(writeJson(object, JsonForm::compactLine).toStdString(), "{\"键\":\"卷纸😀\"}");
}

TEST(JsonWriter, writesNumbersThatComeBackToTheLastBit) {
    for (const double number :
         {0.1, 1.0 / 3.0, 60.0, 1e22, 708.6614173228347, 5e-324, 1.7976931348623157e308, -2.5e-9}) {
        const QJsonObject object{{QStringLiteral("v"), jsonNumber("v", number)}};
        EXPECT_EQ(JsonReader::parse(writeJson(object, JsonForm::compactLine)).at("v").number(), number);
    }
    const QJsonObject object{{QStringLiteral("v"), std::numeric_limits<qint64>::min()}};
    EXPECT_EQ(writeJson(object, JsonForm::compactLine).toStdString(), R"({"v":-9223372036854775808})");
}

QJsonObject numbered(qsizetype index) {
    return {{QStringLiteral("a/b"), QJsonArray{index, QStringLiteral("],/\n")}}, {QStringLiteral("A"), QJsonObject{}}};
}

TEST(JsonWriter, writesAnArrayInPiecesAsInOne) {
    for (const qsizetype count : {0, 1, 2, 63, 64, 65, 127, 128, 129, 200}) {
        QJsonArray whole;
        for (qsizetype index = 0; index < count; ++index) {
            whole.append(numbered(index));
        }
        for (const JsonForm form : {JsonForm::pretty, JsonForm::prettyEscapedSlashes}) {
            EXPECT_EQ(writeJsonArray(count, numbered, form).join().toStdString(), writeJson(whole, form).toStdString());
        }
    }
}

TEST(JsonWriter, raisesWhatAnElementOfAnArrayRaises) {
    for (const qsizetype bad : {0, 63, 64, 199}) {
        const auto element = [bad](qsizetype index) {
            return QJsonObject{{QStringLiteral("v"), jsonNumber("v", index == bad ? std::nan("") : 1.0)}};
        };
        EXPECT_THROW((void)writeJsonArray(200, element, JsonForm::pretty), JsonInvalidNumber) << bad;
    }
}

TEST(JsonNumber, refusesWhatJsonLacks) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double number : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity}) {
        try {
            (void)jsonNumber("width", number);
            FAIL();
        } catch (const JsonInvalidNumber& error) {
            EXPECT_EQ(error.message().toStdString(), "width: JSON cannot hold this number.");
            EXPECT_EQ(error.keyPath(), u"width");
            EXPECT_EQ(std::isnan(error.number()), std::isnan(number));
        }
    }
    OrvexLanguage::setConfigured(QStringLiteral("zh-Hans"));
    EXPECT_THROW(
        {
            try {
                (void)jsonNumber("width", infinity);
            } catch (const JsonError& error) {
                EXPECT_EQ(error.description().toStdString(), "JSON 无法表示该数值。");
                throw;
            }
        },
        JsonInvalidNumber);
    OrvexLanguage::setConfigured(QStringLiteral("en"));
}

TEST(JsonNumber, isATextWhereAsked) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto text = [](double number) { return jsonNumber("v", number, JsonNumbers::orNonFiniteText); };
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), QJsonValue(QStringLiteral("NaN")));
    EXPECT_EQ(text(infinity), QJsonValue(QStringLiteral("Infinity")));
    EXPECT_EQ(text(-infinity), QJsonValue(QStringLiteral("-Infinity")));
    EXPECT_EQ(text(2.5), QJsonValue(2.5));
}

TEST(UuidText, isUpperCase) {
    EXPECT_EQ(uuidText(QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4")),
              u"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4");
}

TEST(UrlText, isFullyEncoded) {
    EXPECT_EQ(urlText(QUrl::fromLocalFile(QString::fromUtf8("/a b/50%/画#1?.png"))),
              u"file:///a%20b/50%25/%E7%94%BB%231%3F.png");
}

} // namespace
} // namespace orvex::platform
