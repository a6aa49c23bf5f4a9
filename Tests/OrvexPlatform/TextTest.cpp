#include "Text.h"

#include "InChinese.h"

#include <QLocale>

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

TEST(Text, IsMeasuredInCharactersAsAPersonCountsThem) {
    const QString family = QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467");
    const QString accented = QStringLiteral("e\u0301");
    const QString flag = QStringLiteral("\U0001F1E8\U0001F1F3");
    for (const QString& character : {QStringLiteral("a"), QStringLiteral("画"), QStringLiteral("\U00020000"), family,
                                     accented, flag, QStringLiteral("\r\n"), QStringLiteral("\n")}) {
        EXPECT_TRUE(hasAtMostCharacters(character.repeated(200), 200)) << character.toStdString();
        EXPECT_FALSE(hasAtMostCharacters(character.repeated(201), 200)) << character.toStdString();
    }
    EXPECT_TRUE(hasAtMostCharacters({}, 0));
    EXPECT_FALSE(hasAtMostCharacters(QStringLiteral("a"), 0));
    EXPECT_FALSE(hasAtMostCharacters(QString(1'000'000, u'a'), 256));
}

namespace {

/// The locale in which texts are compared, for as long as this lives.
class InLocale {
public:
    explicit InLocale(const QLocale& locale) { QLocale::setDefault(locale); }

    ~InLocale() { QLocale::setDefault(former_); }

    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;

private:
    QLocale former_;
};

const auto locales = {QLocale::c(), QLocale(QStringLiteral("en_US")), QLocale(QStringLiteral("zh_CN"))};

} // namespace

TEST(NaturalOrder, CountsNumbersByTheirValueInEveryLocale) {
    const QStringList ascending{QStringLiteral("Canvas 1"),   QStringLiteral("Canvas 2"),  QStringLiteral("Canvas 9"),
                                QStringLiteral("Canvas 10"),  QStringLiteral("Canvas 11"), QStringLiteral("Canvas 100"),
                                QStringLiteral("Canvas 100a")};
    for (const QLocale& locale : locales) {
        const InLocale here(locale);
        for (qsizetype first = 0; first < ascending.size(); ++first) {
            for (qsizetype second = 0; second < ascending.size(); ++second) {
                const int order = localizedStandardCompare(ascending[first], ascending[second]);
                EXPECT_EQ(order < 0, first < second) << locale.name().toStdString() << first << ' ' << second;
                EXPECT_EQ(order == 0, first == second) << locale.name().toStdString() << first << ' ' << second;
            }
        }
    }
}

TEST(NaturalOrder, PutsLettersBeforeTheirCaseInEveryLocale) {
    for (const QLocale& locale : locales) {
        const InLocale here(locale);
        EXPECT_LT(localizedStandardCompare(QStringLiteral("apple"), QStringLiteral("Banana")), 0);
        EXPECT_LT(localizedStandardCompare(QStringLiteral("Apple"), QStringLiteral("banana")), 0);
        EXPECT_NE(localizedStandardCompare(QStringLiteral("a"), QStringLiteral("A")), 0);
        EXPECT_EQ(localizedStandardCompare({}, {}), 0);
        EXPECT_LT(localizedStandardCompare({}, QStringLiteral("a")), 0);
    }
}

TEST(NaturalOrder, IsThatOfTheLanguageOfTheLocale) {
    const QString three = QStringLiteral("三"); // sān
    const QString one = QStringLiteral("一");   // yī
    {
        const InLocale chinese(QLocale(QStringLiteral("zh_CN")));
        EXPECT_LT(localizedStandardCompare(three, one), 0) << "by their sounds";
    }
    {
        const InLocale english(QLocale(QStringLiteral("en_US")));
        EXPECT_GT(localizedStandardCompare(three, one), 0) << "by their strokes";
    }
}

TEST(NaturalOrder, IsThatOfTheCurrentLanguageWithoutALocale) {
    const InLocale none(QLocale::c());
    EXPECT_GT(localizedStandardCompare(QStringLiteral("三"), QStringLiteral("一")), 0);
    const test::InChinese chinese;
    EXPECT_LT(localizedStandardCompare(QStringLiteral("三"), QStringLiteral("一")), 0);
}

} // namespace orvex::platform
