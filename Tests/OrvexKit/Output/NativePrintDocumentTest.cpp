#include "Output/NativePrintDocument.h"

#include "InChinese.h"
#include "OrvexError.h"
#include "PdfFixtures.h"
#include "RewrittenPdf.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>

namespace orvex {

namespace {

using NativePrintFactory::matchingBounds;
using test::onePage;
using test::onePagePdf;
using test::PdfText;
using test::TemporaryFolder;

constexpr double infinite = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

const char* const unreadable = "Cannot read the PDF to print. The original file and job record were kept.";
const char* const encryptedText = "This PDF is encrypted or requires a password. Direct printing was not opened.";
const char* const notOnePage = "Direct printing requires a complete single-page roll PDF. The original file was kept.";
const char* const turned = "This PDF uses page rotation, so its physical roll orientation cannot be confirmed. Use the "
                           "previously verified print workflow.";
const char* const cropped = "The PDF crop area differs from the full page. Direct printing was not opened to avoid "
                            "cropping the artwork.";
const char* const badUnit = "The PDF UserUnit is not a valid number. Print was not opened.";
const char* const badDimensions = "The PDF page dimensions or UserUnit are invalid. Print was not opened.";
const char* const tooWide =
    "The PDF page is wider than 60 inches or has invalid physical dimensions. Check the layout.";
const char* const inconsistent = "The system reported inconsistent PDF page geometry. Direct printing was stopped to "
                                 "avoid shrinking the artwork.";
const char* const notAsRecorded = "The saved PDF dimensions do not match the job record. Print was not opened.";

/// The message of the refusal; empty if there was none.
template <typename Call>
std::string refusalOf(Call call) {
    try {
        static_cast<void>(call());
    } catch (const OrvexError& error) {
        return error.message().toStdString();
    }
    return {};
}

Rect size(double width, double height) {
    return {0, 0, width, height};
}

std::string refusalOfGeometry(const Rect& media, double userUnit, const Rect& view,
                              std::optional<double> expectedWidth = {}, std::optional<double> expectedHeight = {}) {
    return refusalOf([&] { return NativePrintGeometry::make(media, userUnit, view, expectedWidth, expectedHeight); });
}

class NativePrintDocumentTest : public ::testing::Test {
protected:
    NativePrintSource open(const QByteArray& content, std::optional<double> expectedWidth = {},
                           std::optional<double> expectedHeight = {}) const {
        const QString path = folder_.write(QStringLiteral("roll 1.pdf"), content);
        return NativePrintFactory::openDocument(QUrl::fromLocalFile(path), expectedWidth, expectedHeight);
    }

    /// The file must stay as it is, too.
    std::string refusalFor(const QByteArray& content) const {
        const std::string refusal = refusalOf([&] { return open(content); });
        EXPECT_EQ(TemporaryFolder::read(folder_.path(QStringLiteral("roll 1.pdf"))), content);
        return refusal;
    }

    std::string refusalForPage(const QByteArray& entries) const { return refusalFor(onePagePdf(entries)); }

