#include "PrinterTelemetryCommand.h"

#include "PrintFixtures.h"
#include "PrinterTelemetryError.h"

#include <gtest/gtest.h>

#include <functional>

namespace orvex {

namespace {

using test::text;
using test::toolText;

// Queue names

bool isValid(const QString& name) {
    return PrinterTelemetryCommand::isValidQueueName(name);
}

struct Name {
    const char* name;
    QString queueName;
};

void PrintTo(const Name& row, std::ostream* out) {
    *out << row.name;
}

class ValidQueueName : public ::testing::TestWithParam<Name> {};

class InvalidQueueName : public ::testing::TestWithParam<Name> {};

/// The queue's URI among the arguments.
QString uriOf(const char* queueName) {
    return PrinterTelemetryCommand(text(queueName)).arguments().at(3);
}

// The test file

/// The directives that are known to read.
QStringList directives() {
    return text("{\n"
                "NAME \"Get printer attributes using get-printer-attributes\"\n"
                "OPERATION get-printer-attributes\n"
                "VERSION 2.0\n"
                "GROUP operation\n"
                "ATTR charset attributes-charset utf-8\n"
                "ATTR language attributes-natural-language en\n"
                "ATTR uri printer-uri $uri\n"
                "ATTR keyword requested-attributes all,media-col-database\n"
                "STATUS successful-ok\n"
                "EXPECT charset-configured\n"
                "EXPECT charset-supported\n"
                "EXPECT compression-supported\n"
                "EXPECT document-format-default\n"
                "EXPECT document-format-supported\n"
                "EXPECT generated-natural-language-supported\n"
                "EXPECT ipp-versions-supported\n"
                "EXPECT media-col-default\n"
                "EXPECT natural-language-configured\n"
                "EXPECT operations-supported\n"
                "EXPECT printer-info\n"
                "EXPECT printer-is-accepting-jobs\n"
                "EXPECT printer-location\n"
                "EXPECT printer-make-and-model\n"
                "EXPECT printer-more-info\n"
                "EXPECT printer-name\n"
                "EXPECT printer-state\n"
                "EXPECT printer-state-reasons\n"
                "EXPECT printer-up-time\n"
                "EXPECT printer-uri-supported\n"
                "EXPECT uri-authentication-supported\n"
                "EXPECT uri-security-supported\n"
                "}")
        .split(u'\n');
}

constexpr qsizetype directiveCount = 33;

bool isReadOnly(const QString& script) {
    return PrinterTelemetryCommand::isReadOnlyTestScript(script);
}

bool isReadOnly(const QStringList& lines) {
    return isReadOnly(lines.join(u'\n'));
}

/// The directives with a comment before them that makes the whole so many bytes of UTF-8.
QString scriptOfBytes(qsizetype bytes, const QString& filling = text("x")) {
    const QString script = directives().join(u'\n');
    const qsizetype missing = bytes - script.size() - 2; // "#" and the line feed
    const qsizetype size = filling.toUtf8().size();
    return u'#' + filling.repeated(missing / size) + QString(missing % size, u'y') + u'\n' + script;
}

/// Every test is done to each of the directives.
class Directive : public ::testing::TestWithParam<qsizetype> {};

struct Spelling {
    const char* name;
    std::function<QString()> script;
};

void PrintTo(const Spelling& row, std::ostream* out) {
    *out << row.name;
}

class AcceptedSpelling : public ::testing::TestWithParam<Spelling> {};

class RefusedSpelling : public ::testing::TestWithParam<Spelling> {};

QString replaced(const char* before, const char* after) {
    const QString script = directives().join(u'\n');
    EXPECT_EQ(script.count(text(before)), 1) << before;
    return QString(script).replace(text(before), text(after));
}

} // namespace

TEST_P(ValidQueueName, IsTaken) {
    EXPECT_TRUE(isValid(GetParam().queueName));
    EXPECT_NO_THROW((void)PrinterTelemetryCommand(GetParam().queueName));
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryCommand, ValidQueueName,
    ::testing::Values(Name{"Letter", text("a")}, Name{"Digit", text("7")},
                      Name{"AllKindsOfCharacters", text("Canon_iPF9400-2.local")}, Name{"Punctuation", text("_.-")},
                      Name{"ThreeDots", text("...")}, Name{"DotFirst", text(".a")}, Name{"HyphenFirst", text("-p")},
                      Name{"ChineseLetters", text("卷纸打印机")}, Name{"LettersWithAccents", text("Größe_É")},
                      Name{"CyrillicLetters", text("Принтер")}, Name{"LetterBeyondTheBasicPlane", text("\U00020BB7")},
                      Name{"ModifierLetter", text("a\u02B0")}, Name{"ArabicDigits", text("٣٤")},
                      Name{"FullWidthDigits", text("９４００")}, Name{"DigitBeyondTheBasicPlane", text("\U0001D7D8")},
                      Name{"OfMostBytes", QString(127, u'a')}, Name{"OfMostBytesInTwos", text("é").repeated(63) + u'a'},
                      Name{"OfMostBytesInThrees", text("纸").repeated(42) + u'a'},
                      Name{"OfMostBytesInFours", text("\U00020BB7").repeated(31) + text("abc")}),
    test::RowName());

TEST_P(InvalidQueueName, IsRefused) {
    EXPECT_FALSE(isValid(GetParam().queueName));
    try {
        (void)PrinterTelemetryCommand(GetParam().queueName);
        ADD_FAILURE() << "a command was made";
    } catch (const PrinterTelemetryError& error) {
        EXPECT_EQ(error.errorCase(), PrinterTelemetryError::Case::invalidQueueName);
    }
}

INSTANTIATE_TEST_SUITE_P(
    PrinterTelemetryCommand, InvalidQueueName,
    ::testing::Values(Name{"Empty", QString()}, Name{"Dot", text(".")}, Name{"TwoDots", text("..")},
                      Name{"TooManyBytes", QString(128, u'a')}, Name{"TooManyBytesInTwos", text("é").repeated(64)},
                      Name{"TooManyBytesInThrees", text("纸").repeated(42) + text("ab")},
                      Name{"TooManyBytesInFours", text("\U00020BB7").repeated(32)}, Name{"Blank", text("a b")},
                      Name{"OnlyABlank", text(" ")}, Name{"BlankBehind", text("a ")}, Name{"Tab", text("a\tb")},
                      Name{"LineFeed", text("a\n")}, Name{"NoBreakSpace", text("a\u00A0b")},
                      Name{"ZeroWidthSpace", text("a\u200Bb")}, Name{"ByteOrderMark", QChar(0xFEFF) + text("a")},
                      Name{"NUL", QString(QChar(u'\0'))}, Name{"NULBehind", text("a") + QChar(u'\0')},
                      Name{"Slash", text("a/b")}, Name{"UpAFolder", text("../a")}, Name{"Backslash", text("a\\b")},
                      Name{"Percent", text("a%20b")}, Name{"Tilde", text("a~b")}, Name{"Colon", text("a:b")},
                      Name{"At", text("a@b")}, Name{"NumberSign", text("a#b")}, Name{"QuestionMark", text("a?b")},
                      Name{"Plus", text("a+b")}, Name{"Comma", text("a,b")}, Name{"Quote", text("a\"b")},
                      Name{"Apostrophe", text("a'b")}, Name{"Dollar", text("$uri")}, Name{"Emoji", text("\U0001F600")},
                      Name{"FullWidthFullStop", text("a．b")}, Name{"EnDash", text("a\u2013b")},
                      Name{"HighSurrogateAlone", text("a") + QChar(0xD842)},
                      Name{"LowSurrogateAlone", QChar(0xDFB7) + text("a")},
                      Name{"SurrogatesInTheWrongOrder", QString(QChar(0xDFB7)) + QChar(0xD842)}),
    test::RowName());

TEST(PrinterTelemetryCommand, NamesTheToolByItsAbsolutePath) {
    EXPECT_EQ(PrinterTelemetryCommand(text("W9400")).executable(), "/usr/bin/ipptool");
}

TEST(PrinterTelemetryCommand, AsksTheLocalSchedulerWithTheSystemsTestFile) {
    EXPECT_EQ(PrinterTelemetryCommand(text("W9400")).arguments(),
              (QStringList{text("-X"), text("-T"), text("3"), text("ipp://localhost/printers/W9400"),
                           text("/usr/share/cups/ipptool/get-printer-attributes.test")}));
}

TEST(PrinterTelemetryCommand, LeavesASCIILettersAndDigitsDotUnderscoreAndHyphenAsTheyAre) {
    EXPECT_EQ(uriOf("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-"),
              text("ipp://localhost/printers/abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-"));
}

TEST(PrinterTelemetryCommand, EncodesEveryByteOfOtherLetters) {
    EXPECT_EQ(uriOf("Größe"), text("ipp://localhost/printers/Gr%C3%B6%C3%9Fe"));
    EXPECT_EQ(uriOf("卷纸_1"), text("ipp://localhost/printers/%E5%8D%B7%E7%BA%B8_1"));
    EXPECT_EQ(uriOf("\U00020BB7"), text("ipp://localhost/printers/%F0%A0%AE%B7"));
    EXPECT_EQ(uriOf("٣"), text("ipp://localhost/printers/%D9%A3"));
}

// The test file

TEST(ReadOnlyTestScript, IsTheSystemsTestFile) {
    EXPECT_TRUE(isReadOnly(toolText("get-printer-attributes.test.txt")));
}

TEST(ReadOnlyTestScript, IsItsBareDirectives) {
    ASSERT_EQ(directives().size(), directiveCount);
    EXPECT_TRUE(isReadOnly(directives()));
}

TEST_P(AcceptedSpelling, IsReadOnly) {
    EXPECT_TRUE(isReadOnly(GetParam().script()));
}

INSTANTIATE_TEST_SUITE_P(
    ReadOnlyTestScript, AcceptedSpelling,
    ::testing::Values(
        Spelling{"EndingInALineFeed", [] { return directives().join(u'\n') + u'\n'; }},
        Spelling{"CarriageReturns", [] { return directives().join(text("\r\n")) + text("\r\n"); }},
        Spelling{"CarriageReturnsInTheSystemsFile",
                 [] { return toolText("get-printer-attributes.test.txt").replace(u'\n', text("\r\n")); }},
        Spelling{"IndentedByTabs", [] { return text("\t\t") + directives().join(text("\n\t\t")); }},
        Spelling{"WhiteSpaceBehindLines", [] { return directives().join(text(" \t \n")) + text(" \t "); }},
        Spelling{"BlankLines", [] { return text("\n \n\t\n") + directives().join(text("\n\n \t\n")) + text("\n\n"); }},
        Spelling{"RunsOfBlanks", [] { return directives().join(u'\n').replace(u' ', text("   ")); }},
        Spelling{"TabsBetweenWords", [] { return directives().join(u'\n').replace(u' ', text(" \t")); }},
        Spelling{"CommentLines",
                 [] { return text("# a\n") + directives().join(text("\n\t# EXPECT b\n")) + text("\n#"); }},
        Spelling{"CommentTails", [] { return directives().join(text(" # tail # tail\n")) + text("#"); }},
        Spelling{"CommentTailsWithoutABlank", [] { return directives().join(text("#tail\n")); }},
        Spelling{"CommentsInAnyScript", [] { return text("# 只读 \U0001F600\n") + directives().join(u'\n'); }}),
    test::RowName());

TEST_P(RefusedSpelling, IsNotReadOnly) {
    EXPECT_FALSE(isReadOnly(GetParam().script()));
}

INSTANTIATE_TEST_SUITE_P(
    ReadOnlyTestScript, RefusedSpelling,
    ::testing::Values(
        Spelling{"Empty", [] { return QString(); }}, Spelling{"OnlyComments", [] { return text("# {\n# }\n"); }},
        Spelling{"OnlyBraces", [] { return text("{\n}\n"); }},
        Spelling{"AnotherOperation",
                 [] { return replaced("OPERATION get-printer-attributes", "OPERATION Print-Job"); }},
        Spelling{"AddedExpectation", [] { return replaced("\n}", "\nEXPECT queued-job-count\n}"); }},
        Spelling{"AddedOperation", [] { return replaced("\nVERSION", "\nOPERATION Purge-Jobs\nVERSION"); }},
        Spelling{"AddedFile", [] { return replaced("\n}", "\nFILE /etc/passwd\n}"); }},
        Spelling{"AddedBeforeTheBlock", [] { return text("DEFINE a b\n") + directives().join(u'\n'); }},
        Spelling{"AddedBehindTheBlock", [] { return directives().join(u'\n') + text("\nINCLUDE \"other.test\""); }},
        Spelling{"SecondBlock", [] { return directives().join(u'\n') + u'\n' + directives().join(u'\n'); }},
        Spelling{"EmptySecondBlock", [] { return directives().join(u'\n') + text("\n{\n}"); }},
        Spelling{"AddedBehindACarriageReturnInAComment",
                 [] { return text("# comment\rOPERATION Purge-Jobs\n") + directives().join(u'\n'); }},
        Spelling{"DirectiveCommentedOut", [] { return replaced("STATUS", "# STATUS"); }},
        Spelling{"TailCommentedOut", [] { return replaced("all,media-col-database", "all#,media-col-database"); }},
        Spelling{"DirectiveOnTwoLines", [] { return replaced("VERSION 2.0", "VERSION\n2.0"); }},
        Spelling{"TwoDirectivesOnOneLine", [] { return replaced("2.0\nGROUP", "2.0 GROUP"); }},
        Spelling{"BlankInsideAWord", [] { return replaced("VERSION", "VER SION"); }},
        Spelling{"MissingBlank", [] { return replaced("VERSION 2.0", "VERSION2.0"); }},
        Spelling{"OtherQuotes", [] { return directives().join(u'\n').replace(u'"', u'\''); }},
        Spelling{"ByteOrderMark", [] { return QChar(0xFEFF) + directives().join(u'\n'); }},
        Spelling{"NUL", [] { return directives().join(u'\n') + QChar(u'\0'); }},
        Spelling{"LookAlikeLetter", [] { return replaced("VERSION", "VERSI\u041EN"); }},
        Spelling{"FullWidthNumberSign", [] { return replaced("VERSION 2.0", "VERSION 2.0 ＃"); }},
        Spelling{"LowerCase", [] { return directives().join(u'\n').toLower(); }},
        Spelling{"UpperCase", [] { return directives().join(u'\n').toUpper(); }}),
    test::RowName());

TEST_P(Directive, MayNotBeRemoved) {
    QStringList lines = directives();
    lines.removeAt(GetParam());
    EXPECT_FALSE(isReadOnly(lines));
}

TEST_P(Directive, MayNotBeDoubled) {
    QStringList lines = directives();
    lines.insert(GetParam(), lines.at(GetParam()));
    EXPECT_FALSE(isReadOnly(lines));
}

TEST_P(Directive, MayNotBeCommentedOut) {
    QStringList lines = directives();
    lines[GetParam()].prepend(u'#');
    EXPECT_FALSE(isReadOnly(lines));
}

TEST_P(Directive, MayNotBeSwappedWithTheNext) {
    QStringList lines = directives();
    lines.swapItemsAt(GetParam(), (GetParam() + 1) % directiveCount);
    EXPECT_FALSE(isReadOnly(lines));
}

TEST_P(Directive, MayNotHaveAWordMore) {
    QStringList lines = directives();
    lines[GetParam()].append(text(" x"));
    EXPECT_FALSE(isReadOnly(lines));
}

TEST_P(Directive, MayNotLackACharacter) {
    const QString directive = directives().at(GetParam());
    for (qsizetype index = 0; index < directive.size(); ++index) {
        SCOPED_TRACE(index);
        QStringList lines = directives();
        lines[GetParam()].remove(index, 1);
        EXPECT_FALSE(isReadOnly(lines));
    }
}

TEST_P(Directive, MayNotChangeTheCaseOfALetter) {
    const QString directive = directives().at(GetParam());
    for (qsizetype index = 0; index < directive.size(); ++index) {
        const QChar letter = directive.at(index);
        if (!letter.isLetter()) {
            continue;
        }
        SCOPED_TRACE(index);
        QStringList lines = directives();
        lines[GetParam()][index] = letter.isUpper() ? letter.toLower() : letter.toUpper();
        EXPECT_FALSE(isReadOnly(lines));
    }
}

INSTANTIATE_TEST_SUITE_P(ReadOnlyTestScript, Directive, ::testing::Range<qsizetype>(0, directiveCount));

TEST(ReadOnlyTestScript, HasALimitOfItsBytes) {
    ASSERT_EQ(scriptOfBytes(16384).toUtf8().size(), 16384);
    ASSERT_EQ(scriptOfBytes(16385).toUtf8().size(), 16385);
    EXPECT_TRUE(isReadOnly(scriptOfBytes(16384)));
    EXPECT_FALSE(isReadOnly(scriptOfBytes(16385)));
}

TEST(ReadOnlyTestScript, IsMeasuredInUTF8) {
    const QString most = scriptOfBytes(16384, text("纸"));
    const QString tooMany = scriptOfBytes(16385, text("纸"));
    ASSERT_EQ(most.toUtf8().size(), 16384);
    ASSERT_EQ(tooMany.toUtf8().size(), 16385);
    ASSERT_LT(tooMany.size(), 16384);
    EXPECT_TRUE(isReadOnly(most));
    EXPECT_FALSE(isReadOnly(tooMany));
}

} // namespace orvex
