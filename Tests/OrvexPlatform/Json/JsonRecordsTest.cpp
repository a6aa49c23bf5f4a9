#include "Json/JsonRecords.h"

#include <gtest/gtest.h>

namespace orvex::platform {

namespace {

struct Sheet {
    qint64 number = 0;
    QString name;

    static Sheet fromJson(const JsonReader& reader) {
        return {.number = reader.at("number").integer(), .name = reader.at("name").text()};
    }

    QJsonObject toJson() const {
        if (number < 0) {
            throw JsonInvalidNumber(QStringLiteral("number"), QStringLiteral("No sheet."), static_cast<double>(number));
        }
        return {{QStringLiteral("number"), number}, {QStringLiteral("name"), name}};
    }

    bool operator==(const Sheet&) const = default;
};

QList<Sheet> sheets(qint64 count) {
    QList<Sheet> list;
    for (qint64 number = 0; number < count; ++number) {
        list.append({.number = number, .name = QStringLiteral("sheet %1/\",]").arg(number)});
    }
    return list;
}

QByteArray written(const QList<Sheet>& list, JsonForm form = JsonForm::pretty) {
    return writeJson(jsonArray(list), form);
}

/// An array of that many records as text, one of them replaced.
QByteArray withElement(qsizetype count, qsizetype index, const QByteArray& text) {
    QByteArrayList elements;
    for (const Sheet& sheet : sheets(count)) {
        elements.append(writeJson(sheet.toJson(), JsonForm::compactLine));
    }
    elements[index] = text;
    return "[" + elements.join(",\n") + "]";
}

template <typename Operation>
std::string failureOf(Operation&& operation) {
    try {
        operation();
    } catch (const JsonError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

std::string readingFailure(const QByteArray& json) {
    const std::string apart = failureOf([&] { static_cast<void>(readManyRecords<Sheet>(json)); });
    const std::string whole = failureOf([&] { static_cast<void>(readRecords<Sheet>(JsonReader::parse(json))); });
    EXPECT_EQ(apart, whole) << "reading in portions must not be told apart from reading the whole";
    return apart;
}

} // namespace

TEST(ManyRecords, AreReadLikeFewInEverySizeAroundThePortions) {
    for (const qint64 count : {0, 1, 2, 63, 64, 65, 127, 128, 129, 191, 192, 193, 1000}) {
        for (const JsonForm form : {JsonForm::pretty, JsonForm::prettyEscapedSlashes, JsonForm::compactLine}) {
            EXPECT_EQ(readManyRecords<Sheet>(written(sheets(count), form)), sheets(count)) << count;
        }
    }
}

TEST(ManyRecords, AreWrittenLikeFewInEverySizeAroundThePortions) {
    for (const qint64 count : {0, 1, 2, 63, 64, 65, 127, 128, 129, 191, 192, 193, 1000}) {
        for (const JsonForm form : {JsonForm::pretty, JsonForm::prettyEscapedSlashes}) {
            EXPECT_EQ(writeManyRecords(sheets(count), form).join(), written(sheets(count), form)) << count;
        }
    }
}

TEST(ManyRecords, AreNotWrittenIfOneOfThemCannotBe) {
    for (const qsizetype bad : {0, 63, 64, 199}) {
        QList<Sheet> list = sheets(200);
        list[bad].number = -1;
        EXPECT_EQ(failureOf([&] { static_cast<void>(writeManyRecords(list, JsonForm::pretty)); }), "number: No sheet.");
    }
}

TEST(ManyRecords, AreReadBehindAByteOrderMarkAndBetweenSpace) {
    const QByteArray json = written(sheets(130));
    EXPECT_EQ(readManyRecords<Sheet>("\xEF\xBB\xBF" + json), sheets(130));
    EXPECT_EQ(readManyRecords<Sheet>("\r\n\t " + QByteArray(json).replace("\n", "\r\n") + " \r\n"), sheets(130));
}

TEST(ManyRecords, AreRefusedWithACommaBehindAnyOfThem) {
    for (const qsizetype count : {1, 63, 64, 65, 128, 129}) {
        for (const QByteArray& comma : {QByteArray(","), QByteArray(" ,\n ")}) {
            const QByteArray json = written(sheets(count)).trimmed();
            EXPECT_NE(readingFailure(json.chopped(1) + comma + "]"), "(none)") << count;
            EXPECT_NE(readingFailure("[" + comma + json.sliced(1)), "(none)") << count;
        }
    }
    for (const qsizetype place : {0, 1, 62, 63, 64, 65, 127, 128, 129}) {
        EXPECT_NE(readingFailure(withElement(130, place, "")), "(none)") << place;
        EXPECT_NE(readingFailure(withElement(130, place, " ")), "(none)") << place;
    }
}

TEST(ManyRecords, AreRefusedWithoutACommaBetweenAnyTwo) {
    const QByteArray two = R"({"number":1,"name":"a"} {"number":2,"name":"b"})";
    for (const qsizetype place : {0, 62, 63, 64, 128, 129}) {
        EXPECT_NE(readingFailure(withElement(130, place, two)), "(none)") << place;
    }
}

TEST(ManyRecords, AreRefusedWithWhatWouldCloseThePortion) {
    for (const QByteArray& text : {QByteArray("1],[2"), QByteArray("{}]"), QByteArray("[{}"), QByteArray("\"a"),
                                   QByteArray("{\"number\":1,\"name\":\"a\"")}) {
        for (const qsizetype place : {0, 63, 64, 129}) {
            EXPECT_NE(readingFailure(withElement(130, place, text)), "(none)") << text.constData() << ' ' << place;
        }
    }
}

TEST(ManyRecords, AreRefusedBetweenWhatIsNoSpaceOfJson) {
    for (const char* other : {"\v", "\f", "\xC2\xA0"}) {
        EXPECT_EQ(readingFailure(other + written(sheets(2))), "Not valid JSON (at byte 0).");
        EXPECT_NE(readingFailure(written(sheets(2)) + other), "(none)");
    }
}

TEST(ManyRecords, AreRefusedAtTheirPlaceInTheWholeList) {
    for (const qsizetype place : {0, 1, 63, 64, 65, 128, 199}) {
        const std::string path = QStringLiteral("[%1]").arg(place).toStdString();
        EXPECT_EQ(readingFailure(withElement(200, place, R"({"number":"1","name":"a"})")),
                  path + ".number: Expected an integer.");
        EXPECT_EQ(readingFailure(withElement(200, place, R"({"number":1})")),
                  path + ".name: The required key is missing.");
        EXPECT_EQ(readingFailure(withElement(200, place, "null")), path + ": Expected an object.");
    }
}

TEST(ManyRecords, AreRefusedForTheFirstThingThatIsAmiss) {
    const QByteArray json = withElement(200, 150, "7");
    EXPECT_EQ(readingFailure(QByteArray(json).replace("{\"name\":\"sheet 20/", "{\"nome\":\"sheet 20/")),
              "[20].name: The required key is missing.");
    EXPECT_EQ(readingFailure(json.chopped(1)), "Not valid JSON (at byte " + std::to_string(json.size() - 1) + ").")
        << "what is no JSON has no records";
}

TEST(ManyRecords, AreThoseOfAnArray) {
    EXPECT_EQ(readingFailure("{}"), "Expected an array.");
    EXPECT_EQ(readingFailure(""), "Not valid JSON (at byte 0).");
    EXPECT_NE(readingFailure("7"), "(none)");
    EXPECT_NE(readingFailure("null"), "(none)");
}

TEST(ManyRecords, MayHaveTextsThatBeginWithAByteOrderMark) {
    QList<Sheet> list = sheets(130);
    list[64].name = QStringLiteral("\uFEFFa");
    EXPECT_EQ(readManyRecords<Sheet>(written(list)), list);
}

TEST(FewRecords, AreReadAtTheirPlace) {
    const JsonReader reader = JsonReader::parse(R"({"list":[{"number":1,"name":"a"},{"number":2,"name":3}]})");
    EXPECT_EQ(failureOf([&] { static_cast<void>(readRecords<Sheet>(reader.at("list"))); }),
              "list[1].name: Expected text.");
}

TEST(FoundRecord, IsAbsentIfItIsMissingOrNull) {
    const JsonReader reader = JsonReader::parse(R"({"null":null,"sheet":{"number":7,"name":"a"},"bad":{},"text":"a"})");
    EXPECT_EQ(findRecord<Sheet>(reader, "missing"), std::nullopt);
    EXPECT_EQ(findRecord<Sheet>(reader, "null"), std::nullopt);
    EXPECT_EQ(findRecord<Sheet>(reader, "sheet"), (Sheet{.number = 7, .name = QStringLiteral("a")}));
}

TEST(FoundRecord, IsRefusedAtItsKey) {
    const JsonReader reader = JsonReader::parse(R"({"bad":{},"text":"a"})");
    EXPECT_EQ(failureOf([&] { static_cast<void>(findRecord<Sheet>(reader, "bad")); }),
              "bad.number: The required key is missing.");
    EXPECT_EQ(failureOf([&] { static_cast<void>(findRecord<Sheet>(reader, "text")); }), "text: Expected an object.");
}

TEST(FoundValue, IsAbsentIfItIsMissingOrNull) {
    const JsonReader reader = JsonReader::parse(R"({"null":null,"text":"","number":0,"truth":false})");
    EXPECT_EQ(findText(reader, "missing"), std::nullopt);
    EXPECT_EQ(findText(reader, "null"), std::nullopt);
    EXPECT_EQ(findText(reader, "text"), QString());
    EXPECT_EQ(findInteger(reader, "null"), std::nullopt);
    EXPECT_EQ(findInteger(reader, "number"), 0);
    EXPECT_EQ(findBoolean(reader, "null"), std::nullopt);
    EXPECT_EQ(findBoolean(reader, "truth"), false);
    EXPECT_EQ(failureOf([&] { static_cast<void>(findText(reader, "number")); }), "number: Expected text.");
    EXPECT_EQ(failureOf([&] { static_cast<void>(findInteger(reader, "text")); }), "text: Expected an integer.");
    EXPECT_EQ(failureOf([&] { static_cast<void>(findBoolean(reader, "text")); }), "text: Expected true or false.");
}

TEST(InsertedValue, LeavesItsKeyOutIfItIsAbsent) {
    QJsonObject json;
    insertIfPresent(json, QStringLiteral("a"), std::optional<QString>());
    insertRecordIfPresent(json, QStringLiteral("b"), std::optional<Sheet>());
    EXPECT_EQ(json, QJsonObject());
    insertIfPresent(json, QStringLiteral("a"), std::optional(QString()));
    insertRecordIfPresent(json, QStringLiteral("b"), std::optional(Sheet{.number = 1, .name = QStringLiteral("x")}));
    EXPECT_EQ(writeJson(json, JsonForm::compactLine), R"({"a":"","b":{"name":"x","number":1}})");
}

} // namespace orvex::platform