    TemporaryFolder folder_;
};

} // namespace

TEST(NativePrintGeometry, IsTheMediaBoxTimesTheUserUnit) {
    const auto geometry = NativePrintGeometry::make({3, 4, 2160, 14400}, 2, {5, 6, 2160, 14400}, {}, {});
    EXPECT_EQ(geometry.physicalSizePoints, (Size{4320, 28800}));
    EXPECT_EQ(geometry.userUnit, 2.0);
    EXPECT_EQ(geometry.widthInches(), 60.0);
    EXPECT_EQ(geometry.heightInches(), 400.0);
}

TEST(NativePrintGeometry, IsLandscapeOnlyIfTheHeightIsLess) {
    const auto orientation = [](double width, double height) {
        return NativePrintGeometry::make(size(width, height), 1, size(width, height), {}, {}).paperOrientation();
    };
    EXPECT_EQ(orientation(100, 200), PaperOrientation::portrait);
    EXPECT_EQ(orientation(100, 100), PaperOrientation::portrait);
    EXPECT_EQ(orientation(100, 99.5), PaperOrientation::landscape);
}

TEST(NativePrintGeometry, RefusesMeasuresThatAreNone) {
    const Rect page = size(100, 200);
    for (const double bad : {infinite, -infinite, notANumber}) {
        for (const Rect& box : {Rect{bad, 0, 100, 200}, Rect{0, bad, 100, 200}, size(bad, 200), size(100, bad)}) {
            EXPECT_EQ(refusalOfGeometry(box, 1, page), badDimensions);
            EXPECT_EQ(refusalOfGeometry(page, 1, box), badDimensions);
        }
        EXPECT_EQ(refusalOfGeometry(page, bad, page), badDimensions);
    }
    for (const Rect& box : {size(0, 200), size(100, 0), size(-100, 200), size(100, -200)}) {
        EXPECT_EQ(refusalOfGeometry(box, 1, page), badDimensions);
        EXPECT_EQ(refusalOfGeometry(page, 1, box), badDimensions);
    }
    EXPECT_EQ(refusalOfGeometry(page, 0, page), badDimensions);
    EXPECT_EQ(refusalOfGeometry(page, -1, page), badDimensions);
}

TEST(NativePrintGeometry, AcceptsAUserUnitUpTo75000) {
    const Rect page = size(0.05, 14400);
    EXPECT_EQ(refusalOfGeometry(page, 75000.0, page), "");
    EXPECT_EQ(refusalOfGeometry(page, std::nextafter(75000.0, infinite), page), badDimensions);
}

TEST(NativePrintGeometry, AcceptsSixtyInchesAndTheTolerance) {
    const auto ofWidth = [](double width) { return refusalOfGeometry(size(width, 9), 1, size(width, 9)); };
    EXPECT_EQ(ofWidth(4320.0), "");
    EXPECT_EQ(ofWidth(4320.01), "");
    EXPECT_EQ(ofWidth(std::nextafter(4320.01, infinite)), tooWide);
    EXPECT_EQ(refusalOfGeometry(size(2160.006, 9), 2, size(2160.006, 9)), tooWide);
}

TEST(NativePrintGeometry, HasNoLimitOfHeight) {
    EXPECT_EQ(refusalOfGeometry(size(1, 1e12), 1, size(1, 1e12)), "");
    const Rect endless = size(1, 1e308);
    EXPECT_EQ(refusalOfGeometry(endless, 10, endless), tooWide) << "infinite after the multiplication";
    const Rect vanishing = size(1e-320, 1);
    EXPECT_EQ(refusalOfGeometry(vanishing, 1e-10, vanishing), tooWide) << "zero after the multiplication";
}

TEST(NativePrintGeometry, AcceptsASecondReaderWithOrWithoutTheUserUnit) {
    const Rect media = size(2160, 14400);
    EXPECT_EQ(refusalOfGeometry(media, 2, size(2160, 14400)), "");
    EXPECT_EQ(refusalOfGeometry(media, 2, size(4320, 28800)), "");
    EXPECT_EQ(refusalOfGeometry(media, 2, size(2160.01, 14399.99)), "");
    EXPECT_EQ(refusalOfGeometry(media, 2, size(4319.99, 28800.01)), "");
    for (const Rect& view : {size(2160.011, 14400), size(2160, 14400.011), size(2160, 28800), size(4320, 14400),
                             size(4320.011, 28800), size(14400, 2160)}) {
        EXPECT_EQ(refusalOfGeometry(media, 2, view), inconsistent);
    }
}

TEST(NativePrintGeometry, ComparesWithTheJobsRecord) {
    const Rect page = size(4320, 14400);
    const auto expecting = [&](std::optional<double> width, std::optional<double> height) {
        return refusalOfGeometry(page, 1, page, width, height);
    };
    EXPECT_EQ(expecting({}, {}), "");
    EXPECT_EQ(expecting(60.0, 200.0), "");
    EXPECT_EQ(expecting(60.0, {}), "");
    EXPECT_EQ(expecting({}, 200.0), "");
    EXPECT_EQ(expecting(60.0001, 200.0), "");
    EXPECT_EQ(expecting(60.001, 200.0), notAsRecorded);
    EXPECT_EQ(expecting(60.001, {}), notAsRecorded);
    EXPECT_EQ(expecting({}, 199.999), notAsRecorded);
    EXPECT_EQ(expecting(60.0, 100.0), notAsRecorded);
    for (const double bad : {0.0, -60.0, infinite, -infinite, notANumber}) {
        EXPECT_EQ(expecting(bad, {}), notAsRecorded);
        EXPECT_EQ(expecting({}, bad), notAsRecorded);
    }
}

TEST(NativePrintGeometry, ComparesTheRecordWithTheRealSize) {
    const Rect page = size(2160, 14400);
    EXPECT_EQ(refusalOfGeometry(page, 2, page, 60.0, 400.0), "");
    EXPECT_EQ(refusalOfGeometry(page, 2, page, 30.0, 200.0), notAsRecorded);
}

TEST(NativePrintGeometry, ChecksInOrder) {
    const Rect page = size(5000, 200);
    EXPECT_EQ(refusalOfGeometry(page, 0, size(1, 1), 0.0), badDimensions);
    EXPECT_EQ(refusalOfGeometry(page, 1, size(1, 1), 0.0), tooWide);
    EXPECT_EQ(refusalOfGeometry(size(50, 200), 1, size(1, 1), 0.0), inconsistent);
    EXPECT_EQ(refusalOfGeometry(size(50, 200), 1, size(50, 200), 0.0), notAsRecorded);
}

TEST(MatchingBounds, AllowsAHundredthOfAPoint) {
    const Rect box{10, 20, 4320, 14400};
    EXPECT_TRUE(matchingBounds(box, box));
    for (const double difference : {0.01, -0.01}) {
        EXPECT_TRUE(matchingBounds(box, {10 + difference, 20, 4320, 14400}));
        EXPECT_TRUE(matchingBounds(box, {10, 20 + difference, 4320, 14400}));
        EXPECT_TRUE(matchingBounds(box, {10, 20, 4320 + difference, 14400}));
        EXPECT_TRUE(matchingBounds(box, {10, 20, 4320, 14400 + difference}));
    }
    for (const double difference : {0.010001, -0.010001, 0.02, -1.0, infinite, -infinite, notANumber}) {
        EXPECT_FALSE(matchingBounds(box, {10 + difference, 20, 4320, 14400}));
        EXPECT_FALSE(matchingBounds(box, {10, 20 + difference, 4320, 14400}));
        EXPECT_FALSE(matchingBounds(box, {10, 20, 4320 + difference, 14400}));
        EXPECT_FALSE(matchingBounds(box, {10, 20, 4320, 14400 + difference}));
    }
    const Rect endless{0, 0, infinite, 1};
    EXPECT_FALSE(matchingBounds(endless, endless));
}

TEST_F(NativePrintDocumentTest, OpensAWholeRoll) {
    const NativePrintSource source =
        open(onePagePdf("/MediaBox [0 0 2160 14400] /UserUnit 2"), std::optional(60.0), std::optional(400.0));
    EXPECT_EQ(source.geometry.physicalSizePoints, (Size{4320, 28800}));
    EXPECT_EQ(source.geometry.userUnit, 2.0);
    EXPECT_EQ(source.document.mediaBox(), (platform::PdfBox{0, 0, 2160, 14400}));
    EXPECT_EQ(source.pdfURL, QUrl::fromLocalFile(folder_.path(QStringLiteral("roll 1.pdf"))));
}

TEST_F(NativePrintDocumentTest, HasAUserUnitOfOneWithoutTheEntry) {
    const NativePrintSource source = open(onePagePdf("/MediaBox [10 20 4330 14420]"));
    EXPECT_EQ(source.geometry.userUnit, 1.0);
    EXPECT_EQ(source.geometry.physicalSizePoints, (Size{4320, 14400}));
}

TEST_F(NativePrintDocumentTest, RefusesWhatCannotBeRead) {
    EXPECT_EQ(refusalFor(""), unreadable);
    EXPECT_EQ(refusalFor("A letter"), unreadable);
    EXPECT_EQ(refusalFor(onePagePdf("/MediaBox [0 0 1 1]").chopped(9)), unreadable);
    const auto opening = [](const QUrl& url) {
        return refusalOf([&] { return NativePrintFactory::openDocument(url, {}, {}); });
    };
    EXPECT_EQ(opening(QUrl()), unreadable);
    EXPECT_EQ(opening(QUrl(QStringLiteral("https://localhost/roll.pdf"))), unreadable);
    EXPECT_EQ(opening(QUrl(folder_.write(QStringLiteral("a.pdf"), onePagePdf()))), unreadable) << "a path alone";
    EXPECT_EQ(opening(QUrl::fromLocalFile(folder_.path(QStringLiteral("missing.pdf")))), unreadable);
    EXPECT_EQ(opening(QUrl::fromLocalFile(folder_.path())), unreadable);
    const QString fifo = folder_.path(QStringLiteral("fifo.pdf"));
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    EXPECT_EQ(opening(QUrl::fromLocalFile(fifo)), unreadable);
}

TEST_F(NativePrintDocumentTest, RefusesEncryption) {
    EXPECT_EQ(refusalFor(test::encrypted(onePagePdf(), "")), encryptedText);
    EXPECT_EQ(refusalFor(test::encrypted(onePagePdf(), "secret")), encryptedText);
}

TEST_F(NativePrintDocumentTest, RefusesAnyOtherNumberOfPages) {
    PdfText pdf = onePage("/MediaBox [0 0 100 200]");
    pdf.objects += "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 200] >>";
    const auto withTree = [&](const QByteArray& tree) {
        pdf.objects[1] = tree;
        return refusalFor(pdf.bytes());
    };
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R] /Count 1 >>"), "");
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R 5 0 R] /Count 2 >>"), notOnePage);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [] /Count 0 >>"), notOnePage);
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R 5 0 R] /Count 1 >>"), notOnePage) << "only one reader counts one";
    EXPECT_EQ(withTree("<< /Type /Pages /Kids [3 0 R] /Count 2 >>"), notOnePage) << "only one reader counts one";
}

