#include "Output/RollPDFRenderer.h"

#include "Color/IccProfile.h"
#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "Interrupted.h"
#include "Json/JsonReader.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "Output/NativePrintDocument.h"
#include "QpdfReading.h"
#include "Sha256.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvex {
namespace {

using test::QpdfReading;
using test::TiffFixture;

/// A picture of 4 x 2 pixels whose samples are all different.
TiffFixture picture() {
    TiffFixture tiff{.width = 4, .height = 2};
    for (char sample = 1; sample <= 24; ++sample) {
        tiff.pixels.append(sample);
    }
    return tiff;
}

class RollPDFRendererTest : public ::testing::Test {
protected:
    /// An artwork of a file with these bytes, 10 x 5 inches unturned.
    RollArtwork artwork(const QString& name, const QByteArray& bytes, double y = 0) {
        return RollArtwork::make({.id = QUuid::createUuid(),
                                  .sourceURL = QUrl::fromLocalFile(sources_.write(name, bytes)),
                                  .pixelWidth = 4,
                                  .pixelHeight = 2,
                                  .widthInches = 10,
                                  .yInches = y});
    }

    QList<RollSourceAudit> render(const RollLayout& layout, const ColorWorkflow& workflow = {},
                                  const std::optional<QByteArray>& outputICC = {}) {
        return RollPDFRenderer::render(layout, QStringLiteral("Test"), QUrl::fromLocalFile(out_), workflow, outputICC);
    }

    /// The message of a refusal that leaves the folder of the destination as it was.
    QString refusal(const RollLayout& layout, const ColorWorkflow& workflow = {},
                    const std::optional<QByteArray>& outputICC = {}) {
        const QStringList before = folder_.names();
        try {
            render(layout, workflow, outputICC);
        } catch (const Failure& failure) {
            EXPECT_EQ(folder_.names(), before);
            return failure.message();
        }
        return {};
    }

    test::TemporaryFolder sources_;
    test::TemporaryFolder folder_;
    QString out_ = folder_.path(QStringLiteral("out.pdf"));
};

TEST_F(RollPDFRendererTest, writesAPageOfTheRollsRealSize) {
    render(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes())}));
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.pageCount(), 1U);
    EXPECT_EQ(pdf.mediaBox(), (std::vector<double>{0, 0, 4320, 720}));
    EXPECT_FALSE(pdf.page().hasKey("/UserUnit"));
    EXPECT_EQ(pdf.trailer().getKey("/Info").getKey("/Title").getUTF8Value(), "Test");
    EXPECT_EQ(pdf.trailer().getKey("/Info").getKey("/Creator").getUTF8Value(), "orvex 0.8.4 · Roll Layout");
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("out.pdf")});
}

TEST_F(RollPDFRendererTest, leavesARollOfTwoHundredInchesWithoutAUserUnit) {
    render(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes(), 190)}));
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.mediaBox(), (std::vector<double>{0, 0, 4320, 14400}));
    EXPECT_FALSE(pdf.page().hasKey("/UserUnit"));
    EXPECT_TRUE(test::TemporaryFolder::read(out_).startsWith("%PDF-1.5"));
}

TEST_F(RollPDFRendererTest, givesARollOfFourHundredInchesAUserUnitOfTwo) {
    render(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes(), 390)}));
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.mediaBox(), (std::vector<double>{0, 0, 2160, 14400}));
    EXPECT_EQ(pdf.page().getKey("/UserUnit").getNumericValue(), 2.0);
    EXPECT_TRUE(test::TemporaryFolder::read(out_).startsWith("%PDF-1.6"));
    EXPECT_TRUE(pdf.content().startsWith("0.5 0 0 0.5 0 0 cm\n1 g 0 0 4320 28800 re f\n"));
    const NativePrintSource source =
        NativePrintFactory::openDocument(QUrl::fromLocalFile(out_), std::optional(60.0), std::optional(400.0));
    EXPECT_EQ(source.geometry.userUnit, 2.0);
}

