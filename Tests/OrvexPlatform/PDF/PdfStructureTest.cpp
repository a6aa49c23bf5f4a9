#include "PDF/PdfStructure.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "PdfFixtures.h"
#include "RewrittenPdf.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <limits>

namespace orvex::platform {

namespace {

using test::onePage;
using test::onePagePdf;
using test::PdfText;
using test::replacedOnce;
using test::TemporaryFolder;

const QByteArray mediaBox = "/MediaBox [0 0 100 200]";

class PdfStructureTest : public ::testing::Test {
protected:
    PdfStructure open(const QByteArray& content) const {
        return PdfStructure::open(folder_.write(QStringLiteral("a.pdf"), content));
    }

    PdfStructure withPageEntries(const QByteArray& entries) const { return open(onePagePdf(entries)); }

    /// A page whose parent has these entries.
    PdfStructure withInheritedEntries(const QByteArray& entries, const QByteArray& own = {}) const {
        PdfText pdf = onePage(own);
        pdf.objects[1] = "<< /Type /Pages /Kids [3 0 R] /Count 1 " + entries + " >>";
        return open(pdf.bytes());
    }

    void expectUnreadable(const QByteArray& content) const {
        ::testing::internal::CaptureStderr();
        try {
            static_cast<void>(open(content));
            ADD_FAILURE() << "was read";
        } catch (const PdfError& error) {
            EXPECT_EQ(error.message(), QStringLiteral("Cannot read this PDF file. The original file was kept."));
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    }

    TemporaryFolder folder_;
};

/// The data of a zlib stream.
QByteArray deflated(const QByteArray& data) {
    return qCompress(data).sliced(4); // without the size that Qt puts in front
}

/// A document whose only cross-reference section is a stream of entries of a type byte, four bytes of offset and a
/// zero; `encode` makes the stream's data of these rows of six bytes.
QByteArray withCrossReferenceStream(const QByteArray& streamEntries,
                                    const std::function<QByteArray(const QByteArray&)>& encode) {
    QByteArray text = "%PDF-1.5\n";
    QByteArray rows("\0\0\0\0\0\0", 6);
    const auto addEntry = [&] {
        const qsizetype offset = text.size();
        rows += '\1';
        for (int shift = 24; shift >= 0; shift -= 8) {
            rows += static_cast<char>(offset >> shift & 0xff);
        }
        rows += '\0';
    };
    const PdfText pdf = onePage(mediaBox);
    for (qsizetype index = 0; index < pdf.objects.size(); ++index) {
        addEntry();
        text += PdfText::object(index + 1, pdf.objects[index]);
    }
    addEntry();
    const QByteArray start = QByteArray::number(text.size());
    const QByteArray data = encode(rows);
    const QByteArray entries = " /Type /XRef /Size 6 /W [1 4 1] /Root 1 0 R " + streamEntries;
    return text + PdfText::object(5, PdfText::stream(data, entries)) + "startxref\n" + start + "\n%%EOF\n";
}

int paeth(int left, int up, int upLeft) {
    const int estimate = left + up - upLeft;
    const std::array<std::pair<int, int>, 3> candidates{std::pair(std::abs(estimate - left), left),
                                                        std::pair(std::abs(estimate - up), up),
                                                        std::pair(std::abs(estimate - upLeft), upLeft)};
    return std::ranges::min_element(candidates, {}, &std::pair<int, int>::first)->second;
}

/// Rows of `width` bytes with the PNG filters 0 to 4 in turn.
QByteArray filtered(const QByteArray& rows, qsizetype width, qsizetype pixelBytes) {
    QByteArray result;
    const auto at = [&](qsizetype row, qsizetype column) {
        return row < 0 || column < 0 ? 0 : static_cast<int>(static_cast<unsigned char>(rows[row * width + column]));
    };
    for (qsizetype row = 0; row < rows.size() / width; ++row) {
        const int filter = static_cast<int>(row % 5);
        result += static_cast<char>(filter);
        for (qsizetype column = 0; column < width; ++column) {
            const int left = at(row, column - pixelBytes);
            const int up = at(row - 1, column);
            const int upLeft = column < pixelBytes ? 0 : at(row - 1, column - pixelBytes);
            const std::array<int, 5> predictions{0, left, up, (left + up) / 2, paeth(left, up, upLeft)};
            result += static_cast<char>(at(row, column) - predictions[static_cast<std::size_t>(filter)]);
        }
    }
    return result;
}

} // namespace

TEST_F(PdfStructureTest, TellsTheFactsOfAPlainPage) {
    const PdfStructure pdf = withPageEntries(mediaBox);
    EXPECT_FALSE(pdf.isEncrypted());
    EXPECT_TRUE(pdf.isUnlocked());
    EXPECT_EQ(pdf.pageCount(), 1);
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(pdf.rotationDegrees(), 0);
    EXPECT_EQ(pdf.userUnit(), PdfUserUnit(PdfUserUnitAbsent()));
}

TEST_F(PdfStructureTest, ReadsBoxesInEveryFormOfNumber) {
    EXPECT_EQ(withPageEntries("/MediaBox [100 200 0 0]").mediaBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(withPageEntries("/MediaBox [10 220 110 20]").mediaBox(), (PdfBox{10, 20, 100, 200}));
    EXPECT_EQ(withPageEntries("/MediaBox [-.5 +1.5 5. 0.25]").mediaBox(), (PdfBox{-.5, .25, 5.5, 1.25}));
    EXPECT_EQ(withPageEntries("/MediaBox [0 0 2160.0347222222222 14400]").mediaBox(),
              (PdfBox{0, 0, 2160.0347222222222, 14400}));
}

TEST_F(PdfStructureTest, FollowsReferencesToBoxesAndTheirNumbers) {
    PdfText pdf = onePage("/MediaBox 5 0 R /CropBox [0 0 6 0 R 7]");
    pdf.objects += {"[0 0 100 200]", "50"};
    EXPECT_EQ(open(pdf.bytes()).mediaBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(open(pdf.bytes()).cropBox(), (PdfBox{0, 0, 50, 7}));
}

TEST_F(PdfStructureTest, TakesMissingEntriesFromTheNodesAbove) {
    const PdfStructure pdf = withInheritedEntries("/MediaBox [0 0 1 2] /CropBox [0 0 1 1] /Rotate 90 /UserUnit 2");
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 1, 2}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{0, 0, 1, 1}));
    EXPECT_EQ(pdf.rotationDegrees(), 90);
    EXPECT_EQ(pdf.userUnit(), PdfUserUnit(PdfUserUnitAbsent())) << "a unit cannot be inherited";
}

TEST_F(PdfStructureTest, PrefersThePagesOwnEntries) {
    const PdfStructure pdf = withInheritedEntries("/MediaBox [0 0 1 2] /CropBox [0 0 1 1] /Rotate 90",
                                                  "/MediaBox [0 0 3 4] /CropBox [0 0 3 3] /Rotate 0");
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 3, 4}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{0, 0, 3, 3}));
    EXPECT_EQ(pdf.rotationDegrees(), 0);
}

