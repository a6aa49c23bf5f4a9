#include "Json/JsonReader.h"

#include "Json/JsonError.h"
#include "OrvexLanguage.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>

namespace orvex::platform {
namespace {

/// The message that an operation fails with, or "(none)".
template <typename Operation>
std::string failureOf(Operation&& operation) {
    try {
        operation();
    } catch (const JsonError& error) {
        return error.message().toStdString();
    }
    return "(none)";
}

JsonReader parse(const QByteArray& json, JsonNumbers numbers = JsonNumbers::finite) {
    return JsonReader::parse(json, numbers);
}

/// The member "v" of an object that has only this one.
JsonReader value(const QByteArray& json, JsonNumbers numbers = JsonNumbers::finite) {
    return parse("{\"v\":" + json + "}", numbers).at("v");
}

// Documents

TEST(JsonReader, readsAnObjectOrAnArray) {
    EXPECT_EQ(parse(R"({"a":"b"})").at("a").text(), u"b");
    EXPECT_EQ(parse(R"(["a","b"])").count(), 2);
}

TEST(JsonReader, readsBytesThatAreNoTerminatedText) {
    const QByteArray bytes = "[1]garbage";
    EXPECT_EQ(JsonReader::parse(QByteArrayView(bytes).first(3)).count(), 1);
}

TEST(JsonReader, skipsAByteOrderMark) {
    EXPECT_EQ(parse("\xEF\xBB\xBF{\"a\":1}").at("a").integer(), 1);
}

TEST(JsonReader, takesWhiteSpaceAnywhere) {
    EXPECT_EQ(parse(" \t\r\n{ \"a\" :\r\n [ 1 , 2 ] }\n ").at("a").count(), 2);
}

struct Broken {
    const char* name;
    QByteArray json;
};

void PrintTo(const Broken& broken, std::ostream* out) {
    *out << broken.name;
}

class BrokenJson : public ::testing::TestWithParam<Broken> {};

TEST_P(BrokenJson, isRefused) {
    EXPECT_THROW((void)parse(GetParam().json), JsonError);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, BrokenJson,
    ::testing::Values(Broken{"empty", ""}, Broken{"onlyAMark", "\xEF\xBB\xBF"}, Broken{"cut", R"({"a":1)"},
                      Broken{"trailingComma", "[1,]"}, Broken{"twoValues", "{}{}"}, Broken{"comment", "[1 /* one */]"},
                      Broken{"singleQuotes", "{'a':1}"}, Broken{"bareWord", "[NaN]"}, Broken{"leadingPlus", "[+1]"},
                      Broken{"leadingZero", "[01]"}, Broken{"hexadecimal", "[0x10]"},
                      Broken{"beyondTheRange", "[1e400]"}, Broken{"notUtf8", "[\"\xC3\x28\"]"},
                      Broken{"overlongUtf8", "[\"\xC0\xAF\"]"}, Broken{"utf16", QByteArray("\xFF\xFE[\0]\0", 6)},
                      Broken{"nul", QByteArray("[1]\0", 4)}, Broken{"openText", "[\"a]"}, Broken{"bareNumber", "7"},
                      Broken{"bareText", "\"a\""}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(JsonReader, saysWhereADocumentIsBroken) {
    EXPECT_EQ(failureOf([] { (void)parse(R"({"a":1)"); }), "Not valid JSON (at byte 6).");
}

TEST(JsonReader, refusesNestingDeeperThanALimit) {
    const auto nested = [](int depth) { return QByteArray(depth, '[') + QByteArray(depth, ']'); };
    EXPECT_EQ(failureOf([&] { (void)parse(nested(1024)); }), "(none)");
    EXPECT_NE(failureOf([&] { (void)parse(nested(1025)); }), "(none)");
    EXPECT_NE(failureOf([&] { (void)parse(nested(1000000)); }), "(none)");
    EXPECT_NE(failureOf([&] { (void)parse(QByteArray(1000000, '[')); }), "(none)");
}

// Members

TEST(JsonReader, ignoresUnknownKeys) {
    EXPECT_EQ(parse(R"({"x":{"y":[]},"a":1,"z":null})").at("a").integer(), 1);
}

TEST(JsonReader, takesTheLastOfDuplicateKeys) {
    EXPECT_EQ(parse(R"({"a":1,"b":5,"a":2})").at("a").integer(), 2);
    EXPECT_EQ(parse(R"({"a":1,"a":"two","a":3})").members().size(), 1);
    EXPECT_EQ(parse(R"({"a":1,"a":null})").find("a").has_value(), false);
}

TEST(JsonReader, tellsMissingNullAndPresentApart) {
    const JsonReader object = parse(R"({"null":null,"one":1})");
    EXPECT_TRUE(object.contains("null"));
    EXPECT_FALSE(object.find("null"));
    EXPECT_FALSE(object.contains("missing"));
    EXPECT_FALSE(object.find("missing"));
    ASSERT_TRUE(object.find("one"));
    EXPECT_EQ(object.find("one")->integer(), 1);
    EXPECT_EQ(failureOf([&] { (void)object.at("null").integer(); }), "null: Expected an integer.");
    EXPECT_EQ(failureOf([&] { (void)object.at("missing"); }), "missing: The required key is missing.");
}

TEST(JsonReader, namesTheKeyPath) {
    const JsonReader items = parse(R"({"items":[{"size":{}},{"size":{"w":"x"}}]})").at("items");
    const JsonReader size = items.element(1).at("size");
    EXPECT_EQ(size.keyPath(), u"items[1].size");
    EXPECT_EQ(failureOf([&] { (void)size.at("w").number(); }), "items[1].size.w: Expected a number.");
    EXPECT_EQ(failureOf([&] { (void)size.at("h"); }), "items[1].size.h: The required key is missing.");
    EXPECT_EQ(failureOf([&] { size.fail(QStringLiteral("Too small.")); }), "items[1].size: Too small.");
    EXPECT_EQ(failureOf([] { (void)parse("[[1]]").element(0).element(0).text(); }), "[0][0]: Expected text.");
    EXPECT_EQ(failureOf([] { (void)parse("[]").at("a"); }), "Expected an object.");
}

TEST(JsonReader, keepsPlaceholdersInKeysAsTheyAre) {
    EXPECT_EQ(failureOf([] { (void)parse(R"({"%1 %2":1})").at("%1 %2").text(); }), "%1 %2: Expected text.");
}

TEST(JsonReader, listsMembersSortedByKey) {
    const auto members = parse(R"({"b":1,"a":2,"Z":3})").members();
    ASSERT_EQ(members.size(), 3);
    EXPECT_EQ(members[0].first, u"Z");
    EXPECT_EQ(members[1].first, u"a");
    EXPECT_EQ(members[1].second.integer(), 2);
    EXPECT_EQ(members[2].first, u"b");
    EXPECT_EQ(members[2].second.keyPath(), u"b");
}

// Types

TEST(JsonReader, demandsTheType) {
    const auto failureOfReading = [](const QByteArray& json, auto&& read) {
        return failureOf([&] { (void)read(value(json)); });
    };
    const auto text = [](const JsonReader& r) { return r.text(); };
    const auto number = [](const JsonReader& r) { return r.number(); };
    const auto integer = [](const JsonReader& r) { return r.integer(); };
    EXPECT_EQ(failureOfReading("1", text), "v: Expected text.");
    EXPECT_EQ(failureOfReading("null", text), "v: Expected text.");
    EXPECT_EQ(failureOfReading("\"1\"", number), "v: Expected a number.");
    EXPECT_EQ(failureOfReading("true", number), "v: Expected a number.");
    EXPECT_EQ(failureOfReading("true", integer), "v: Expected an integer.");
    EXPECT_EQ(failureOfReading("\"1\"", integer), "v: Expected an integer.");
    EXPECT_EQ(failureOfReading("1", [](const JsonReader& r) { return r.boolean(); }), "v: Expected true or false.");
    EXPECT_EQ(failureOfReading("{}", [](const JsonReader& r) { return r.count(); }), "v: Expected an array.");
    EXPECT_EQ(failureOfReading("[]", [](const JsonReader& r) { return r.members(); }), "v: Expected an object.");
    EXPECT_EQ(failureOfReading("[]", [](const JsonReader& r) { return r.find("a"); }), "v: Expected an object.");
    EXPECT_EQ(failureOfReading("[]", [](const JsonReader& r) { return r.contains("a"); }), "v: Expected an object.");
}

TEST(JsonReader, failsInChinese) {
    OrvexLanguage::setConfigured(QStringLiteral("zh-Hans"));
    EXPECT_EQ(failureOf([] { (void)value("1").text(); }), "v：应为文本。");
    EXPECT_EQ(failureOf([] { (void)parse("{}").at("a"); }), "a：缺少必需的键。");
    OrvexLanguage::setConfigured(QStringLiteral("en"));
}

TEST(JsonReader, readsTexts) {
    EXPECT_EQ(value(R"("a\/b/c\u753b\ud83d\ude00\n\"\\")").text(), QString::fromUtf8("a/b/c画😀\n\"\\"));
    EXPECT_EQ(value("\"\"").text(), QString());
    EXPECT_TRUE(value("true").boolean());
    EXPECT_FALSE(value("false").boolean());
}

struct Integer {
    const char* name;
    const char* json;
    std::optional<qint64> expected;
};

void PrintTo(const Integer& integer, std::ostream* out) {
    *out << integer.name;
}

class JsonInteger : public ::testing::TestWithParam<Integer> {};

TEST_P(JsonInteger, isTheSameInEverySpelling) {
    if (GetParam().expected) {
        EXPECT_EQ(value(GetParam().json).integer(), *GetParam().expected);
    } else {
        EXPECT_EQ(failureOf([] { (void)value(GetParam().json).integer(); }), "v: Expected an integer.");
    }
}

constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

INSTANTIATE_TEST_SUITE_P(
    Spellings, JsonInteger,
    ::testing::Values(Integer{"plain", "1", 1}, Integer{"withFraction", "1.0", 1}, Integer{"withExponent", "1e0", 1},
                      Integer{"shiftedUp", "0.6E+4", 6000}, Integer{"shiftedDown", "10e-1", 1}, Integer{"zero", "0", 0},
                      Integer{"zeroFraction", "0.0", 0}, Integer{"negativeZero", "-0.0", 0},
                      Integer{"negative", "-7", -7}, Integer{"beyondADouble", "9007199254740993", 9007199254740993},
                      Integer{"largest", "9223372036854775807", largest},
                      Integer{"beyondTheLargest", "9223372036854775808", std::nullopt},
                      Integer{"smallest", "-9223372036854775808", smallest},
                      Integer{"belowTheSmallest", "-9223372036854777856", std::nullopt},
                      Integer{"farBeyond", "1e19", std::nullopt}, Integer{"fraction", "1.5", std::nullopt},
                      Integer{"tinyFraction", "1e-300", std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(JsonReader, readsNumbersToTheLastBit) {
    EXPECT_EQ(value("0.1").number(), 0.1);
    EXPECT_EQ(value("5").number(), 5.0);
    EXPECT_EQ(value("708.66141732283472").number(), 708.6614173228347);
    EXPECT_EQ(value("1.7976931348623157e308").number(), std::numeric_limits<double>::max());
    EXPECT_EQ(value("9007199254740993").number(), 9007199254740992.0);
    EXPECT_EQ(value("9223372036854775808").number(), 9223372036854775808.0);
    EXPECT_EQ(value("5e-324").number(), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(value("-0.0").number(), 0.0);
}

TEST(JsonReader, keepsAByteOrderMarkThatATextBeginsWith) {
    const JsonReader reader = parse("\uFEFF{\"a\":[\"\uFEFFx\uFEFF\",\"\\uFEFF\"],\"\uFEFFb\":1}");
    EXPECT_EQ(reader.at("a").element(0).text(), u"\uFEFFx\uFEFF");
    EXPECT_EQ(reader.at("a").element(1).text(), u"\uFEFF");
    EXPECT_EQ(reader.members()[1].first, u"\uFEFFb");
    EXPECT_NE(failureOf([] { (void)parse("{\uFEFF\"a\":1}"); }), "(none)");
}

TEST(JsonReader, readsTextsForNumbersThatJsonLacksOnlyWhereAsked) {
    constexpr auto asked = JsonNumbers::orNonFiniteText;
    EXPECT_TRUE(std::isnan(value("\"NaN\"", asked).number()));
    EXPECT_EQ(value("\"Infinity\"", asked).number(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("\"-Infinity\"", asked).number(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("2.5", asked).number(), 2.5);
    EXPECT_EQ(value("\"NaN\"", asked).text(), u"NaN");
    for (const char* other : {"\"nan\"", "\"inf\"", "\"+Infinity\"", "\"1\"", "\"\"", "null"}) {
        EXPECT_EQ(failureOf([&] { (void)value(other, asked).number(); }), "v: Expected a number.");
    }
    EXPECT_EQ(failureOf([] { (void)value("\"NaN\"").number(); }), "v: Expected a number.");
    EXPECT_EQ(failureOf([] { (void)value("\"NaN\"", asked).integer(); }), "v: Expected an integer.");
}

TEST(JsonReader, passesTheKindOfNumbersOnToItsMembers) {
    const JsonReader reader = parse(R"({"a":[{"b":"NaN"}]})", JsonNumbers::orNonFiniteText);
    EXPECT_TRUE(std::isnan(reader.at("a").element(0).find("b")->number()));
    EXPECT_TRUE(std::isnan(reader.members()[0].second.element(0).members()[0].second.number()));
}

TEST(JsonReader, readsIdsInEitherCase) {
    const QUuid expected = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4");
    EXPECT_EQ(value("\"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4\"").uuid(), expected);
    EXPECT_EQ(value("\"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4\"").uuid(), expected);
    for (const char* other :
         {"\"\"", "\"{9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4}\"", "\"9B2F4E1C0D3A4B5C8D6E7F8091A2B3C4\"",
          "\" 9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4\"", "\"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4\\n\"",
          "\"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3CG\""}) {
        EXPECT_EQ(failureOf([&] { (void)value(other).uuid(); }), "v: Expected a UUID.");
    }
}

TEST(JsonReader, readsAddresses) {
    EXPECT_EQ(value("\"file:\\/\\/\\/a%20b\\/c.png\"").url().toLocalFile(), u"/a b/c.png");
    EXPECT_EQ(value("\"relative/path\"").url().path(), u"relative/path");
    EXPECT_EQ(failureOf([] { (void)value("\"\"").url(); }), "v: Expected a URL.");
    EXPECT_EQ(failureOf([] { (void)value("\"http://[\"").url(); }), "v: Expected a URL.");
}

} // namespace

TEST(JsonReader, ReadsAnArrayOfTexts) {
    EXPECT_EQ(JsonReader::parse(R"(["a","画"])").texts(), QStringList({QStringLiteral("a"), QStringLiteral("画")}));
    EXPECT_EQ(JsonReader::parse("[]").texts(), QStringList());
}

TEST(JsonReader, TellsWhichElementIsNoText) {
    try {
        static_cast<void>(JsonReader::parse(R"({"names":["a",1]})").at("names").texts());
        FAIL() << "a number was taken for a text";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.keyPath(), QStringLiteral("names[1]"));
    }
}

} // namespace orvex::platform