TEST_F(RollPDFRendererTest, drawsImagesAtTheirPlaceAndFramesOverThem) {
    RollArtwork first = artwork(QStringLiteral("a.tif"), picture().bytes());
    RollArtwork second = artwork(QStringLiteral("b.tif"), picture().bytes(), 10);
    second.widthInches = 5;
    second.rotationQuarterTurns = 1;
    render(RollLayout({first, second}));
    QpdfReading pdf(out_);
    // 25 inches of roll; the second image is 5 wide and 10 long, turned a quarter clockwise.
    const QByteArray expected = "1 0 0 1 0 0 cm\n1 g 0 0 4320 1800 re f\n"
                                "q 720 0 0 360 180 1260 cm /Im4 Do Q\n"
                                "q 0 -720 360 0 180 900 cm /Im6 Do Q\n"
                                "q 0.45 G 0.5 w 0 J [6 4] 0 d\n"
                                "0 1080 1080 720 re S\n"
                                "0 0 720 1080 re S\n"
                                "Q\n";
    QByteArray content = pdf.content();
    for (const QByteArray name : {"/Im4", "/Im6"}) {
        EXPECT_TRUE(pdf.page().getKey("/Resources").getKey("/XObject").hasKey(name.toStdString()))
            << name.toStdString();
    }
    EXPECT_EQ(content, expected);
}

TEST_F(RollPDFRendererTest, embedsEveryPixelAndAuditsIt) {
    const RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    const QList<RollSourceAudit> audits = render(RollLayout({item}));
    QpdfReading pdf(out_);
    EXPECT_EQ(QpdfReading::data(pdf.images().at(0)), picture().pixels);
    EXPECT_EQ(audits, (QList<RollSourceAudit>{{.artworkID = item.id,
                                               .sourceURL = item.sourceURL,
                                               .sourceProfileName = SourceColorProfile::untagged().name,
                                               .sourceProfileSHA256 = std::nullopt,
                                               .pixelWidth = 4,
                                               .pixelHeight = 2,
                                               .renderedBitsPerComponent = 8,
                                               .renderedColorModel = QStringLiteral("RGB")}}));
}

TEST_F(RollPDFRendererTest, keepsSixteenBits) {
    TiffFixture tiff = picture();
    tiff.bits = 16;
    tiff.pixels += tiff.pixels;
    const QList<RollSourceAudit> audits = render(RollLayout({artwork(QStringLiteral("a.tif"), tiff.bytes())}));
    EXPECT_EQ(audits.first().renderedBitsPerComponent, 16);
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.images().at(0).getDict().getKey("/BitsPerComponent").getIntValue(), 16);
}

TEST_F(RollPDFRendererTest, namesTheModelsOfGrayAndCmyk) {
    TiffFixture gray = picture();
    gray.samples = 1;
    gray.photometric = 1;
    gray.pixels.truncate(8);
    TiffFixture cmyk = picture();
    cmyk.samples = 4;
    cmyk.photometric = 5;
    cmyk.pixels += QByteArray(8, '\7');
    const QList<RollSourceAudit> audits = render(RollLayout(
        {artwork(QStringLiteral("a.tif"), gray.bytes()), artwork(QStringLiteral("b.tif"), cmyk.bytes(), 10)}));
    EXPECT_EQ(audits[0].renderedColorModel, QStringLiteral("Gray"));
    EXPECT_EQ(audits[1].renderedColorModel, QStringLiteral("CMYK"));
}

TEST_F(RollPDFRendererTest, leavesTheFilesOwnProfileInAndAuditsIt) {
    TiffFixture tiff = picture();
    tiff.profile = platform::sRgbProfileData();
    const QList<RollSourceAudit> audits = render(RollLayout({artwork(QStringLiteral("a.tif"), tiff.bytes())}));
    EXPECT_EQ(audits.first().sourceProfileSHA256, platform::sha256Hex(platform::sRgbProfileData()));
    QpdfReading pdf(out_);
    QPDFObjectHandle space = pdf.images().at(0).getDict().getKey("/ColorSpace").getArrayItem(1);
    EXPECT_EQ(QpdfReading::data(space), platform::sRgbProfileData());
}