TEST_F(NativePrintDocumentTest, RefusesATurnedPage) {
    for (const char* whole : {"0", "360", "-360", "720"}) {
        EXPECT_EQ(refusalForPage(QByteArray("/MediaBox [0 0 100 200] /Rotate ") + whole), "") << whole;
    }
    for (const char* other : {"90", "-90", "180", "270", "450", "45", "1", "90.0", "/Left"}) {
        EXPECT_EQ(refusalForPage(QByteArray("/MediaBox [0 0 100 200] /Rotate ") + other), turned) << other;
    }
}

TEST_F(NativePrintDocumentTest, RefusesACropBoxThatIsNotThePage) {
    const auto cropping = [this](const QByteArray& box) {
        return refusalForPage("/MediaBox [0 0 4320 14400] /CropBox [" + box + "]");
    };
    EXPECT_EQ(cropping("0 0 4320 14400"), "");
    EXPECT_EQ(cropping("0 0 4319.99 14399.99"), "");
    EXPECT_EQ(cropping("0.01 0.01 4320 14400"), "");
    EXPECT_EQ(cropping("0 0 4319.98 14400"), cropped);
    EXPECT_EQ(cropping("0 0 4320 14399.98"), cropped);
    EXPECT_EQ(cropping("0.02 0 4320 14400"), cropped);
    EXPECT_EQ(cropping("0 0 4320.02 14400"), cropped) << "a larger box is none of the page";
    EXPECT_EQ(cropping("0 0 4320"), cropped) << "no rectangle";
}

