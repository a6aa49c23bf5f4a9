#include "DriverPaperGeometry.h"

#include "TemporaryFolder.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ostream>

namespace orvex {
namespace {

using DriverPaperGeometry::paperDimensions;
using test::TemporaryFolder;

/// "name width height" of each paper, parted by semicolons.
std::string shown(const QMap<QString, Size>& sizes) {
    QStringList papers;
    for (auto each = sizes.begin(); each != sizes.end(); ++each) {
        papers.append(QStringLiteral("%1 %2 %3").arg(each.key()).arg(each->width).arg(each->height));
    }
    return papers.join(u';').toStdString();
}

struct Description {
    const char* name;
    const char* text;
    const char* expected;
};

void PrintTo(const Description& row, std::ostream* out) {
    *out << row.name;
}

class PaperDimensions : public ::testing::TestWithParam<Description> {};

TEST_P(PaperDimensions, areWhatTheTextDeclares) {
    EXPECT_EQ(shown(paperDimensions(QString::fromUtf8(GetParam().text))), GetParam().expected);
}

const char* const a4 = "*PaperDimension A4/A4: \"595.28 841.89\"";

INSTANTIATE_TEST_SUITE_P(
    Lines, PaperDimensions,
    ::testing::Values(
        Description{"nothing", "", ""}, Description{"onePaper", a4, "A4 595.28 841.89"},
        Description{"severalPapers", "*PaperDimension B: \"1 2\"\n*PageSize B: \"x\"\n*PaperDimension A: \"3 4\"\n",
                    "A 3 4;B 1 2"},
        Description{"theLaterOfOneName", "*PaperDimension A/one: \"1 2\"\n*PaperDimension A/two: \"3 4\"\n", "A 3 4"},
        Description{"anEarlierOneStaysWhereTheLaterIsBad", "*PaperDimension A: \"1 2\"\n*PaperDimension A: \"3\"\n",
                    "A 1 2"},
        Description{"carriageReturns",
                    "*PaperDimension A: \"1 2\"\r\n*PaperDimension B: \"3 4\"\r*PaperDimension "
                    "C: \"5 6\"\r\n",
                    "A 1 2;B 3 4;C 5 6"},
        Description{"newlinesOfUnicode", "x\u2028*PaperDimension A: \"1 2\"\u0085*PaperDimension B: \"3 4\"",
                    "A 1 2;B 3 4"},
        Description{"notAtTheLineStart", " *PaperDimension A: \"1 2\"", ""},
        Description{"aTabBehindTheKeyword", "*PaperDimension\tA: \"1 2\"", ""},
        Description{"anotherKeyword", "*DefaultPaperDimension: A\n*PaperDimensions A: \"1 2\"", ""},
        Description{"otherCase", "*paperdimension A: \"1 2\"", ""},
        Description{"noColon", "*PaperDimension A \"1 2\"", ""},
        Description{"cutAtTheFirstColon", "*PaperDimension A: B: \"1 2\"", "A 1 2"},
        Description{"aColonInTheTranslationEndsTheKey", "*PaperDimension A/3:4: \"1 2\"", "A 1 2"},
        Description{"slashesInTheTranslation", "*PaperDimension A/b/c: \"1 2\"", "A 1 2"},
        Description{"blanksAroundTheName", "*PaperDimension \t A B \u3000: \"1 2\"", "A B 1 2"},
        Description{"noName", "*PaperDimension : \"1 2\"", ""},
        Description{"onlyATranslation", "*PaperDimension  /A: \"1 2\"", ""},
        Description{"aNameOfAnyScript", "*PaperDimension 长卷/Roll: \"4320 14400\"", "长卷 4320 14400"},
        Description{"noQuotes", "*PaperDimension A:1 2", "A 1 2"},
        Description{"quotesAnywhere", "*PaperDimension A: \"\"1\"0 2\"0\"\"", "A 10 20"},
        Description{"anyWhiteSpaceBetween", "*PaperDimension A:\t\"1 \u00a0\u3000 2 \"", "A 1 2"},
        Description{"oneNumber", "*PaperDimension A: \"1\"", ""},
        Description{"threeNumbers", "*PaperDimension A4/A4: \"595.28 841.89 1\"", ""},
        Description{"wordsDoNotCount", "*PaperDimension A: \"1 by 2 pt\"", "A 1 2"},
        Description{"exponentsAndSigns", "*PaperDimension A: \"+1.5e2 .5E+1\"", "A 150 5"},
        Description{"numbersThatAreCut", "*PaperDimension A: \"1e 2 3. -.\"", "A 2 3"},
        Description{"hexadecimal", "*PaperDimension A: \"0x10 0x10 1 2\"", "A 1 2"},
        Description{"wordsForNumbers", "*PaperDimension A: \"inf nan 1 2\"", "A 1 2"},
        Description{"decimalComma", "*PaperDimension A: \"1,5 2\"", ""},
        Description{"digitsOfOtherScripts", "*PaperDimension A: \"１ ２\"", ""},
        Description{"zeroWidth", "*PaperDimension A: \"0 2\"", ""},
        Description{"negativeHeight", "*PaperDimension A: \"1 -2\"", ""},
        Description{"beyondAnyNumber", "*PaperDimension A: \"1 1e999\"", ""},
        Description{"beyondAnyNumberIsANumberAllTheSame", "*PaperDimension A: \"1 2 1e999\"", ""},
        Description{"belowAnyNumber", "*PaperDimension A: \"1 1e-999\"", ""}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(PaperDimensions, areInPoints) {
    EXPECT_EQ(paperDimensions(QString::fromUtf8(a4)).value(QStringLiteral("A4")), (Size{595.28, 841.89}));
}

class DriverDescription : public ::testing::Test {
protected:
    [[nodiscard]] std::string papersOf(const char* queue) const {
        return shown(DriverPaperGeometry::read(QString::fromUtf8(queue), folder_.path()));
    }

    TemporaryFolder folder_;
};

TEST_F(DriverDescription, isReadByTheNameOfItsQueue) {
    folder_.write(QStringLiteral("Canon_iPF-9400.a.ppd"), a4);
    EXPECT_EQ(papersOf("Canon_iPF-9400.a"), "A4 595.28 841.89");
    EXPECT_EQ(papersOf("Canon_iPF-9400"), "");
}

TEST_F(DriverDescription, isReadAsItIsOnASystem) {
    folder_.write(QStringLiteral("W9400.ppd"), TemporaryFolder::read(QStringLiteral(ORVEX_FIXTURES "/Cups/wide.ppd")));
    EXPECT_EQ(papersOf("W9400"), "A4 595.28 841.89;Roll60 4320 14400");
}

TEST_F(DriverDescription, isNeverSoughtUnderANameThatIsNoPlainOne) {
    for (const char* queue : {"", "a b", "a/b", "../a", "a\n", "长卷", "a:b", "a%2e"}) {
        EXPECT_EQ(papersOf(queue), "") << queue;
    }
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("a")));
    folder_.write(QStringLiteral("a/b.ppd"), a4);
    folder_.write(QStringLiteral("a b.ppd"), a4);
    folder_.write(QStringLiteral("长卷.ppd"), a4);
    folder_.write(QStringLiteral(".ppd"), a4);
    for (const char* queue : {"", "a b", "a/b", "长卷"}) {
        EXPECT_EQ(papersOf(queue), "") << queue;
    }
}

TEST_F(DriverDescription, mayHaveANameOfDots) {
    folder_.write(QStringLiteral("...ppd"), a4);
    EXPECT_EQ(papersOf(".."), "A4 595.28 841.89");
}

TEST_F(DriverDescription, givesNoPapersWhereItCannotBeRead) {
    EXPECT_EQ(papersOf("missing"), "");
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("folder.ppd")));
    EXPECT_EQ(papersOf("folder"), "");
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder_.path(QStringLiteral("pipe.ppd"))).constData(), 0600), 0);
    EXPECT_EQ(papersOf("pipe"), "");
    folder_.write(QStringLiteral("empty.ppd"), {});
    EXPECT_EQ(papersOf("empty"), "");
}