TEST_F(RollPDFRendererTest, drawsTheSameSourceFromOneImage) {
    const RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    RollArtwork copy = item;
    copy.id = QUuid::createUuid();
    copy.yInches = 10;
    const QList<RollSourceAudit> audits = render(RollLayout({item, copy}));
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.images().size(), 1U);
    ASSERT_EQ(audits.size(), 2);
    EXPECT_EQ(audits[0].artworkID, item.id);
    EXPECT_EQ(audits[1].artworkID, copy.id);
}

TEST_F(RollPDFRendererTest, drawsAQuarterTurnedSourceUpright) {
    TiffFixture tiff = picture(); // 4 x 2 stored, 2 x 4 upright
    tiff.orientation = 6;
    RollArtwork item =
        RollArtwork::make({.id = QUuid::createUuid(),
                           .sourceURL = QUrl::fromLocalFile(sources_.write(QStringLiteral("a.tif"), tiff.bytes())),
                           .pixelWidth = 2,
                           .pixelHeight = 4,
                           .widthInches = 5});
    const QList<RollSourceAudit> audits = render(RollLayout({item}));
    EXPECT_EQ(audits.first().pixelWidth, 2);
    EXPECT_EQ(audits.first().pixelHeight, 4);
    QpdfReading pdf(out_);
    EXPECT_TRUE(pdf.content().contains("q 0 -720 360 0 180 900 cm")) << pdf.content().toStdString();
}

TEST_F(RollPDFRendererTest, convertsToTheOutputProfileWithItsIntent) {
    TiffFixture tiff = picture();
    tiff.profile = platform::sRgbProfileData();
    const ColorWorkflow workflow{.mode = ColorManagementMode::appManaged,
                                 .intent = ColorRenderingIntent::perceptual,
                                 .driverColorCorrectionDisabledConfirmed = true};
    render(RollLayout({artwork(QStringLiteral("a.tif"), tiff.bytes())}), workflow, platform::sRgbProfileData());
    QpdfReading pdf(out_);
    EXPECT_TRUE(pdf.content().contains("q /Perceptual ri 720 0 0 360 180 180 cm"));
    EXPECT_EQ(QpdfReading::data(pdf.images().at(0)).size(), 24);
}

TEST_F(RollPDFRendererTest, stopsAFailingConversionAtPreflight) {
    const ColorWorkflow workflow{.mode = ColorManagementMode::appManaged,
                                 .intent = ColorRenderingIntent::perceptual,
                                 .driverColorCorrectionDisabledConfirmed = true};
    EXPECT_EQ(refusal(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes())}), workflow,
                      platform::sRgbProfileData()),
              QStringLiteral("The source reports no embedded ICC profile. Its color space cannot be guessed. Tag it "
                             "correctly in your creative software or use driver-managed color."));
}

TEST_F(RollPDFRendererTest, givesTheSameBytesForTheSameInput) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes())});
    render(layout);
    const QByteArray first = test::TemporaryFolder::read(out_);
    render(layout);
    EXPECT_EQ(test::TemporaryFolder::read(out_), first);
}

TEST_F(RollPDFRendererTest, replacesAnEarlierFile) {
    folder_.write(QStringLiteral("out.pdf"), "old");
    render(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes())}));
    EXPECT_TRUE(test::TemporaryFolder::read(out_).startsWith("%PDF-"));
}

TEST_F(RollPDFRendererTest, raisesTheLayoutsOwnMessage) {
    EXPECT_EQ(refusal(RollLayout()), QStringLiteral("Add artwork to the roll canvas first."));
}

TEST_F(RollPDFRendererTest, refusesToWriteOverASource) {
    const QString message =
        QStringLiteral("The export location cannot overwrite any source artwork. Choose a separate PDF file.");
    RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    const QString source = item.sourceURL.toLocalFile();
    const QByteArray before = test::TemporaryFolder::read(source);

    out_ = source;
    EXPECT_EQ(refusal(RollLayout({item})), message);
    out_ = folder_.path(QStringLiteral("link.pdf"));
    ASSERT_TRUE(QFile::link(source, out_));
    EXPECT_EQ(refusal(RollLayout({item})), message);
    out_ = folder_.path(QStringLiteral("hard.pdf"));
    ASSERT_EQ(::link(source.toLocal8Bit().constData(), out_.toLocal8Bit().constData()), 0);
    EXPECT_EQ(refusal(RollLayout({item})), message);
    out_ = sources_.path(QStringLiteral("./x/../a.tif"));
    EXPECT_EQ(refusal(RollLayout({item})), message);
    EXPECT_EQ(test::TemporaryFolder::read(source), before);
}