TEST_F(NativePrintDocumentTest, RefusesAUserUnitThatIsNoNumber) {
    for (const char* unit : {"/Two", "(2)", "[2]", "true", "<< >>"}) {
        EXPECT_EQ(refusalForPage(QByteArray("/MediaBox [0 0 100 200] /UserUnit ") + unit), badUnit) << unit;
    }
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 100 200] /UserUnit null"), "") << "null is the same as no entry";
}

TEST_F(NativePrintDocumentTest, RefusesAPageWithoutAProperSize) {
    EXPECT_EQ(refusalForPage("/UserUnit 2"), badDimensions) << "no media box";
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 0 200]"), badDimensions);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 100 200] /UserUnit 0"), badDimensions);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 100 200] /UserUnit -2"), badDimensions);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 .01 200] /UserUnit 75000"), "");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 .01 200] /UserUnit 75000.01"), badDimensions);
}

TEST_F(NativePrintDocumentTest, RefusesAPageWiderThanTheRoll) {
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 4320 200]"), "");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 4320.01 200]"), "");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 4320.02 200]"), tooWide);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 2160.01 200] /UserUnit 2"), tooWide);
}

TEST_F(NativePrintDocumentTest, RefusesSizesThatAreNotTheJobs) {
    const auto expecting = [this](double width, double height) {
        return refusalOf([&] {
            return open(onePagePdf("/MediaBox [0 0 2160 14400] /UserUnit 2"), std::optional(width),
                        std::optional(height));
        });
    };
    EXPECT_EQ(expecting(60, 400), "");
    EXPECT_EQ(expecting(60, 200), notAsRecorded);
    EXPECT_EQ(expecting(30, 400), notAsRecorded);
}