TEST_F(PdfStructureTest, TakesANullEntryForAMissingOne) {
    const PdfStructure pdf =
        withInheritedEntries("/MediaBox [0 0 1 2]", "/MediaBox null /CropBox null /Rotate null /UserUnit null");
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 1, 2}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{0, 0, 1, 2}));
    EXPECT_EQ(pdf.rotationDegrees(), 0);
    EXPECT_EQ(pdf.userUnit(), PdfUserUnit(PdfUserUnitAbsent()));
}

TEST_F(PdfStructureTest, HasAnEmptyBoxForWhatIsNoRectangle) {
    for (const char* box : {"", "/MediaBox [0 0 100]", "/MediaBox [0 0 100 200 300]", "/MediaBox [0 0 /A 200]",
                            "/MediaBox 100", "/MediaBox << >>", "/MediaBox (0 0 1 1)"}) {
        EXPECT_EQ(withPageEntries(box).mediaBox(), PdfBox()) << box;
        EXPECT_EQ(withPageEntries(box).cropBox(), PdfBox()) << box;
    }
    EXPECT_EQ(withPageEntries("/MediaBox [0 0 1 2] /CropBox [0 0 1]").cropBox(), PdfBox());
}

TEST_F(PdfStructureTest, DoesNotCutTheCropBox) {
    EXPECT_EQ(withPageEntries("/MediaBox [0 0 1 2] /CropBox [-5 -5 9 9]").cropBox(), (PdfBox{-5, -5, 14, 14}));
}

