#include "Output/RollPDFUserUnit.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "OrvexError.h"
#include "PDF/PdfStructure.h"
#include "PdfFixtures.h"
#include "TemporaryFolder.h"

#include <QCryptographicHash>
#include <QProcess>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <limits>

namespace orvex {

namespace {

using platform::FileSystemError;
using platform::PdfStructure;
using test::onePage;
using test::onePagePdf;
using test::PdfText;
using test::replacedOnce;
using test::TemporaryFolder;

const QByteArray page = "/MediaBox [0 0 2160 14400]";

QString refusalText() {
    return QStringLiteral("Cannot safely write a standard UserUnit into this Quartz PDF. Incorrect long-roll "
                          "dimensions were not saved.");
}

QByteArray digest(const QString& path) {
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && hash.addData(&file));
    return hash.result().toHex();
}

QByteArray documentBytes() {
    return onePagePdf(page);
}

/// The text from the cross-reference table on, with its line feeds replaced.
QByteArray withTableNewlines(QByteArray text, const QByteArray& newline) {
    const qsizetype table = text.indexOf("xref\n0 ");
    return text.first(table) + text.sliced(table).replace("\n", newline);
}

/// A document whose page object has exactly this text; the offsets are right.
QByteArray withPageObject(const QByteArray& object) {
    const QByteArray placeholder = "3 0 obj\n" + QByteArray(object.size() - 16, 'x') + "\nendobj\n";
    PdfText pdf = onePage({});
    pdf.objects[2] = QByteArray(object.size() - 16, 'x');
    return replacedOnce(pdf.bytes(), placeholder, object);
}

QByteArray pageObject(const QByteArray& body) {
    return "3 0 obj\n<<" + body + ">>\nendobj\n";
}

QByteArray pageObjectOfSize(qsizetype size) {
    const QByteArray empty = pageObject(" /Type /Page /Parent 2 0 R ");
    return pageObject(" /Type /Page /Parent 2 0 R " + QByteArray(size - empty.size(), ' '));
}

/// A document with further objects; 3 is the page and 4 its content.
QByteArray withFurtherObject(const QByteArray& body) {
    PdfText pdf = onePage(page);
    pdf.objects.append(body);
    return pdf.bytes();
}

QByteArray userUnitText(const QByteArray& pdf) {
    const qsizetype start = pdf.lastIndexOf("/UserUnit ") + 10;
    return pdf.sliced(start, pdf.indexOf(' ', start) - start);
}

class RollPDFUserUnitTest : public ::testing::Test {
protected:
    QString write(const QByteArray& content) const { return folder_.write(QStringLiteral("roll.pdf"), content); }

    void expectRefusedUnchanged(const QByteArray& content, double userUnit = 2.0) const {
        const QString path = write(content);
        expectRefusedUnchanged(path, userUnit);
        EXPECT_EQ(TemporaryFolder::read(path), content);
    }

    static void expectRefusedUnchanged(const QString& path, double userUnit = 2.0) {
        const QByteArray before = digest(path);
        expectRefused(path, userUnit);
        EXPECT_EQ(digest(path), before);
    }

    static void expectRefused(const QString& path, double userUnit = 2.0) {
        try {
            RollPDFUserUnit::apply(userUnit, path);
            ADD_FAILURE() << "was not refused";
        } catch (const OrvexError& error) {
            EXPECT_EQ(error.message(), refusalText());
        }
    }

    /// The file's content afterwards.
    QByteArray applied(const QByteArray& content, double userUnit = 2.0) const {
        const QString path = write(content);
        RollPDFUserUnit::apply(userUnit, path);
        const PdfStructure pdf = PdfStructure::open(path);
        EXPECT_EQ(pdf.pageCount(), 1);
        EXPECT_EQ(pdf.userUnit(), platform::PdfUserUnit(userUnit));
        return TemporaryFolder::read(path);
    }