TEST_F(NativePrintDocumentTest, ChecksInOrder) {
    const QByteArray everything = "/MediaBox [0 0 5000 200] /CropBox [0 0 1 1] /Rotate 90 /UserUnit /X";
    PdfText pdf = onePage(everything);
    pdf.objects += pdf.objects[2];
    pdf.objects[1] = "<< /Type /Pages /Kids [3 0 R 5 0 R] /Count 2 >>";
    EXPECT_EQ(refusalFor(test::encrypted(pdf.bytes(), "")), encryptedText);
    EXPECT_EQ(refusalFor(pdf.bytes()), notOnePage);
    EXPECT_EQ(refusalForPage(everything), turned);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 5000 200] /CropBox [0 0 1 1] /UserUnit /X"), cropped);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 5000 200] /UserUnit /X"), badUnit);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 5000 200] /UserUnit 0"), badDimensions);
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 5000 200]"), tooWide);
}

TEST_F(NativePrintDocumentTest, SpeaksChinese) {
    const test::InChinese chinese;
    EXPECT_EQ(refusalFor("A letter"), "无法读取要打印的 PDF。原文件和作业记录均已保留。");
    EXPECT_EQ(refusalFor(test::encrypted(onePagePdf(), "")), "此 PDF 已加密或需要密码。未打开直接打印。");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 9 9] /Rotate 90"),
              "此 PDF 使用了页面旋转，因此无法确认卷布的实际方向。请使用此前验证过的打印流程。");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 9 9] /CropBox [0 0 1 1]"),
              "PDF 的裁剪区域与整个页面不一致。为避免裁掉作品，未打开直接打印。");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 9 9] /UserUnit /X"), "PDF 的 UserUnit 不是有效数字。未打开打印。");
    EXPECT_EQ(refusalForPage(""), "PDF 的页面尺寸或 UserUnit 无效。未打开打印。");
    EXPECT_EQ(refusalForPage("/MediaBox [0 0 9999 9]"), "PDF 页面宽于 60 英寸，或实际尺寸无效。请检查排版。");
    EXPECT_EQ(refusalOfGeometry(size(1, 2), 1, size(2, 1)),
              "系统报告的 PDF 页面几何信息不一致。为避免缩小作品，已停止直接打印。");
    EXPECT_EQ(refusalOfGeometry(size(1, 2), 1, size(1, 2), 9.0), "保存的 PDF 尺寸与作业记录不符。未打开打印。");
    PdfText pdf = onePage({});
    pdf.objects[1] = "<< /Type /Pages /Kids [] /Count 0 >>";
    EXPECT_EQ(refusalFor(pdf.bytes()), "直接打印需要完整的单页卷布 PDF。原文件已保留。");
}

} // namespace orvex