TEST_F(PdfStructureTest, ReadsTheRotationAsItIsWritten) {
    const std::vector<std::pair<const char*, std::optional<qint64>>> cases{
        {"/Rotate 0", 0},
        {"/Rotate 90", 90},
        {"/Rotate -90", -90},
        {"/Rotate 360", 360},
        {"/Rotate -720", -720},
        {"/Rotate 45", 45},
        {"/Rotate 90.0", {}},
        {"/Rotate /Upside", {}},
        {"/Rotate [90]", {}},
        {"/Rotate true", {}},
        {"/Rotate 9000000000", 9'000'000'000},
    };
    for (const auto& [entry, degrees] : cases) {
        EXPECT_EQ(withPageEntries(entry).rotationDegrees(), degrees) << entry;
    }
}

TEST_F(PdfStructureTest, TellsANumberFromSomethingElseInUserUnit) {
    const std::vector<std::pair<const char*, PdfUserUnit>> cases{
        {"/UserUnit 2", 2.0},
        {"/UserUnit 2.5", 2.5},
        {"/UserUnit 1.1000000000000001", 1.1},
        {"/UserUnit 0", 0.0},
        {"/UserUnit -3", -3.0},
        {"/UserUnit +.5", 0.5},
        {"/UserUnit 75000.", 75000.0},
        {"/User#55nit 3", 3.0},
        {"/UserUnit /Two", PdfUserUnitNotANumber()},
        {"/UserUnit (2)", PdfUserUnitNotANumber()},
        {"/UserUnit [2]", PdfUserUnitNotANumber()},
        {"/UserUnit << >>", PdfUserUnitNotANumber()},
        {"/UserUnit true", PdfUserUnitNotANumber()},
    };
    for (const auto& [entry, unit] : cases) {
        EXPECT_EQ(withPageEntries(entry).userUnit(), unit) << entry;
    }
}

TEST_F(PdfStructureTest, CountsThePagesThatAreThere) {
    PdfText pdf = onePage(mediaBox);
    pdf.objects += "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 7 7] >>";
    const auto withTree = [&](const QByteArray& tree, const QByteArray& seventh = {}) {
        PdfText changed = pdf;
        changed.objects[1] = tree;
        changed.objects += {seventh.isEmpty() ? "null" : seventh};
        return open(changed.bytes());
    };
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R] /Count 9 >>").pageCount(), 1);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R 5 0 R] /Count 1 >>").pageCount(), 2);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [] /Count 1 >>").pageCount(), 0);
    EXPECT_EQ(withTree("<< /Type /Pages /Count 1 >>").pageCount(), 0);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids 3 /Count 1 >>").pageCount(), 0);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [null 3 0 R (page)] /Count 3 >>").pageCount(), 1);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [6 0 R 3 0 R] >>", "<< /Kids [5 0 R] >>").pageCount(), 2);
    EXPECT_EQ(withTree("null").pageCount(), 0);
}

TEST_F(PdfStructureTest, TakesTheFirstPageInPageOrder) {
    PdfText pdf = onePage("/MediaBox [0 0 3 3]");
    pdf.objects[1] = "<< /Type /Pages /Kids [5 0 R 3 0 R] /MediaBox [0 0 2 2] /Rotate 180 >>";
    pdf.objects += {"<< /Type /Pages /Kids [6 0 R] /MediaBox [0 0 5 5] >>", "<< /Type /Page /UserUnit 6 >>"};
    const PdfStructure result = open(pdf.bytes());
    EXPECT_EQ(result.pageCount(), 2);
    EXPECT_EQ(result.mediaBox(), (PdfBox{0, 0, 5, 5}));
    EXPECT_EQ(result.rotationDegrees(), 180);
    EXPECT_EQ(result.userUnit(), PdfUserUnit(6.0));
}

