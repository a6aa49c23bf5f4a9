#include "InspectionResult.h"

#include "InChinese.h"
#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using test::text;

struct Diagnosed {
    const char* name;
    InspectionResult result;
    const char* english;
    const char* chinese;
};

void PrintTo(const Diagnosed& row, std::ostream* out) {
    *out << row.name;
}

class Diagnostic : public ::testing::TestWithParam<Diagnosed> {};

/// What a diagnostic shows of an output.
QString shown(const QString& output) {
    const QString diagnostic = InspectionResult{.output = output, .status = 0}.diagnostic(text("C"));
    EXPECT_TRUE(diagnostic.startsWith(text("C ")));
    return diagnostic.sliced(2);
}

} // namespace

TEST_P(Diagnostic, JoinsWhatIsKnownInItsOrder) {
    EXPECT_EQ(GetParam().result.diagnostic(text("Context")), text(GetParam().english));
}

TEST_P(Diagnostic, SpeaksChineseToo) {
    const test::InChinese chinese;
    EXPECT_EQ(GetParam().result.diagnostic(text("上下文")), text(GetParam().chinese));
}

INSTANTIATE_TEST_SUITE_P(
    InspectionResult, Diagnostic,
    ::testing::Values(
        Diagnosed{"Nothing", {.output = {}, .status = std::nullopt}, "Context", "上下文"},
        Diagnosed{"StatusZero", {.output = {}, .status = 0}, "Context", "上下文"},
        Diagnosed{"TimedOut",
                  {.output = {}, .status = std::nullopt, .timedOut = true},
                  "Context The command timed out and was stopped.",
                  "上下文 命令超时，已被停止。"},
        Diagnosed{"Truncated",
                  {.output = {}, .status = 0, .truncated = true},
                  "Context Output exceeded the safe length limit. Results are incomplete.",
                  "上下文 输出超过安全长度上限，结果不完整。"},
        Diagnosed{"StatusOne", {.output = {}, .status = 1}, "Context Exit status 1.", "上下文 退出状态为 1。"},
        Diagnosed{
            "NegativeStatus", {.output = {}, .status = -15}, "Context Exit status -15.", "上下文 退出状态为 -15。"},
        Diagnosed{"LargeStatus",
                  {.output = {}, .status = std::numeric_limits<qint32>::max()},
                  "Context Exit status 2147483647.",
                  "上下文 退出状态为 2147483647。"},
        Diagnosed{"Output",
                  {.output = text("lpstat: trouble"), .status = 0},
                  "Context lpstat: trouble",
                  "上下文 lpstat: trouble"},
        Diagnosed{"OutputWithPlaceholders",
                  {.output = text("%1 %2 %L1 %%"), .status = 1},
                  "Context Exit status 1. %1 %2 %L1 %%",
                  "上下文 退出状态为 1。 %1 %2 %L1 %%"},
        Diagnosed{"OutputTrimmed",
                  {.output = text(" \t\r\n\u00A0\u2028 one \n two\u3000\n\n"), .status = 0},
                  "Context one \n two",
                  "上下文 one \n two"},
        Diagnosed{"OutputOfWhiteSpace", {.output = text(" \t\r\n\u00A0"), .status = 0}, "Context", "上下文"},
        Diagnosed{"Everything",
                  {.output = text("words\n"), .status = 9, .timedOut = true, .truncated = true},
                  "Context The command timed out and was stopped. Output exceeded the safe length limit. Results are "
                  "incomplete. Exit status 9. words",
                  "上下文 命令超时，已被停止。 输出超过安全长度上限，结果不完整。 退出状态为 9。 words"}),
    test::RowName());

TEST(InspectionResult, KeepsAContextAsItStands) {
    EXPECT_EQ((InspectionResult{.output = {}, .status = 2}).diagnostic(text(" %1: ")), text(" %1:  Exit status 2."));
}

TEST(InspectionResult, ShowsTheFirst1500CharactersOfTheOutput) {
    EXPECT_EQ(shown(QString(1500, u'x')), QString(1500, u'x'));
    EXPECT_EQ(shown(QString(1500, u'x') + u'y'), QString(1500, u'x'));
    EXPECT_EQ(shown(QString(1499, u'x') + text("yz")), QString(1499, u'x') + u'y');
    EXPECT_EQ(shown(QString(100000, u'x')), QString(1500, u'x'));
}

TEST(InspectionResult, TrimsTheOutputBeforeItIsCut) {
    EXPECT_EQ(shown(QString(700, u' ') + QString(1500, u'x') + QString(700, u'\n')), QString(1500, u'x'));
    EXPECT_EQ(shown(QString(1499, u'x') + text(" y")), QString(1499, u'x') + u' ');
}

struct Character {
    const char* name;
    const char* utf8; ///< what a person counts as one
};

void PrintTo(const Character& row, std::ostream* out) {
    *out << row.name;
}

class WholeCharacter : public ::testing::TestWithParam<Character> {};

TEST_P(WholeCharacter, CountsAsOneAndIsNeverParted) {
    const QString one = text(GetParam().utf8);
    EXPECT_EQ(shown(QString(1499, u'x') + one + u'y'), QString(1499, u'x') + one);
    EXPECT_EQ(shown(QString(1500, u'x') + u'y' + one), QString(1500, u'x'));
    EXPECT_EQ(shown(text("x") + one.repeated(1500) + u'y'), text("x") + one.repeated(1499));
}

INSTANTIATE_TEST_SUITE_P(InspectionResult, WholeCharacter,
                         ::testing::Values(Character{"LetterWithAnAccent", "e\u0301"},
                                           Character{"LetterWithManyMarks", "a\u0301\u0323\u0308\u0302"},
                                           Character{"BeyondTheBasicPlane", "\U00020BB7"},
                                           Character{"Emoji", "\U0001F600"},
                                           Character{"EmojiWithASkinTone", "\U0001F44D\U0001F3FD"},
                                           Character{"Keycap", "1\uFE0F\u20E3"},
                                           Character{"HangulSyllableOfParts", "\u1112\u1161\u11AB"},
                                           Character{"CarriageReturnAndLineFeed", "\r\n"}),
                         test::RowName());

TEST(InspectionResult, IsCleanOnlyWithTheWholeOutputOfAnEndWithStatusZero) {
    EXPECT_TRUE((InspectionResult{.output = {}, .status = 0}).isClean());
    EXPECT_TRUE((InspectionResult{.output = text("trouble"), .status = 0}).isClean());
    EXPECT_FALSE((InspectionResult{.output = {}, .status = std::nullopt}).isClean());
    EXPECT_FALSE((InspectionResult{.output = {}, .status = 1}).isClean());
    EXPECT_FALSE((InspectionResult{.output = {}, .status = -9}).isClean());
    EXPECT_FALSE((InspectionResult{.output = {}, .status = 0, .timedOut = true}).isClean());
    EXPECT_FALSE((InspectionResult{.output = {}, .status = 0, .truncated = true}).isClean());
}

} // namespace orvex
