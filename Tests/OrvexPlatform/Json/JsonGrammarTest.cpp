#include "Json/JsonGrammar.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

#include <vector>

namespace orvex::platform {

namespace {

struct Departure {
    QByteArray text;
    qsizetype offset;
};

void expectAccepted(const QByteArrayList& texts) {
    for (const QByteArray& text : texts) {
        EXPECT_EQ(jsonGrammarError(text), std::nullopt) << text.toPercentEncoding(" {}[]\",:\\+/").constData();
    }
}

void expectRefused(const std::vector<Departure>& departures) {
    for (const Departure& each : departures) {
        EXPECT_EQ(jsonGrammarError(each.text), each.offset) << each.text.toPercentEncoding(" {}[]\",:\\+/").constData();
    }
}

QByteArray nested(int depth, const QByteArray& open, const QByteArray& close) {
    return open.repeated(depth) + close.repeated(depth);
}

} // namespace

TEST(JsonGrammar, TakesEveryKindOfValueAsADocument) {
    expectAccepted({"{}", "[]", "\"\"", "0", "true", "false", "null", "{\"a\":[1,{\"b\":null}]}"});
}

TEST(JsonGrammar, TakesTheFourKindsOfSpaceBetweenAnyTwoTokens) {
    expectAccepted({" \t\n\r[ \t\n\r1 \t\n\r, \t\n\r2 \t\n\r] \t\n\r", "\r\n{\r\n\"a\"\t:\t1 ,\n\"b\" : [ ] }\n", "[ ]",
                    "{ \n}", " 7 "});
    for (const char* space : {"\v", "\f", "\b", "\xC2\xA0", "\xE2\x80\xA8", "\xEF\xBB\xBF"}) {
        expectRefused(
            {{QByteArray(space) + "[]", 0}, {QByteArray("[") + space + "]", 1}, {QByteArray("[]") + space, 2}});
    }
    expectRefused({{QByteArray("[]\0", 3), 2}, {QByteArray("\0[]", 3), 0}});
}

TEST(JsonGrammar, NeedsExactlyOneValue) {
    expectRefused({{"", 0},
                   {" \n", 2},
                   {"{}{}", 2},
                   {"[] []", 3},
                   {"1 2", 2},
                   {"[],", 2},
                   {",", 0},
                   {"]", 0},
                   {"}", 0},
                   {":", 0},
                   {"[]x", 2},
                   {"// remark\n[]", 0},
                   {"[]/* remark */", 2},
                   {"[1 // remark\n]", 3}});
}

TEST(JsonGrammar, KnowsThreeWordsInLowerCase) {
    expectRefused({{"t", 1},         {"tru", 3},  {"trUe", 2},      {"truee", 4}, {"True", 0},
                   {"f", 1},         {"fals", 4}, {"falze", 3},     {"False", 0}, {"n", 1},
                   {"nul", 3},       {"nil", 1},  {"Null", 0},      {"NaN", 0},   {"Infinity", 0},
                   {"-Infinity", 1}, {"-NaN", 1}, {"undefined", 0}, {"nan", 1},   {"[truefalse]", 5}});
}

TEST(JsonGrammar, TakesEveryFormOfANumber) {
    expectAccepted({"0",
                    "-0",
                    "1",
                    "-1",
                    "10",
                    "1234567890",
                    "0.0",
                    "-0.0",
                    "0.10",
                    "1.5",
                    "-1.5",
                    "1e0",
                    "1E0",
                    "1e+0",
                    "1E-0",
                    "1.5e10",
                    "-1.5E+010",
                    "0e0",
                    "0.0e-0",
                    "1e999",
                    "1e00001",
                    "9007199254740993",
                    "18446744073709551616",
                    "0.000000000000000000000000000001"});
}

TEST(JsonGrammar, RefusesWhatIsNoNumber) {
    expectRefused({{"01", 1},     {"-01", 2},      {"00", 1},       {"1.", 2},   {".5", 0},    {"-.5", 1},
                   {"1.e5", 2},   {"1e", 2},       {"1E", 2},       {"1e+", 3},  {"1e-", 3},   {"1e++1", 3},
                   {"1e+-1", 3},  {"1e1.5", 3},    {"1e1e1", 3},    {"+1", 0},   {"-", 1},     {"--1", 1},
                   {"- 1", 1},    {"1 .5", 2},     {"1.5.5", 3},    {"0x10", 1}, {"1_000", 1}, {"1,000", 1},
                   {"1f", 1},     {"1.0f", 3},     {"e5", 0},       {"-e5", 1},  {"0.", 2},    {"-0.", 3},
                   {"[1.]", 3},   {"[.1]", 1},     {"[01]", 2},     {"[1e]", 3}, {"[-]", 2},   {"{\"a\":1.}", 7},
                   {"[1. 5]", 3}, {"\xD9\xA1", 0}, {"1\xD9\xA1", 1}});
}

TEST(JsonGrammar, TakesEveryEscape) {
    expectAccepted({R"("\"\\\/\b\f\n\r\t")", R"("\u0000\u001f\uABCD\uabcd\uAbC9")", R"("\ud83d\ude00")", R"("\ud83d")",
                    R"("\\\\")", R"("\\\"")", R"({"\u0061\/":"\\"})"});
}

TEST(JsonGrammar, RefusesEveryOtherEscape) {
    const QByteArray known = "\"\\/bfnrtu";
    for (int letter = 0; letter < 256; ++letter) {
        const char byte = static_cast<char>(letter);
        if (!known.contains(byte)) {
            expectRefused({{QByteArray("\"a\\") + byte + "\"", 3}});
        }
    }
    expectRefused({{R"("\u")", 3},
                   {R"("\u0")", 4},
                   {R"("\u00")", 5},
                   {R"("\u000")", 6},
                   {R"("\u000g")", 6},
                   {R"("\uG000")", 3},
                   {R"("\u 000")", 3},
                   {R"("\u-001")", 3},
                   {R"("\U0041")", 2},
                   {R"("\u{41}")", 3},
                   {"\"\\u00", 5},
                   {"\"\\u", 3},
                   {"\"\\", 2},
                   {R"("\)", 2}});
}

TEST(JsonGrammar, RefusesControlCharactersInTextsAndTakesAllOtherBytes) {
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const QByteArray text = QByteArray("\"a") + byte + "b\"";
        if (value < 0x20) {
            expectRefused({{text, 2}, {"{" + text + ":1}", 3}});
        } else if (byte != '"' && byte != '\\') {
            expectAccepted({text, "{" + text + ":1}"});
        }
    }
}

TEST(JsonGrammar, NeedsTheEndOfEveryText) {
    expectRefused(
        {{"\"", 1}, {"\"abc", 4}, {"\"abc\\\"", 6}, {"[\"abc]", 6}, {"{\"a", 3}, {"'a'", 0}, {"\"a\"b\"", 3}});
}

TEST(JsonGrammar, NeedsOneCommaBetweenTheElementsOfAnArray) {
    expectAccepted({"[1]", "[1,2]", "[[],[]]", "[\"a\",{},null,true,-1]"});
    expectRefused({{"[", 1},
                   {"[ ", 2},
                   {"[1", 2},
                   {"[1,", 3},
                   {"[1,]", 3},
                   {"[1 , ]", 5},
                   {"[,]", 1},
                   {"[,1]", 1},
                   {"[1,,2]", 3},
                   {"[1 2]", 3},
                   {"[1;2]", 2},
                   {"[1}", 2},
                   {"[1]]", 3},
                   {"[1:2]", 2},
                   {"[\"a\":1]", 4},
                   {"[[1,2]", 6}});
}

TEST(JsonGrammar, NeedsATextAndAColonBeforeEveryValueOfAnObject) {
    expectAccepted({"{\"a\":1}", "{\"a\":1,\"b\":2}", "{\"\":{}}", "{\"a\":1,\"a\":2}"});
    expectRefused({{"{", 1},
                   {"{\"a\"", 4},
                   {"{\"a\":", 5},
                   {"{\"a\":}", 5},
                   {"{\"a\":1", 6},
                   {"{\"a\":1,", 7},
                   {"{\"a\":1,}", 7},
                   {"{,}", 1},
                   {"{\"a\"}", 4},
                   {"{\"a\",1}", 4},
                   {"{\"a\"=1}", 4},
                   {"{\"a\"::1}", 5},
                   {"{\"a\" 1}", 5},
                   {"{a:1}", 1},
                   {"{1:1}", 1},
                   {"{null:1}", 1},
                   {"{[]:1}", 1},
                   {"{'a':1}", 1},
                   {"{\"a\":1 \"b\":2}", 7},
                   {"{\"a\":1,,\"b\":2}", 7},
                   {"{\"a\":1]", 6}});
}

TEST(JsonGrammar, TakesAsManyLevelsAsTheLimitSays) {
    const QByteArray deep = nested(1023, "[", "]");
    expectAccepted({"[" + deep + "]", "[" + deep + "," + deep + "]",
                    QByteArray("{\"a\":").repeated(1024) + "1" + QByteArray(1024, '}')});
    expectRefused({{nested(1025, "[", "]"), 1024},
                   {QByteArray("{\"a\":").repeated(1025), 1024 * 5},
                   {QByteArray("[{\"a\":").repeated(513), 512 * 6},
                   {QByteArray(10'000'000, '['), 1024}});
}

TEST(JsonGrammar, ReadsNoFurtherThanTheTextGoes) {
    const QByteArray bytes = "[true]";
    for (qsizetype size = 0; size < bytes.size(); ++size) {
        EXPECT_EQ(jsonGrammarError(QByteArrayView(bytes).first(size)), size);
    }
    EXPECT_EQ(jsonGrammarError(QByteArrayView(bytes).first(6)), std::nullopt);
    EXPECT_EQ(jsonGrammarError(QByteArrayView()), 0);
}

} // namespace orvex::platform