TEST_F(PdfStructureTest, HasNoFactsWithoutAPage) {
    PdfText pdf = onePage({});
    pdf.objects[1] = "<< /Type /Pages /Kids [] /MediaBox [0 0 1 1] >>";
    const PdfStructure result = open(pdf.bytes());
    EXPECT_EQ(result.mediaBox(), PdfBox());
    EXPECT_EQ(result.rotationDegrees(), 0);
}

TEST_F(PdfStructureTest, FollowsADeepTreeWithoutEnd) {
    constexpr qsizetype levels = 20'000;
    PdfText pdf;
    pdf.objects = {"<< /Type /Catalog /Pages 2 0 R >>"};
    for (qsizetype level = 0; level < levels; ++level) {
        pdf.objects += "<< /Kids [" + QByteArray::number(level + 3) + " 0 R] >>";
    }
    pdf.objects += "<< /MediaBox [0 0 8 9] >>";
    EXPECT_EQ(open(pdf.bytes()).mediaBox(), (PdfBox{0, 0, 8, 9}));
}

TEST_F(PdfStructureTest, FollowsTheNewestRevision) {
    const QByteArray first = onePagePdf(mediaBox);
    const QByteArray object = "3 0 obj\n<< /Type /Page /MediaBox [0 0 7 8] /UserUnit 4 >>\nendobj\n";
    const QByteArray table = "xref\n3 1\n" + PdfText::entry(first.size()) + "trailer\n<< /Size 5 /Root 1 0 R /Prev " +
                             QByteArray::number(first.indexOf("xref\n0 5")) + " >>\nstartxref\n" +
                             QByteArray::number(first.size() + object.size()) + "\n%%EOF\n";
    const PdfStructure pdf = open(first + object + table);
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 7, 8}));
    EXPECT_EQ(pdf.userUnit(), PdfUserUnit(4.0));
}

TEST_F(PdfStructureTest, ReadsCompressedStructure) {
    const QByteArray content = test::compressed(onePagePdf("/MediaBox [0 0 7 8] /UserUnit 2.5"));
    ASSERT_TRUE(content.contains("/ObjStm"));
    ASSERT_FALSE(content.contains("\nxref\n"));
    const PdfStructure pdf = open(content);
    EXPECT_EQ(pdf.pageCount(), 1);
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 7, 8}));
    EXPECT_EQ(pdf.userUnit(), PdfUserUnit(2.5));
}

TEST_F(PdfStructureTest, ReadsPredictedCrossReferences) {
    const auto plain = [](const QByteArray& rows) { return rows; };
    EXPECT_EQ(open(withCrossReferenceStream("", plain)).pageCount(), 1);
    const auto inflated = [](const QByteArray& rows) { return deflated(rows); };
    EXPECT_EQ(open(withCrossReferenceStream("/Filter /FlateDecode", inflated)).pageCount(), 1);
    EXPECT_EQ(
        open(withCrossReferenceStream("/Filter /FlateDecode /DecodeParms << /Predictor 1 >>", inflated)).pageCount(),
        1);
    const auto ofColumns = [](const QByteArray& rows) { return deflated(filtered(rows, 6, 1)); };
    EXPECT_EQ(
        open(withCrossReferenceStream("/Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns 6 >>", ofColumns))
            .pageCount(),
        1);
    const auto ofPixels = [](const QByteArray& rows) { return deflated(filtered(rows, 6, 3)); };
    EXPECT_EQ(open(withCrossReferenceStream(
                       "/Filter /FlateDecode /DecodeParms << /Predictor 15 /Columns 2 /Colors 3 /BitsPerComponent 8 >>",
                       ofPixels))
                  .pageCount(),
              1);
}