TEST_F(DriverDescription, givesNoPapersIfItIsNoUtf8) {
    folder_.write(QStringLiteral("latin.ppd"), QByteArray(a4) + "\n*PaperDimension B/Gr\xF6\xDF"
                                                                "e: \"1 2\"\n");
    EXPECT_EQ(papersOf("latin"), "");
    folder_.write(QStringLiteral("cut.ppd"), QByteArray(a4) + "\n\xE9\x95");
    EXPECT_EQ(papersOf("cut"), "");
}

TEST_F(DriverDescription, isReadUpToItsLimitOnly) {
    QByteArray description = QByteArray(a4) + '\n';
    description.append(DriverPaperGeometry::largestDescriptionBytes - description.size(), ' ');
    folder_.write(QStringLiteral("largest.ppd"), description);
    EXPECT_EQ(papersOf("largest"), "A4 595.28 841.89");
    folder_.write(QStringLiteral("larger.ppd"), description + ' ');
    EXPECT_EQ(papersOf("larger"), "");
}

TEST_F(DriverDescription, isSoughtInThePrintSystemsFolder) {
    EXPECT_STREQ(DriverPaperGeometry::descriptionsFolder, "/etc/cups/ppd");
    EXPECT_EQ(shown(DriverPaperGeometry::read(QStringLiteral("no-queue-has-this-name"))), "");
}

} // namespace
} // namespace orvex
