#include "PDF/PdfView.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "PdfFixtures.h"
#include "RewrittenPdf.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

namespace orvex::platform {

namespace {

using test::onePage;
using test::onePagePdf;
using test::PdfText;
using test::TemporaryFolder;

const QByteArray white = "\xff\xff\xff";
const QByteArray red("\xff\x00\x00", 3);

/// Fills the lower left quarter of a page of 100 by 200.
const QByteArray redQuarter = "1 0 0 rg 0 0 50 100 re f";

QByteArray pixel(const PdfPicture& picture, int x, int y) {
    return picture.rgb.mid((qsizetype{y} * picture.width + x) * 3, 3);
}

class PdfViewTest : public ::testing::Test {
protected:
    QString write(const QByteArray& content) const { return folder_.write(QStringLiteral("a.pdf"), content); }

    PdfView open(const QByteArray& content) const { return PdfView::open(write(content)); }

    PdfView withPageEntries(const QByteArray& entries) const { return open(onePagePdf(entries)); }

    PdfPicture render(const QByteArray& content, int pixels) const {
        return PdfView::renderPage(write(content), pixels);
    }

    void expectNotDrawn(const QByteArray& content) const {
        ::testing::internal::CaptureStderr();
        try {
            static_cast<void>(render(content, 50));
            ADD_FAILURE() << "was drawn";
        } catch (const PdfError& error) {
            EXPECT_EQ(error.message(), QStringLiteral("Cannot draw the page of this PDF. The original file was kept."));
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(PdfViewTest, TellsTheFactsOfAPlainPage) {
    const PdfView pdf = withPageEntries("/MediaBox [0 0 100 200]");
    EXPECT_FALSE(pdf.isEncrypted());
    EXPECT_FALSE(pdf.isLocked());
    EXPECT_EQ(pdf.pageCount(), 1);
    EXPECT_TRUE(pdf.hasFirstPage());
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{0, 0, 100, 200}));
    EXPECT_EQ(pdf.rotationDegrees(), 0);
}

TEST_F(PdfViewTest, GivesTheBoxesUnturned) {
    const PdfView pdf = withPageEntries("/MediaBox [110 20 10 220] /CropBox [20 30 60 90] /Rotate 90");
    EXPECT_EQ(pdf.mediaBox(), (PdfBox{10, 20, 100, 200}));
    EXPECT_EQ(pdf.cropBox(), (PdfBox{20, 30, 40, 60}));
}

TEST_F(PdfViewTest, CutsTheCropBoxToTheMediaBox) {
    EXPECT_EQ(withPageEntries("/MediaBox [0 0 100 200] /CropBox [-5 -5 300 300]").cropBox(), (PdfBox{0, 0, 100, 200}));
}

TEST_F(PdfViewTest, IgnoresTheUserUnit) {
    EXPECT_EQ(withPageEntries("/MediaBox [0 0 100 200] /UserUnit 2").mediaBox(), (PdfBox{0, 0, 100, 200}));
}

TEST_F(PdfViewTest, TellsHowThePageIsTurned) {
    const std::vector<std::pair<const char*, int>> cases{
        {"/Rotate 0", 0},   {"/Rotate 90", 90},  {"/Rotate 180", 180}, {"/Rotate 270", 270}, {"/Rotate -90", 270},
        {"/Rotate 360", 0}, {"/Rotate 450", 90}, {"/Rotate -360", 0},  {"/Rotate 45", 0}};
    for (const auto& [entry, degrees] : cases) {
        EXPECT_EQ(withPageEntries(QByteArray("/MediaBox [0 0 1 2] ") + entry).rotationDegrees(), degrees) << entry;
    }
}

TEST_F(PdfViewTest, CountsThePages) {
    PdfText pdf = onePage("/MediaBox [0 0 1 2]");
    pdf.objects[1] = "<< /Type /Pages /Kids [3 0 R 5 0 R] /Count 2 >>";
    pdf.objects += "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 3 4] >>";
    EXPECT_EQ(open(pdf.bytes()).pageCount(), 2);
    EXPECT_EQ(open(pdf.bytes()).mediaBox(), (PdfBox{0, 0, 1, 2}));
}

TEST_F(PdfViewTest, HasNoFirstPageWithoutAPage) {
    PdfText pdf = onePage("/MediaBox [0 0 1 2]");
    pdf.objects[1] = "<< /Type /Pages /Kids [] /Count 0 >>";
    EXPECT_EQ(open(pdf.bytes()).pageCount(), 0);
    EXPECT_FALSE(open(pdf.bytes()).hasFirstPage());
    EXPECT_EQ(open(pdf.bytes()).mediaBox(), PdfBox());
}

TEST_F(PdfViewTest, TellsAPasswordFromDamage) {
    const PdfView readable = open(test::encrypted(onePagePdf(), ""));
    EXPECT_TRUE(readable.isEncrypted());
    EXPECT_FALSE(readable.isLocked());
    EXPECT_EQ(readable.mediaBox(), (PdfBox{0, 0, 100, 200}));

    const PdfView locked = open(test::encrypted(onePagePdf(), "secret"));
    EXPECT_TRUE(locked.isEncrypted());
    EXPECT_TRUE(locked.isLocked());
    EXPECT_EQ(locked.pageCount(), 0);
    EXPECT_FALSE(locked.hasFirstPage());
}

TEST_F(PdfViewTest, RefusesWhatIsNoPdfInSilence) {
    for (const QByteArray& content : {QByteArray(), QByteArray("A letter"), QByteArray(5000, '\0')}) {
        ::testing::internal::CaptureStderr();
        try {
            static_cast<void>(open(content));
            ADD_FAILURE() << "was read";
        } catch (const PdfError& error) {
            EXPECT_EQ(error.message(), QStringLiteral("Cannot read this PDF file. The original file was kept."));
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    }
}

TEST_F(PdfViewTest, PassesFailuresOfTheFileOn) {
    const auto codeOf = [](const QString& path) {
        try {
            static_cast<void>(PdfView::open(path));
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
}

TEST_F(PdfViewTest, DrawsTheLongerSideWithExactlyThePixelsAsked) {
    struct Case {
        const char* box;
        int pixels;
        int width;
        int height;
    };

    for (const Case& row :
         {Case{"/MediaBox [0 0 100 200]", 50, 25, 50}, Case{"/MediaBox [0 0 200 100]", 50, 50, 25},
          Case{"/MediaBox [0 0 100 200]", 1, 1, 1}, Case{"/MediaBox [0 0 4320 28800]", 2400, 360, 2400},
          Case{"/MediaBox [0 0 33.3 77.7]", 101, 43, 101}, Case{"/MediaBox [0 0 1 14400]", 999, 1, 999},
          Case{"/MediaBox [0 0 14400 1]", 999, 999, 1}, Case{"/MediaBox [0 0 2 14400]", 8192, 1, 8192},
          Case{"/MediaBox [10 20 110 220] /Rotate 90", 50, 50, 25}}) {
        const PdfPicture picture = render(onePagePdf(row.box), row.pixels);
        EXPECT_EQ(picture.width, row.width) << row.box;
        EXPECT_EQ(picture.height, row.height) << row.box;
        EXPECT_EQ(picture.rgb, white.repeated(qsizetype{row.width} * row.height)) << row.box;
    }
}

TEST_F(PdfViewTest, DrawsWhatThePageShows) {
    const PdfPicture picture = render(onePagePdf("/MediaBox [0 0 100 200]", redQuarter), 50);
    EXPECT_EQ(pixel(picture, 0, 49), red);
    EXPECT_EQ(pixel(picture, 11, 26), red);
    EXPECT_EQ(pixel(picture, 13, 49), white);
    EXPECT_EQ(pixel(picture, 0, 24), white);
    EXPECT_EQ(pixel(picture, 24, 0), white);
}

TEST_F(PdfViewTest, DrawsATurnedPageUpright) {
    const PdfPicture picture = render(onePagePdf("/MediaBox [0 0 100 200] /Rotate 90", redQuarter), 50);
    EXPECT_EQ(pixel(picture, 0, 0), red) << "the lower left corner goes to the upper left";
    EXPECT_EQ(pixel(picture, 49, 0), white);
    EXPECT_EQ(pixel(picture, 0, 24), white);
}

TEST_F(PdfViewTest, DrawsTheCropBox) {
    const PdfPicture picture = render(onePagePdf("/MediaBox [0 0 100 200] /CropBox [10 20 40 80]", redQuarter), 20);
    EXPECT_EQ(picture.width, 10);
    EXPECT_EQ(picture.rgb, red.repeated(10 * 20));
}

TEST_F(PdfViewTest, SmoothsEdges) {
    const PdfPicture picture = render(onePagePdf("/MediaBox [0 0 100 200]", "0 g 0 0 m 100 200 l 0 200 l f"), 50);
    int between = 0;
    for (const char byte : picture.rgb) {
        const auto level = static_cast<unsigned char>(byte);
        between += level > 0 && level < 255 ? 1 : 0;
    }
    EXPECT_GT(between, 0);
}

TEST_F(PdfViewTest, RefusesASizeOutOfRange) {
    for (const int pixels : {0, -1, 8193, std::numeric_limits<int>::max()}) {
        try {
            static_cast<void>(render(onePagePdf(), pixels));
            ADD_FAILURE() << "was drawn";
        } catch (const PdfError& error) {
            EXPECT_EQ(error.message(), QStringLiteral("The longer side of the picture must have 1 to 8192 pixels."));
        }
    }
}

TEST_F(PdfViewTest, DrawsNothingRatherThanAPart) {
    expectNotDrawn(test::encrypted(onePagePdf(), "secret"));
    expectNotDrawn(onePagePdf("/MediaBox [0 0 100 200]", "/Im1 Do"));
    expectNotDrawn(onePagePdf("/MediaBox [0 0 100 200]", "1 0 0 rg 0 0 50 100 reactor"));
    expectNotDrawn(onePagePdf("/MediaBox [0 0 " + QByteArray(400, '9') + " 200]"));
    PdfText pdf = onePage("/MediaBox [0 0 1 2]");
    pdf.objects[1] = "<< /Type /Pages /Kids [] /Count 0 >>";
    expectNotDrawn(pdf.bytes());
}

TEST_F(PdfViewTest, DrawsAgainAfterAFailure) {
    expectNotDrawn(onePagePdf("/MediaBox [0 0 100 200]", "/Im1 Do"));
    EXPECT_EQ(render(onePagePdf("/MediaBox [0 0 100 200]", redQuarter), 50).height, 50);
}

TEST_F(PdfViewTest, RefusesInChineseToo) {
    const test::InChinese chinese;
    const auto messageFor = [this](const QByteArray& content, int pixels) {
        try {
            static_cast<void>(render(content, pixels));
        } catch (const PdfError& error) {
            return error.message();
        }
        return QString();
    };
    EXPECT_EQ(messageFor(onePagePdf("", "/Im1 Do"), 9), QStringLiteral("无法绘制该 PDF 的页面。原文件已保留。"));
    EXPECT_EQ(messageFor(onePagePdf(), 0), QStringLiteral("图片较长边的像素数须在 1 到 8192 之间。"));
}

} // namespace orvex::platform