TEST_F(PdfStructureTest, RefusesCrossReferencesThatItDoesNotUndo) {
    const auto encoded = [](const QByteArray& rows) { return deflated(filtered(rows, 6, 1)); };
    const auto withParameters = [&](const QByteArray& parameters) {
        return withCrossReferenceStream("/Filter /FlateDecode /DecodeParms " + parameters, encoded);
    };
    ASSERT_EQ(open(withParameters("<< /Predictor 12 /Columns 6 >>")).pageCount(), 1);
    for (const char* parameters :
         {"<< /Predictor 2 /Columns 6 >>", "<< /Predictor 16 /Columns 6 >>", "<< /Predictor /Up /Columns 6 >>",
          "<< /Predictor 12 /Columns 0 >>", "<< /Predictor 12 /Columns -6 >>", "<< /Predictor 12 /Columns 6.0 >>",
          "<< /Predictor 12 /Columns 16777217 >>", "<< /Predictor 12 /Columns 16777216 /Colors 32 >>",
          "<< /Predictor 12 /Columns 6 /Colors 33 >>", "<< /Predictor 12 /Columns 6 /BitsPerComponent 17 >>",
          "<< /Predictor 12 /Columns 5 >>", "(12)"}) {
        expectUnreadable(withParameters(parameters));
    }
    expectUnreadable(withCrossReferenceStream("/Filter /LZWDecode", encoded));
    expectUnreadable(withCrossReferenceStream("/Filter /RunLengthDecode", encoded));
    expectUnreadable(withCrossReferenceStream("/Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns 6 >>",
                                              [](const QByteArray& rows) {
                                                  QByteArray data = filtered(rows, 6, 1);
                                                  data[7] = 5; // no such filter
                                                  return deflated(data);
                                              }));
    expectUnreadable(withCrossReferenceStream("/Filter /FlateDecode",
                                              [](const QByteArray& rows) { return deflated(rows).chopped(9); }));
}