TEST_F(RollPDFRendererTest, refusesADestinationThatIsNoLocalFile) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes())});
    try {
        (void)RollPDFRenderer::render(layout, {}, QUrl(QStringLiteral("https://example.com/a.pdf")), {}, {});
        FAIL();
    } catch (const OrvexError& error) {
        EXPECT_EQ(
            error.message(),
            QStringLiteral("The export location cannot overwrite any source artwork. Choose a separate PDF file."));
    }
}

TEST_F(RollPDFRendererTest, refusesOddDestinations) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes())});
    const QString message = QStringLiteral("Cannot create the roll PDF. Check permissions at the save location.");
    out_ = folder_.path(QStringLiteral("missing/out.pdf"));
    EXPECT_EQ(refusal(layout), message);
    out_ = folder_.path();
    EXPECT_EQ(refusal(layout), message);
    out_ = QStringLiteral("/dev/null");
    EXPECT_EQ(refusal(layout), message);
    out_ = folder_.path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(out_.toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(refusal(layout), message);
}

TEST_F(RollPDFRendererTest, refusesARollBeyondTheRangeOfTheUserUnit) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes(), 200.0 * 75000)});
    EXPECT_EQ(refusal(layout), QStringLiteral("The calculated roll length exceeds the PDF UserUnit range. Split the "
                                              "artworks into multiple roll files."));
}

TEST_F(RollPDFRendererTest, acceptsTheLargestUserUnit) {
    render(RollLayout({artwork(QStringLiteral("a.tif"), picture().bytes(), 200.0 * 75000 - 10)}));
    QpdfReading pdf(out_);
    EXPECT_EQ(pdf.page().getKey("/UserUnit").getNumericValue(), 75000.0);
}

TEST_F(RollPDFRendererTest, refusesAPictureWhosePixelsChanged) {
    RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    item.title = QStringLiteral("Sea");
    TiffFixture other{.width = 2, .height = 1};
    other.pixels = QByteArray(6, '\1');
    sources_.write(QStringLiteral("a.tif"), other.bytes());
    EXPECT_EQ(refusal(RollLayout({item})), QStringLiteral("Pixel dimensions of “Sea” changed after import. Export was "
                                                          "stopped. Import the artwork again."));
}

TEST_F(RollPDFRendererTest, refusesASecondArtworkOfTheSameSourceWithOtherPixels) {
    const RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    RollArtwork copy = item;
    copy.id = QUuid::createUuid();
    copy.title = QStringLiteral("Sea");
    copy.yInches = 10;
    copy.pixelWidth = 8;
    copy.pixelHeight = 4;
    EXPECT_EQ(refusal(RollLayout({item, copy})), QStringLiteral("Pixel dimensions of “Sea” changed after import. "
                                                                "Export was stopped. Import the artwork again."));
}

TEST_F(RollPDFRendererTest, refusesASourceThatIsNoFileAnyMore) {
    const RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    QFile::remove(item.sourceURL.toLocalFile());
    EXPECT_TRUE(refusal(RollLayout({item})).contains(QStringLiteral("No such file or directory")));
    QDir().mkdir(item.sourceURL.toLocalFile());
    EXPECT_EQ(refusal(RollLayout({item})),
              QStringLiteral("The source artwork is unreadable or has not been downloaded locally: a.tif"));
}