    TemporaryFolder folder_;
};

/// A file that differs from a good one in one thing.
struct Damage {
    const char* name;
    std::function<QByteArray()> make;
};

void PrintTo(const Damage& damage, std::ostream* stream) {
    *stream << damage.name;
}

class RefusedFile : public RollPDFUserUnitTest, public ::testing::WithParamInterface<Damage> {};

/// The good document with one text in it replaced. The replacement may be longer only from the table on.
Damage replacing(const char* name, const QByteArray& from, const QByteArray& to) {
    return {name, [from, to] { return replacedOnce(documentBytes(), from, to); }};
}

Damage withObject(const char* name, const QByteArray& object) {
    return {name, [object] { return withPageObject(object); }};
}

QByteArray offsetOf(const QByteArray& text) {
    return QByteArray::number(documentBytes().indexOf(text));
}

/// The last `startxref` followed by something else than its offset.
Damage startingAt(const char* name, const QByteArray& tail) {
    return {name, [tail] {
                const QByteArray text = documentBytes();
                return text.first(text.lastIndexOf("startxref") + 9) + tail;
            }};
}

std::vector<Damage> headerDamages() {
    return {
        {"Empty", [] { return QByteArray(); }},
        {"SevenBytes", [] { return QByteArray("%PDF-1."); }},
        {"EightBytesOnly", [] { return QByteArray("%PDF-1.5"); }},
        replacing("Pdf2", "%PDF-1.5", "%PDF-2.0"),
        replacing("Pdf12", "%PDF-1.5", "%PDF-1.2"),
        replacing("Pdf18", "%PDF-1.5", "%PDF-1.8"),
        replacing("LowerCase", "%PDF-1.5", "%pdf-1.5"),
        replacing("HeaderNotAscii", "%PDF-1.5", "%PDF-1.\xb5"),
        replacing("LeadingByte", "%PDF-1.5", "\n%PDF-1.5"),
    };
}

std::vector<Damage> startDamages() {
    return {
        replacing("NoStartxref", "startxref", "startxreg"),
        startingAt("NothingBehindIt", ""),
        startingAt("OnlyBlanksBehindIt", " \n\t\r\n"),
        startingAt("NoNumber", "\nhere\n%%EOF\n"),
        startingAt("Negative", "\n-9\n%%EOF\n"),
        startingAt("WithPlus", "\n+" + offsetOf("xref\n0 5") + "\n%%EOF\n"),
        startingAt("WithFraction", "\n" + offsetOf("xref\n0 5") + ".0\n%%EOF\n"),
        startingAt("Hexadecimal", "\n0x9\n%%EOF\n"),
        startingAt("TooLargeFor64Bits", "\n18446744073709551616\n%%EOF\n"),
        startingAt("LargestOf64Bits", "\n18446744073709551615\n%%EOF\n"),
        startingAt("TailNotAscii", "\n" + offsetOf("xref\n0 5") + "\n%%EOF\n%\xc3\xa9\n"),
        startingAt("AtTheFirstByte", "\n0\n%%EOF\n"),
        startingAt("BesideTheTable", "\n" + QByteArray::number(documentBytes().indexOf("xref\n0 5") - 1) + "\n%%EOF\n"),
        startingAt("AtAnObject", "\n" + offsetOf("3 0 obj") + "\n%%EOF\n"),
        {"AtTheEndOfTheFile",
         [] {
             const QByteArray text = documentBytes();
             const QByteArray start = text.first(text.lastIndexOf("startxref") + 10);
             return start + QByteArray::number(start.size() + 3); // three digits
         }},
        {"BehindTheEndOfTheFile",
         [] {
             const QByteArray text = documentBytes();
             const QByteArray start = text.first(text.lastIndexOf("startxref") + 10);
             return start + QByteArray::number(start.size() + 4);
         }},
        {"LastOfTwoIsWrong", [] { return documentBytes() + "startxref\n7\n%%EOF\n"; }},
    };
}

std::vector<Damage> tableDamages() {
    return {
        replacing("AnotherKeyword", "xref\n0 5\n", "yref\n0 5\n"),
        replacing("KeywordWithMore", "xref\n0 5\n", "xref 0 5\n"),
        {"CrLf", [] { return withTableNewlines(documentBytes(), "\r\n"); }},
        {"ThreeLines", [] { return QByteArray("%PDF-1.5\nxref\n0 2\nstartxref 9"); }},
        replacing("EmptyLineBeforeTheCount", "xref\n0 5\n", "xref\n\n0 5\n"),
        replacing("TableNotAscii", "0000000000 65535 f \n", "0000000000 65535 f \xa0\n"),
        replacing("FromObjectOne", "xref\n0 5\n", "xref\n1 5\n"),
        replacing("FromZeroInTwoDigits", "xref\n0 5\n", "xref\n00 5\n"),
        replacing("NoCount", "xref\n0 5\n", "xref\n0\n"),
        replacing("ThreeNumbers", "xref\n0 5\n", "xref\n0 5 0\n"),
        replacing("CountIsNoNumber", "xref\n0 5\n", "xref\n0 5a\n"),
        replacing("CountTooLargeFor64Bits", "xref\n0 5\n", "xref\n0 9223372036854775808\n"),
        replacing("LargestCountOf64Bits", "xref\n0 5\n", "xref\n0 9223372036854775807\n"),
        replacing("NegativeCount", "xref\n0 5\n", "xref\n0 -5\n"),
        replacing("CountTwoSigns", "xref\n0 5\n", "xref\n0 +-5\n"),
        replacing("CountOfOne", "xref\n0 5\n", "xref\n0 1\n"),
        replacing("CountOfZero", "xref\n0 5\n", "xref\n0 0\n"),
        replacing("CountTooSmall", "xref\n0 5\n", "xref\n0 4\n"),
        replacing("CountTooLarge", "xref\n0 5\n", "xref\n0 6\n"),
        replacing("CountBeyondTheLines", "xref\n0 5\n", "xref\n0 999999\n"),
        replacing("SecondSubsection", "trailer\n", "7 1\n0000000009 00000 n \ntrailer\n"),
        replacing("TrailerNotAlone", "trailer\n<<", "trailer <<"),
        replacing("NoTrailer", "trailer\n", "trailers\n"),
        {"CutBehindTheEntries",
         [] {
             const QByteArray text = documentBytes();
             return text.first(text.indexOf("\ntrailer")) + " startxref " + offsetOf("xref\n0 5");
         }},
    };
}

std::vector<Damage> entryDamages() {
    const QByteArray third = PdfText::entry(documentBytes().indexOf("3 0 obj"));
    const auto replacingEntry = [third](const char* name, const QByteArray& to) { return replacing(name, third, to); };
    const QByteArray digits = third.first(10);
    const QByteArray table = offsetOf("xref\n0 5").rightJustified(10, '0');
    return {
        replacingEntry("TwoFields", digits + " 00000 \n"),
        replacingEntry("FourFields", digits + " 00000 n n\n"),
        replacingEntry("EmptyLine", "\n"),
        replacingEntry("OffsetIsNoNumber", "00000o0009 00000 n \n"),
        replacingEntry("OffsetNegative", "-" + digits.sliced(1) + " 00000 n \n"),
        replacingEntry("OffsetWithPlus", "+" + digits.sliced(1) + " 00000 n \n"),
        replacingEntry("OffsetTooLarge", "99999999999999999999 00000 n \n"),
        replacingEntry("FreeOffsetIsNoNumber", "x 00000 f \n"),
        replacingEntry("GenerationIsNoNumber", digits + " 0000x n \n"),
        replacingEntry("FreeGenerationIsNoNumber", digits + " - f \n"),
        replacingEntry("GenerationOne", digits + " 00001 n \n"),
        replacingEntry("GenerationMinusOne", digits + " -1 n \n"),
        replacingEntry("AnotherKind", digits + " 00000 m \n"),
        replacingEntry("UpperCaseKind", digits + " 00000 N \n"),
        replacingEntry("OffsetZero", "0000000000 00000 n \n"),
        replacingEntry("OffsetOfTheTable", table + " 00000 n \n"),
        replacingEntry("OffsetBehindTheTable", "0000009999 00000 n \n"),
        replacingEntry("PageIsFree", digits + " 00000 f \n"),
        replacing("RootIsFree", PdfText::entry(9), "0000000009 00000 f \n"),
        {"NothingInUse", [] { return documentBytes().replace(" 00000 n ", " 00000 f "); }},
    };
}

std::vector<Damage> trailerDamages() {
    const auto replacingEntries = [](const char* name, const QByteArray& to) {
        return replacing(name, "<< /Size 5 /Root 1 0 R >>", to);
    };
    return {
        replacingEntries("NoOpening", "/Size 5 /Root 1 0 R >>"),
        replacingEntries("NoClosing", "<< /Size 5 /Root 1 0 R"),
        replacingEntries("ClosedBeforeOpened", ">> /Size 5 /Root 1 0 R <<"),
        replacingEntries("NoTrailerDictionary", ""),
        replacingEntries("SizeOneTooSmall", "<< /Size 4 /Root 1 0 R >>"),
        replacingEntries("SizeOneTooLarge", "<< /Size 6 /Root 1 0 R >>"),
        replacingEntries("NoSize", "<< /Root 1 0 R >>"),
        replacingEntries("SizeIsNoNumber", "<< /Size five /Root 1 0 R >>"),
        replacingEntries("SizeIsLast", "<< /Root 1 0 R /Size >>"),
        replacingEntries("FirstOfTwoSizesIsWrong", "<< /Size 4 /Size 5 /Root 1 0 R >>"),
        replacingEntries("NoRoot", "<< /Size 5 >>"),
        replacingEntries("RootIsNoNumber", "<< /Size 5 /Root /R >>"),
        replacingEntries("RootIsTheFreeObject", "<< /Size 5 /Root 0 0 R >>"),
        replacingEntries("RootIsNoObject", "<< /Size 5 /Root 5 0 R >>"),
        replacingEntries("RootTooLargeFor64Bits", "<< /Size 5 /Root 99999999999999999999 0 R >>"),
        replacingEntries("Updated", "<< /Size 5 /Root 1 0 R /Prev 9 >>"),
        replacingEntries("Encrypted", "<< /Size 5 /Root 1 0 R /Encrypt 4 0 R >>"),
        replacingEntries("Hybrid", "<< /Size 5 /Root 1 0 R /XRefStm 9 >>"),
        replacingEntries("UpdatedInBrackets", "<< /Size 5 /Root 1 0 R /A[/Prev]>>"),
    };
}

std::vector<Damage> pageDamages() {
    return {
        withObject("PagesOnly", pageObject(" /Type /Pages /Parent 2 0 R ")),
        withObject("TypeNotFirst", pageObject(" /Parent 2 0 R /Type /Page ")),
        withObject("TypeWithoutBlank", pageObject(" /Type/Page /Parent 2 0 R ")),
        withObject("BracketsWithoutBlank", pageObject("/Type /Page /Parent 2 0 R ")),
        withObject("AnotherNumber", pageObject(" /Type /Page /Parent 2 0 R ").replace("3 0 obj", "7 0 obj")),
        withObject("NumberInTwoDigits", pageObject(" /Type /Page /Parent 2 0 R ").replace("3 0 obj", "03 0 obj")),
        withObject("AnotherGeneration", pageObject(" /Type /Page /Parent 2 0 R ").replace("3 0 obj", "3 1 obj")),
        withObject("TooLarge", pageObjectOfSize(65'537)),
        withObject("PageNotAscii", pageObject(" /Type /Page /Parent 2 0 R /A (\xb5) ")),
        withObject("NotClosed", pageObject(" /Type /Page /Parent 2 0 R ").replace(">>", "> ")),
        withObject("TextBehindTheDictionary", pageObject(" /Type /Page /Parent 2 0 R ").replace(">>", ">> 1")),
        withObject("TextBehindTheEnd", pageObject(" /Type /Page /Parent 2 0 R ") + "%\n"),
        withObject("NoEndobj", pageObject(" /Type /Page /Parent 2 0 R ").replace("endobj", "endob ")),
        withObject("HasAUserUnit", pageObject(" /Type /Page /Parent 2 0 R /UserUnit 1 ")),
        withObject("NestedUserUnit", pageObject(" /Type /Page /Parent 2 0 R /A << /UserUnit 1 >> ")),
        {"SecondPage", [] { return withFurtherObject("<< /Type /Page /Parent 2 0 R >>"); }},
        {"SameOffsetForAHigherNumber",
         [] {
             // Of equal offsets the lower number comes first and has no bytes left.
             const QByteArray text = withFurtherObject("null");
             return replacedOnce(text, PdfText::entry(text.indexOf("5 0 obj")),
                                 PdfText::entry(text.indexOf("3 0 obj")));
         }},
    };
}

std::vector<Damage> allDamages() {
    std::vector<Damage> all;
    for (const auto& damages :
         {headerDamages(), startDamages(), tableDamages(), entryDamages(), trailerDamages(), pageDamages()}) {
        all.insert(all.end(), damages.begin(), damages.end());
    }
    return all;
}

} // namespace

TEST_P(RefusedFile, IsLeftUnchanged) {
    expectRefusedUnchanged(GetParam().make());
}

INSTANTIATE_TEST_SUITE_P(Damages, RefusedFile, ::testing::ValuesIn(allDamages()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(RollPDFUserUnitTest, GivesThePageItsUnit) {
    const QByteArray after = applied(documentBytes());
    EXPECT_EQ(userUnitText(after), "2");
}

TEST_F(RollPDFUserUnitTest, WritesTheWorkedExampleByteForByte) {
    // A file of 1000 bytes whose table starts at 800; object 5 is the page.
    PdfText pdf;
    pdf.header = "%PDF-1.6\n";
    pdf.objects = {"<< /Type /Catalog /Pages 2 0 R >>",
                   "<< /Type /Pages /Kids [5 0 R] /Count 1 >>",
                   "null",
                   {},
                   "<< /Type /Page >>"};
    pdf.objects[3] = QByteArray(800 - pdf.bytes().indexOf("xref\n0 6"), ' ');
    pdf.trailerEntries = QByteArray(1000 - pdf.bytes().size(), ' ');
    const QByteArray before = pdf.bytes();
    ASSERT_EQ(before.size(), 1000);
    ASSERT_EQ(before.indexOf("xref\n0 6"), 800);

    const QByteArray object = "\n5 0 obj\n<< /Type /Page  /UserUnit 2 >>\nendobj\n";
    const QByteArray section = "xref\n5 1\n0000001001 00000 n \ntrailer\n<< /Size 6 /Root 1 0 R" + pdf.trailerEntries +
                               "  /Prev 800 >>\nstartxref\n" + QByteArray::number(1000 + object.size()) + "\n%%EOF\n";
    EXPECT_EQ(applied(before), before + object + section);
}

TEST_F(RollPDFUserUnitTest, KeepsEveryOldByteButTheVersion) {
    const QByteArray before = documentBytes();
    const QByteArray after = applied(before);
    EXPECT_EQ(after.first(8), "%PDF-1.6");
    EXPECT_EQ(after.sliced(8, before.size() - 8), before.sliced(8));
    EXPECT_EQ(after.count("3 0 obj\n"), 2) << "the old page object is still in the file";
}

TEST_F(RollPDFUserUnitTest, RaisesOnlyAVersionThatDoesNotKnowTheUnit) {
    const std::vector<std::pair<QByteArray, QByteArray>> headers{{"%PDF-1.3", "%PDF-1.6"},
                                                                 {"%PDF-1.4", "%PDF-1.6"},
                                                                 {"%PDF-1.5", "%PDF-1.6"},
                                                                 {"%PDF-1.6", "%PDF-1.6"},
                                                                 {"%PDF-1.7", "%PDF-1.7"}};
    for (const auto& [before, after] : headers) {
        EXPECT_EQ(applied(replacedOnce(documentBytes(), "%PDF-1.5", before)).first(8), after);
    }
}

TEST_F(RollPDFUserUnitTest, NeverStacksUpdates) {
    const QString path = write(documentBytes());
    RollPDFUserUnit::apply(2.0, path);
    expectRefusedUnchanged(path);
    expectRefusedUnchanged(path, 3.0);
}

TEST_F(RollPDFUserUnitTest, WritesAllDigitsThatReadTheSameNumberBack) {
    const std::vector<std::pair<double, QByteArray>> values{{2.5, "2.5"},
                                                            {1.1, "1.1000000000000001"},
                                                            {75000.0, "75000"},
                                                            {28800.5 / 14400.0, "2.0000347222222223"},
                                                            {1.0000000000000002, "1.0000000000000002"},
                                                            {0.0001, "0.0001"},
                                                            {1e16, "10000000000000000"}};
    for (const auto& [value, text] : values) {
        std::array<char, 64> printed{};
        ASSERT_GT(std::snprintf(printed.data(), printed.size(), "%.17g", value), 0);
        EXPECT_EQ(text, QByteArray(printed.data()));
        EXPECT_EQ(userUnitText(applied(documentBytes(), value)), text);
    }
}

TEST_F(RollPDFUserUnitTest, RefusesAValueThatIsNoPlainPositiveNumber) {
    for (const double value : {1e17, 1e300, 0.00001, 0.0, -0.0, -2.0, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
        expectRefusedUnchanged(documentBytes(), value);
    }
}

TEST_F(RollPDFUserUnitTest, WritesAPointWhateverTheUsersLocale) {
    QDir().mkpath(folder_.path(QStringLiteral("locales")));
    QProcess::execute(QStringLiteral("localedef"),
                      {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"), QStringLiteral("UTF-8"),
                       QStringLiteral("--no-archive"), folder_.path(QStringLiteral("locales/de_DE.UTF-8"))});
    qputenv("LOCPATH", folder_.path(QStringLiteral("locales")).toUtf8());
    const QLocale formerLocale;
    QLocale::setDefault(QLocale(QLocale::German));
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr) << "needs the package locales";
    std::array<char, 16> printed{};
    EXPECT_EQ(std::snprintf(printed.data(), printed.size(), "%.1f", 2.5), 3);
    const QByteArray after = applied(documentBytes(), 2.5);
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(formerLocale);
    qunsetenv("LOCPATH");
    EXPECT_EQ(QByteArray(printed.data()), "2,5") << "the locale was not in force";
    EXPECT_EQ(userUnitText(after), "2.5");
}

TEST_F(RollPDFUserUnitTest, SpeaksBothLanguages) {
    const test::InChinese chinese;
    try {
        RollPDFUserUnit::apply(2.0, write("%PDF-1."));
        FAIL();
    } catch (const OrvexError& error) {
        EXPECT_EQ(error.message(),
                  QStringLiteral("无法安全地向此 Quartz PDF 写入标准 UserUnit。未保存错误的长卷布尺寸。"));
    }
}

TEST_F(RollPDFUserUnitTest, AcceptsBlanksAndFormFeedsInTheTable) {
    // A form feed ends a line as a line feed does; tabs and blanks at the ends of lines do not count.
    const QByteArray plain = documentBytes();
    applied(replacedOnce(plain, "trailer\n<<", "\t trailer \t\n\t<<"));
    applied(replacedOnce(plain, "trailer\n<<", "trailer\f<<"));
    applied(replacedOnce(plain, "trailer\n<<", "trailer\v<<"));
    applied(replacedOnce(plain, "trailer\n<<", "trailer\r<<"));
}

TEST_F(RollPDFUserUnitTest, JoinsTheTrimmedLinesOfTheTrailer) {
    const QByteArray after =
        applied(replacedOnce(documentBytes(), "<< /Size 5 /Root 1 0 R >>", "<<  \n\t/Size 5\t\n\n  /Root 1 0 R\n>>"));
    EXPECT_TRUE(after.contains("trailer\n<<\n/Size 5\n\n/Root 1 0 R\n /Prev ")) << after.constData();
}

TEST_F(RollPDFUserUnitTest, KeepsAllEntriesOfTheTrailer) {
    PdfText pdf = onePage(page);
    pdf.trailerEntries = " /Info 4 0 R /ID [<00FF> <00FF>] /Note << /PrevX 1 /Prevail /EncryptX >>";
    EXPECT_TRUE(applied(pdf.bytes()).contains("<< /Size 5 /Root 1 0 R" + pdf.trailerEntries + "  /Prev "));
}

TEST_F(RollPDFUserUnitTest, TakesNumbersNextToBracketsInTheTrailer) {
    applied(replacedOnce(documentBytes(), "<< /Size 5 /Root 1 0 R >>", "<</A[/B]/Size 5 /Root 1 0 R>>"));
    applied(replacedOnce(documentBytes(), "<< /Size 5 /Root 1 0 R >>", "<</Size +5 /Root +1 0 R>>"));
}

TEST_F(RollPDFUserUnitTest, IgnoresTheNumbersOfFreeEntries) {
    PdfText pdf = onePage(page);
    pdf.objects.append("null");
    const QByteArray text = pdf.bytes();
    const QByteArray fifth = PdfText::entry(text.indexOf("5 0 obj"));
    applied(replacedOnce(text, fifth, "9999999999 00007 f \n"));
}

TEST_F(RollPDFUserUnitTest, CountsTheLastStartxrefOfTwo) {
    const QByteArray text = documentBytes();
    applied(replacedOnce(text, "startxref\n", "startxref\n7\nstartxref\n"));
}

TEST_F(RollPDFUserUnitTest, FindsStartxrefInTheLast65536Bytes) {
    const QByteArray text = documentBytes();
    const qsizetype behind = text.size() - text.lastIndexOf("startxref");
    applied(text + QByteArray(65'536 - behind, '\n'));
    expectRefusedUnchanged(text + QByteArray(65'536 - behind + 1, '\n'));
}

TEST_F(RollPDFUserUnitTest, AcceptsAPageObjectOf65536Bytes) {
    applied(withPageObject(pageObjectOfSize(65'536)));
}

TEST_F(RollPDFUserUnitTest, FindsThePageWithinTheFirst512BytesOfItsObject) {
    const auto indented = [](qsizetype blanks) {
        return pageObject(QByteArray(blanks, ' ') + "/Type /Page /Parent 2 0 R ");
    };
    const qsizetype frame = QByteArray("3 0 obj\n<</Type /Page").size();
    applied(withPageObject(indented(512 - frame)));
    expectRefusedUnchanged(withPageObject(indented(512 - frame + 1)));
}

TEST_F(RollPDFUserUnitTest, AcceptsNestedDictionariesInThePage) {
    const QByteArray after =
        applied(onePagePdf("/MediaBox [0 0 9 9] /Resources << /XObject << /Im1 4 0 R >> >> /A /UserUnitX"));
    EXPECT_TRUE(after.contains("/XObject << /Im1 4 0 R >> >> /A /UserUnitX  /UserUnit 2 >>\nendobj\n"));
}

TEST_F(RollPDFUserUnitTest, PassesOverBinaryStreams) {
    QByteArray everything;
    for (int byte = 0; byte < 256; ++byte) {
        everything += static_cast<char>(byte);
    }
    applied(onePagePdf(page, everything.repeated(5)));
}

TEST_F(RollPDFUserUnitTest, TakesNoObjectBehindAByteOrderMarkForAPage) {
    const QByteArray object = "5 0 obj\n<< /Type /Page >>";
    const QByteArray pdf =
        replacedOnce(withFurtherObject("<< /Type /Page >>   "), object + "   ", "\xef\xbb\xbf" + object);
    const QString path = write(pdf);
    RollPDFUserUnit::apply(2.0, path);
    EXPECT_TRUE(TemporaryFolder::read(path).sliced(pdf.size()).startsWith("\n3 0 obj\n"));
}

TEST_F(RollPDFUserUnitTest, AcceptsATableOfTwoEntries) {
    PdfText pdf;
    pdf.objects = {"<< /Type /Page /Pages << /Kids [1 0 R] >> >>"}; // the catalog is the page
    const QByteArray text = pdf.bytes();
    ASSERT_TRUE(text.contains("xref\n0 2\n"));
    applied(text);
}

TEST_F(RollPDFUserUnitTest, AcceptsATableOf999999Entries) {
    const auto withEntries = [](qsizetype count) {
        const QByteArray free = QByteArray("0000000000 00000 f \n").repeated(count - 5);
        const QByteArray number = QByteArray::number(count);
        return documentBytes()
            .replace("xref\n0 5\n", "xref\n0 " + number + "\n")
            .replace("trailer\n", free + "trailer\n")
            .replace("/Size 5", "/Size " + number);
    };
    applied(withEntries(999'999));
    expectRefusedUnchanged(withEntries(1'000'000));
}

TEST_F(RollPDFUserUnitTest, LetsTheObjectNumberDecideEqualOffsets) {
    PdfText pdf;
    pdf.objects = {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [4 0 R] /Count 1 >>", "null",
                   "<< /Type /Page /Parent 2 0 R >>"};
    const QByteArray text = pdf.bytes();
    // Object 3 claims the page's place; it comes first and so has no bytes.
    applied(replacedOnce(text, PdfText::entry(text.indexOf("3 0 obj")), PdfText::entry(text.indexOf("4 0 obj"))));
}

/// Documents with a hole instead of most of their bytes.
class SparseRoll : public RollPDFUserUnitTest {
protected:
    /// Writes `start` at the beginning and `end` at the end of a file of `size` bytes.
    QString writeSparse(const QByteArray& start, const QByteArray& end, qint64 size) const {
        const QString path = write(start);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(size) && file.seek(size - end.size()));
        EXPECT_EQ(file.write(end), end.size());
        return path;
    }

    /// A document of exactly `size` bytes, which has ten digits, whose content stream is the hole.
    QString writeRoll(qint64 size) const {
        const QByteArray text = documentBytes();
        const QByteArray stream = "4 0 obj\n<< /Length " + QByteArray::number(size) + " >>\nstream\n";
        const QByteArray table = "\nendstream\nendobj\n" + text.sliced(text.indexOf("xref\n0 5"));
        const qsizetype start = table.indexOf("startxref");
        const QByteArray end = table.first(start) + "startxref\n" + QByteArray::number(tableOffset(size)) + "\n%%EOF\n";
        return writeSparse(text.first(text.indexOf("4 0 obj")) + stream, end, size);
    }

    /// Where the table of such a document starts.
    static qint64 tableOffset(qint64 size) {
        const QByteArray text = documentBytes();
        const qsizetype untilStart = text.indexOf("startxref") - text.indexOf("xref\n0 5");
        return size - untilStart - QByteArray("startxref\n0123456789\n%%EOF\n").size();
    }
};

TEST_F(SparseRoll, OfTheLargestSizeGetsTenDigits) {
    constexpr qint64 size = 9'999'999'998;
    const QString path = writeRoll(size);
    RollPDFUserUnit::apply(2.5, path);
    const QByteArray object =
        "\n3 0 obj\n<< /Type /Page /Parent 2 0 R /Contents 4 0 R " + page + "  /UserUnit 2.5 >>\nendobj\n";
    const QByteArray section = "xref\n3 1\n9999999999 00000 n \ntrailer\n<< /Size 5 /Root 1 0 R  /Prev " +
                               QByteArray::number(tableOffset(size)) + " >>\nstartxref\n" +
                               QByteArray::number(size + object.size()) + "\n%%EOF\n";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly) && file.seek(size));
    EXPECT_EQ(file.readAll(), object + section);
    EXPECT_EQ(PdfStructure::open(path).userUnit(), platform::PdfUserUnit(2.5));
}

TEST_F(SparseRoll, OfOneByteMoreIsRefused) {
    const QString path = writeRoll(9'999'999'999);
    expectRefused(path);
    EXPECT_EQ(QFileInfo(path).size(), 9'999'999'999);
}

TEST_F(SparseRoll, HasAtMost67108864BytesFromTheTableOn) {
    const QByteArray text = documentBytes();
    const qsizetype table = text.indexOf("xref\n0 5");
    const qsizetype gap = text.indexOf("startxref");
    const QByteArray start = text.first(gap) + "end\n"; // no reader needs to look for it behind the hole
    const QByteArray end = text.sliced(gap);
    const QString path = writeSparse(start, end, table + 67'108'864);
    RollPDFUserUnit::apply(2.0, path);
    EXPECT_EQ(PdfStructure::open(path).userUnit(), platform::PdfUserUnit(2.0));
    expectRefusedUnchanged(writeSparse(start, end, table + 67'108'865));
}

/// Files of the right shape that another reader does not take for a document of that page.
TEST_F(RollPDFUserUnitTest, RefusesWhatTheSecondReaderDoesNotConfirm) {
    const std::vector<std::pair<QByteArray, QByteArray>> damages{
        {"/Kids [3 0 R]", "/Kids [     ]"},                  // no page
        {"/Kids [3 0 R]", "/Kids [2 0 R]"},                  // a loop
        {"/Pages 2 0 R", "/Pages 9 0 R"},                    // no tree
        {"<< /Type /Catalog", "[[ /Type /Catalog"},          // no catalog
        {"/Kids [3 0 R]", "/Kids [4 0 R]"},                  // another page
        {"/Kids [3 0 R] /Count 1", "/Kids [3 0 R<<>>] /Cou"} // a second page
    };
    for (const auto& [from, to] : damages) {
        expectRefused(write(replacedOnce(documentBytes(), from, to)));
    }
}

TEST_F(RollPDFUserUnitTest, RefusesAValueThatTheReaderDoesNotReadBack) {
    // The page has a name that reads as the key only with its escapes undone, so that the key stands twice.
    expectRefused(write(onePagePdf("/MediaBox [0 0 9 9] /User#55nit 3")));
}

TEST_F(RollPDFUserUnitTest, PassesFailuresOfTheFileOn) {
    const auto codeOf = [](const QString& path) {
        try {
            RollPDFUserUnit::apply(2.0, path);
        } catch (const FileSystemError& error) {
            return error.code();
        }
        return 0;
    };
    EXPECT_EQ(codeOf(folder_.path(QStringLiteral("missing.pdf"))), ENOENT);
    EXPECT_EQ(codeOf(folder_.path()), EISDIR);
    EXPECT_EQ(codeOf({}), ENOENT);
    const QString fifo = folder_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_EQ(codeOf(fifo), EINVAL);
}

TEST_F(RollPDFUserUnitTest, PassesAFailureToWriteOn) {
    const QByteArray text = documentBytes();
    const QString path = write(text);

    struct rlimit former {};

    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);

    const struct rlimit tight { static_cast<rlim_t>(text.size()) + 20, former.rlim_max };

    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    int code = 0;
    try {
        RollPDFUserUnit::apply(2.0, path);
    } catch (const FileSystemError& error) {
        code = error.code();
    }
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, EFBIG);
    EXPECT_EQ(QFileInfo(path).size(), text.size() + 20) << "the limit was not in force";
}

} // namespace orvex