TEST_F(PdfStructureTest, InflatesNoMoreThanStructureNeeds) {
    // A few kilobytes that stand for a hundred million bytes of free entries.
    const auto bomb = [](const QByteArray& rows) { return deflated(rows + QByteArray(100'000'000, '\0')); };
    const QByteArray content = withCrossReferenceStream("/Filter /FlateDecode", bomb);
    ASSERT_LT(content.size(), 200'000);
    expectUnreadable(content);
    expectUnreadable(replacedOnce(content, "/Size 6", "/Size 16666672"));
}

TEST_F(PdfStructureTest, ParsesNoMoreThanStructureNeeds) {
    const auto withNumbers = [](qsizetype count) {
        return onePagePdf(mediaBox + "/A [" + QByteArray("0 ").repeated(count) + "]");
    };
    EXPECT_EQ(open(withNumbers(1'000'000)).pageCount(), 1);
    expectUnreadable(withNumbers(2'100'000));
}

TEST_F(PdfStructureTest, TellsAPasswordFromDamage) {
    const PdfStructure open1 = open(test::encrypted(onePagePdf(mediaBox), ""));
    EXPECT_TRUE(open1.isEncrypted());
    EXPECT_TRUE(open1.isUnlocked());
    EXPECT_EQ(open1.pageCount(), 1);
    EXPECT_EQ(open1.mediaBox(), (PdfBox{0, 0, 100, 200}));

    const PdfStructure locked = open(test::encrypted(onePagePdf(mediaBox), "secret"));
    EXPECT_TRUE(locked.isEncrypted());
    EXPECT_FALSE(locked.isUnlocked());
    EXPECT_EQ(locked.pageCount(), 0);
    EXPECT_EQ(locked.mediaBox(), PdfBox());
}

TEST_F(PdfStructureTest, CallsAnUnknownWayOfEncryptingLocked) {
    PdfText pdf = onePage(mediaBox);
    pdf.trailerEntries = " /Encrypt << /Filter /Strange /V 1 >> /ID [<00> <00>]";
    const PdfStructure locked = open(pdf.bytes());
    EXPECT_TRUE(locked.isEncrypted());
    EXPECT_FALSE(locked.isUnlocked());
}

TEST_F(PdfStructureTest, RefusesWhatIsNoSoundPdf) {
    const QByteArray sound = onePagePdf(mediaBox);
    ASSERT_EQ(open(sound).pageCount(), 1);
    const std::vector<QByteArray> unsound{
        "",
        "%PDF-1.5\n",
        "A letter, and no PDF.\n",
        QByteArray(100'000, '\0'),
        sound.first(sound.size() / 2),
        sound.first(sound.indexOf("xref\n0 5")),
        replacedOnce(sound, "%PDF-1.5", "%XYZ-1.5"),
        replacedOnce(sound, "startxref", "stertxref"),
        replacedOnce(sound, "xref\n0 5", "xraf\n0 5"),
        replacedOnce(sound, "xref\n0 5", "xref\n0 9"),
        replacedOnce(sound, PdfText::entry(sound.indexOf("3 0 obj")), PdfText::entry(sound.indexOf("3 0 obj") + 1)),
        replacedOnce(sound, PdfText::entry(sound.indexOf("3 0 obj")), PdfText::entry(999'999'999)),
        replacedOnce(sound, "<< /Size 5 /Root 1 0 R >>", "<< /Size 5 >>"),
        replacedOnce(sound, "<< /Size 5 /Root 1 0 R >>", "<< /Size 5 /Root 9 0 R >>"),
        replacedOnce(sound, "<< /Size 5 /Root 1 0 R >>", "<< /Size 5 /Root 1 0 R /Prev 3 >>"),
        replacedOnce(sound, "<< /Size 5 /Root 1 0 R >>", "<< /Size 5 /Root 1 0 R /Encrypt /No >>"),
        replacedOnce(sound, "[3 0 R]", "[2 0 R]"),
        replacedOnce(sound, "/Type /Page /Parent", "/Type /Page /Type  "),
        replacedOnce(sound, "/MediaBox [0 0", "/MediaBox [0 )"),
        replacedOnce(sound, "/Parent 2 0 R ", "/Rotate 99999999999999999999 "),
    };
    for (const QByteArray& content : unsound) {
        SCOPED_TRACE(content.left(400).constData());
        expectUnreadable(content);
    }
}

TEST_F(PdfStructureTest, RefusesARevisionThatLeadsBackToItself) {
    QByteArray text = onePagePdf(mediaBox);
    const QByteArray table = QByteArray::number(text.indexOf("xref\n0 5"));
    expectUnreadable(replacedOnce(text, "/Root 1 0 R >>", "/Root 1 0 R /Prev " + table + " >>"));
}

TEST_F(PdfStructureTest, RefusesAPageThatStandsTwice) {
    PdfText pdf = onePage(mediaBox);
    pdf.objects[1] = "<< /Type /Pages /Kids [3 0 R 3 0 R] /Count 2 >>";
    expectUnreadable(pdf.bytes());
}

TEST_F(PdfStructureTest, DoesNotTouchThePagesStreams) {
    // The content's length is wrong by far.
    PdfText pdf = onePage(mediaBox);
    pdf.objects[3] = "<< /Length 9999999 >>\nstream\nq\nendstream";
    EXPECT_EQ(open(pdf.bytes()).pageCount(), 1);
}

TEST_F(PdfStructureTest, RefusesInChineseToo) {
    const test::InChinese chinese;
    try {
        static_cast<void>(open("no PDF"));
        FAIL();
    } catch (const PdfError& error) {
        EXPECT_EQ(error.message(), QStringLiteral("无法读取该 PDF 文件。原文件已保留。"));
    }
}

TEST_F(PdfStructureTest, PassesFailuresOfTheFileOn) {
    const auto codeOf = [](const QString& path) {
        try {
            static_cast<void>(PdfStructure::open(path));
        } catch (const FileSystemError& error) {
            return error.code();
        }
        return 0;
    };
    EXPECT_EQ(codeOf(folder_.path(QStringLiteral("missing.pdf"))), ENOENT);
    EXPECT_EQ(codeOf(folder_.path()), EISDIR);
    const QString fifo = folder_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_EQ(codeOf(fifo), EINVAL);
    EXPECT_EQ(codeOf(QStringLiteral("/dev/zero")), EINVAL);
}

} // namespace orvex::platform