TEST_F(RollPDFRendererTest, refusesInChineseToo) {
    const test::InChinese chinese;
    RollArtwork item = artwork(QStringLiteral("a.tif"), picture().bytes());
    item.title = QStringLiteral("Sea");
    const QString destination = out_;
    out_ = item.sourceURL.toLocalFile();
    EXPECT_EQ(refusal(RollLayout({item})), QStringLiteral("导出位置不能覆盖任何原图。请另选一个 PDF 文件。"));
    out_ = folder_.path(QStringLiteral("missing/out.pdf"));
    EXPECT_EQ(refusal(RollLayout({item})), QStringLiteral("无法创建卷布 PDF。请检查保存位置的权限。"));
    out_ = destination;
    RollArtwork far = item;
    far.yInches = 200.0 * 75000;
    EXPECT_EQ(refusal(RollLayout({far})),
              QStringLiteral("计算出的卷布长度超出 PDF UserUnit 的范围。请将作品分到多个卷布文件。"));
    RollArtwork large = item;
    large.pixelWidth = 8;
    large.pixelHeight = 4;
    EXPECT_EQ(refusal(RollLayout({large})),
              QStringLiteral("“Sea”的像素尺寸在导入后发生了变化。导出已停止，请重新导入该作品。"));
}

TEST_F(RollPDFRendererTest, endsWithoutATraceWhenAskedToStop) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes())});
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW((void)RollPDFRenderer::render(layout, {}, QUrl::fromLocalFile(out_), {}, {}, stop.get_token()),
                 platform::Interrupted);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(RollPDFRendererTest, tellsHowFarItHasCome) {
    using RollPDFRenderer::RenderProgress;
    using RollPDFRenderer::RenderStage;
    TiffFixture tall = picture();
    tall.orientation = 6; // 4 x 2 stored
    const RollArtwork first =
        RollArtwork::make({.id = QUuid::createUuid(),
                           .sourceURL = QUrl::fromLocalFile(sources_.write(QStringLiteral("a.tif"), tall.bytes())),
                           .pixelWidth = 2,
                           .pixelHeight = 4,
                           .widthInches = 5});
    RollArtwork copy = first;
    copy.id = QUuid::createUuid();
    copy.yInches = 30;
    QList<RenderProgress> told;
    (void)RollPDFRenderer::render(RollLayout({first, copy, artwork(QStringLiteral("b.tif"), picture().bytes(), 60)}),
                                  {}, QUrl::fromLocalFile(out_), {}, {}, {},
                                  [&](const RenderProgress& progress) { told.append(progress); });
    QList<RenderProgress> expected;
    for (const RenderStage stage : {RenderStage::preflight, RenderStage::drawing}) {
        expected +=
            {{stage, 1, 3, 0, 2}, {stage, 1, 3, 2, 2}, {stage, 2, 3, 2, 2}, {stage, 3, 3, 0, 2}, {stage, 3, 3, 2, 2}};
    }
    EXPECT_EQ(told, expected);
    EXPECT_EQ((RenderProgress{RenderStage::drawing, 3, 4, 1, 2}.fraction()), 0.625);
}

TEST_F(RollPDFRendererTest, endsWithoutATraceWhereItsReportFails) {
    const RollLayout layout({artwork(QStringLiteral("a.tif"), picture().bytes())});
    const auto report = [](const RollPDFRenderer::RenderProgress& progress) {
        if (progress.stage == RollPDFRenderer::RenderStage::drawing) {
            throw std::runtime_error("no more");
        }
    };
    EXPECT_THROW((void)RollPDFRenderer::render(layout, {}, QUrl::fromLocalFile(out_), {}, {}, {}, report),
                 std::runtime_error);
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST(RollSourceAudit, survivesItsJson) {
    RollSourceAudit audit{.artworkID = QUuid::createUuid(),
                          .sourceURL = QUrl(QStringLiteral("file:///tmp/a%20b.jpg")),
                          .sourceProfileName = QStringLiteral("sRGB"),
                          .sourceProfileSHA256 = QStringLiteral("00"),
                          .pixelWidth = 3,
                          .pixelHeight = 4,
                          .renderedBitsPerComponent = 16,
                          .renderedColorModel = QStringLiteral("Gray")};
    const auto reread = [](const RollSourceAudit& value) {
        const QByteArray json = platform::writeJson(value.toJson(), platform::JsonForm::pretty);
        return RollSourceAudit::fromJson(platform::JsonReader::parse(json));
    };
    EXPECT_EQ(reread(audit), audit);
    audit.sourceProfileSHA256.reset();
    EXPECT_FALSE(audit.toJson().contains(QStringLiteral("sourceProfileSHA256")));
    EXPECT_EQ(reread(audit), audit);
}

} // namespace
} // namespace orvex
