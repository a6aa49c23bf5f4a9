#include "Text.h"

#include <gtest/gtest.h>

namespace orvex::platform {

TEST(Text, HasLinesBetweenNewlinesOfEveryKind) {
    EXPECT_EQ(filledLines(u"a\nb\vc\fd\re\u0085f\u2028g\u2029h\r\n\n i "),
              QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                           QStringLiteral("e"), QStringLiteral("f"), QStringLiteral("g"), QStringLiteral("h"),
                           QStringLiteral(" i ")}));
}

TEST(Text, KeepsAByteOrderMark) {
    EXPECT_EQ(textWithReplacements("\xEF\xBB\xBF{"), QStringLiteral("\uFEFF{"));
    EXPECT_EQ(validText("\xEF\xBB\xBF{"), QStringLiteral("\uFEFF{"));
}

TEST(Text, ReplacesInvalidSequencesOrIsNone) {
    EXPECT_EQ(textWithReplacements("a\xFF z\xE7\x94\xBB"), QStringLiteral("a\uFFFD z画"));
    EXPECT_EQ(validText("a\xE7\x94\xBB"), QStringLiteral("a画"));
    for (const char* invalid : {"a\xFF", "a\xE4", "a\xE4\xBD", "\xC0\x80", "\xED\xA0\x80"}) {
        EXPECT_EQ(validText(invalid), std::nullopt) << invalid;
    }
}

TEST(Text, OfNothingHasNoLines) {
    EXPECT_EQ(filledLines(u""), QStringList());
    EXPECT_EQ(filledLines(u"\n\r\n"), QStringList());
}

TEST(Text, HasWordsBetweenWhiteSpaceOfEveryKind) {
    EXPECT_EQ(words(u" a\tb\u00A0c\u3000d\n*e  "),
              QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                           QStringLiteral("*e")}));
}

TEST(Text, KnowsLettersAndDigitsOfAnyScript) {
    for (const char32_t scalar : {U'a', U'Z', U'7', U'é', U'画', U'٣', U'\U0001D7D8', U'\U00020000'}) {
        EXPECT_TRUE(isLetterOrDigit(scalar)) << static_cast<unsigned>(scalar);
    }
    for (const char32_t scalar : {U'_', U' ', U'-', U'½', U'²', U'Ⅷ', U'\u0301', U'\U0001F600', U'\uFFFD'}) {
        EXPECT_FALSE(isLetterOrDigit(scalar)) << static_cast<unsigned>(scalar);
    }
}

TEST(Text, IsCutBetweenCharactersAsAPersonCountsThem) {
    EXPECT_EQ(firstCharacters(QStringLiteral("abc"), 2), QStringLiteral("ab"));
    EXPECT_EQ(firstCharacters(QStringLiteral("abc"), 3), QStringLiteral("abc"));
    EXPECT_EQ(firstCharacters(QStringLiteral("e\u0301e\u0301"), 1), QStringLiteral("e\u0301"));
    EXPECT_EQ(firstCharacters(QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467画布"), 2),
              QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467画"));
    EXPECT_EQ(firstCharacters(QStringLiteral("e\u0301"), 5), QStringLiteral("e\u0301"));
    EXPECT_EQ(firstCharacters(QStringLiteral("abc"), 0), QString());
}

TEST(Text, IsOrderedAsItsBytesInUtf8Are) {
    const QStringList ascending{QString(),
                                QStringLiteral("A"),
                                QStringLiteral("AB"),
                                QStringLiteral("a"),
                                QStringLiteral("画"),
                                QStringLiteral("\uE000"),
                                QStringLiteral("（"),
                                QStringLiteral("\U0001F600"),
                                QStringLiteral("\U0010FFFD")};
    for (qsizetype first = 0; first < ascending.size(); ++first) {
        for (qsizetype second = 0; second < ascending.size(); ++second) {
            EXPECT_EQ(ScalarOrder()(ascending[first], ascending[second]), first < second) << first << " " << second;
            EXPECT_EQ(ascending[first].toUtf8() < ascending[second].toUtf8(), first < second);
        }
    }
}

} // namespace orvex::platform
