#include "Output/ImageMetadata.h"

#include "Color/IccProfile.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QLocale>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvex {
namespace {

using test::TiffFixture;

TiffFixture grayFixture(quint32 width, quint32 height) {
    TiffFixture tiff{.width = width, .height = height, .samples = 1, .photometric = 1};
    tiff.pixels = QByteArray(static_cast<qsizetype>(width) * height, '\x40');
    return tiff;
}

class ImageMetadataTest : public ::testing::Test {
protected:
    ~ImageMetadataTest() override {
        QLocale::setDefault(QLocale(QStringLiteral("en_US")));
        OrvexLanguage::setConfigured(QStringLiteral("en"));
    }

    ImageMetadata load(const QByteArray& bytes) {
        return ImageMetadata::load(QUrl::fromLocalFile(folder_.write(QStringLiteral("a.tif"), bytes)));
    }

    QString refusal(const QUrl& url) {
        try {
            (void)ImageMetadata::load(url);
        } catch (const OrvexError& error) {
            return error.message();
        }
        return {};
    }

    test::TemporaryFolder folder_;
};

const QString unreadable =
    QStringLiteral("Cannot read the image or valid dimensions. Check file integrity and whether the system supports "
                   "this JPEG, PNG, TIFF or HEIC file.");

TEST_F(ImageMetadataTest, dividesThePixelsByTheStatedDensity) {
    TiffFixture tiff = grayFixture(7200, 36);
    tiff.density = {72, 72};
    const ImageMetadata metadata = load(tiff.bytes());
    EXPECT_EQ(metadata.pixelWidth, 7200);
    EXPECT_EQ(metadata.pixelHeight, 36);
    EXPECT_EQ(metadata.originalWidthInches, 100.0);
    EXPECT_EQ(metadata.originalHeightInches, 0.5);
    EXPECT_EQ(metadata.physicalSizeSource, QStringLiteral("文件标注 72 ppi"));
    EXPECT_EQ(metadata.physicalSizeSourceLabel(), QStringLiteral("File metadata: 72 ppi"));
    EXPECT_FALSE(metadata.isPhysicalSizeEstimated());
}

TEST_F(ImageMetadataTest, exchangesTheSidesOfAQuarterTurnedPicture) {
    for (const int orientation : {5, 6, 7, 8}) {
        TiffFixture tiff = grayFixture(40, 30);
        tiff.orientation = static_cast<quint16>(orientation);
        const ImageMetadata metadata = load(tiff.bytes());
        EXPECT_EQ(metadata.pixelWidth, 30) << orientation;
        EXPECT_EQ(metadata.pixelHeight, 40) << orientation;
        EXPECT_EQ(metadata.preview.width(), 30) << orientation;
    }
}

TEST_F(ImageMetadataTest, exchangesNothingForTheOtherOrientations) {
    for (const int orientation : {0, 1, 2, 3, 4, 9}) {
        TiffFixture tiff = grayFixture(40, 30);
        tiff.orientation = static_cast<quint16>(orientation);
        EXPECT_EQ(load(tiff.bytes()).pixelWidth, 40) << orientation;
    }
}

TEST_F(ImageMetadataTest, estimatesThreeHundredWithoutADensity) {
    const ImageMetadata metadata = load(grayFixture(600, 300).bytes());
    EXPECT_EQ(metadata.originalWidthInches, 2.0);
    EXPECT_EQ(metadata.originalHeightInches, 1.0);
    EXPECT_EQ(metadata.physicalSizeSource, QStringLiteral("未标注有效打印尺寸；按 300 ppi 估算"));
    EXPECT_EQ(metadata.physicalSizeSourceLabel(),
              QStringLiteral("No valid print dimensions reported; estimated at 300 ppi"));
    EXPECT_TRUE(metadata.isPhysicalSizeEstimated());
}

TEST_F(ImageMetadataTest, estimatesForADensityOfZero) {
    TiffFixture tiff = grayFixture(600, 300);
    tiff.density = {0, 300};
    EXPECT_EQ(load(tiff.bytes()).physicalSizeSource, QStringLiteral("未标注有效打印尺寸；按 300 ppi 估算"));
}

TEST_F(ImageMetadataTest, takesDensitiesWithinAMillionthAsEqual) {
    TiffFixture tiff = grayFixture(300, 300);
    tiff.density = {3000000, 3000002};
    tiff.densityDenominator = 10000;
    EXPECT_EQ(load(tiff.bytes()).originalHeightInches, 1.0);
}

TEST_F(ImageMetadataTest, estimatesForUnequalDensitiesAndKeepsTheProportions) {
    TiffFixture tiff = grayFixture(600, 300);
    tiff.density = {300, 301};
    const ImageMetadata metadata = load(tiff.bytes());
    EXPECT_EQ(metadata.originalWidthInches, 2.0);
    EXPECT_EQ(metadata.originalHeightInches, 1.0);
    EXPECT_EQ(metadata.physicalSizeSource, QStringLiteral("文件两轴 DPI 不一致；按 300 ppi 估算并保持像素比例"));
    EXPECT_EQ(metadata.physicalSizeSourceLabel(),
              QStringLiteral(
                  "The file reports different X/Y DPI; estimated at 300 ppi while keeping the pixel aspect ratio"));
    EXPECT_TRUE(metadata.isPhysicalSizeEstimated());
}

TEST_F(ImageMetadataTest, formatsTheDensityInTheUsersLocaleWithTwoDigits) {
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    TiffFixture tiff = grayFixture(600, 300);
    tiff.density = {1234567, 1234567};
    tiff.densityDenominator = 1000;
    EXPECT_EQ(load(tiff.bytes()).physicalSizeSource, QStringLiteral("文件标注 1234,57 ppi"));
}

TEST_F(ImageMetadataTest, makesAPreviewOfAtMost2400Pixels) {
    const ImageMetadata metadata = load(grayFixture(4800, 1200).bytes());
    EXPECT_EQ(metadata.preview.width(), 2400);
    EXPECT_EQ(metadata.preview.height(), 600);
    EXPECT_EQ(metadata.preview.orientation(), 1);
}

TEST_F(ImageMetadataTest, neverEnlargesThePreview) {
    const ImageMetadata metadata = load(grayFixture(20, 10).bytes());
    EXPECT_EQ(metadata.preview.width(), 20);
}

TEST_F(ImageMetadataTest, findsTheEmbeddedProfile) {
    TiffFixture tiff{.width = 1, .height = 1};
    tiff.pixels = QByteArray("\1\2\3");
    tiff.profile = platform::sRgbProfileData();
    const ImageMetadata metadata = load(tiff.bytes());
    EXPECT_EQ(metadata.sourceColorProfile.embeddedICCData, platform::sRgbProfileData());
    EXPECT_EQ(metadata.profileName, metadata.sourceColorProfile.name);
}

TEST_F(ImageMetadataTest, assumesNoProfile) {
    const ImageMetadata metadata = load(grayFixture(1, 1).bytes());
    EXPECT_EQ(metadata.sourceColorProfile, SourceColorProfile::untagged());
    EXPECT_EQ(metadata.displayProfileName(), QStringLiteral("No embedded profile reported; sRGB is not assumed"));
}

TEST_F(ImageMetadataTest, givesTheSameAnswerEachTime) {
    const QByteArray bytes = grayFixture(600, 300).bytes();
    EXPECT_EQ(load(bytes).physicalSizeSource, load(bytes).physicalSizeSource);
}

TEST_F(ImageMetadataTest, refusesWhatIsNoImage) {
    EXPECT_EQ(refusal(QUrl::fromLocalFile(folder_.write(QStringLiteral("a.jpg"), "no image"))), unreadable);
    EXPECT_EQ(refusal(QUrl::fromLocalFile(folder_.write(QStringLiteral("empty.png"), {}))), unreadable);
}

TEST_F(ImageMetadataTest, refusesWhatIsNoRegularFile) {
    EXPECT_EQ(refusal(QUrl::fromLocalFile(folder_.path(QStringLiteral("missing.jpg")))), unreadable);
    EXPECT_EQ(refusal(QUrl::fromLocalFile(folder_.path())), unreadable);
    EXPECT_EQ(refusal(QUrl(QStringLiteral("https://example.com/a.jpg"))), unreadable);
    const QString fifo = folder_.path(QStringLiteral("fifo.jpg"));
    ASSERT_EQ(::mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(refusal(QUrl::fromLocalFile(fifo)), unreadable);
}

TEST_F(ImageMetadataTest, refusesInChineseToo) {
    OrvexLanguage::setConfigured(QStringLiteral("zh-Hans"));
    EXPECT_EQ(refusal(QUrl::fromLocalFile(folder_.path(QStringLiteral("missing.jpg")))),
              QStringLiteral(
                  "无法读取图像或有效尺寸。请检查文件是否完整，以及系统是否支持该 JPEG、PNG、TIFF 或 HEIC 文件。"));
}

TEST_F(ImageMetadataTest, refusesAPictureWhosePixelsAreCutOff) {
    TiffFixture tiff = grayFixture(100, 100);
    tiff.pixels.truncate(5000);
    const QString message = refusal(QUrl::fromLocalFile(folder_.write(QStringLiteral("a.tif"), tiff.bytes())));
    EXPECT_TRUE(message == unreadable || message == ImageMetadata::decodingError().message()) << message.toStdString();
}

TEST(LocalizedPhysicalSizeSource, isUnchangedInChinese) {
    OrvexLanguage::setConfigured(QStringLiteral("zh-Hans"));
    for (const QString& text : {QStringLiteral("文件标注 240.5 ppi"), QStringLiteral("anything")}) {
        EXPECT_EQ(ImageMetadata::localizedPhysicalSizeSource(text), text);
    }
    OrvexLanguage::setConfigured(QStringLiteral("en"));
}

TEST(LocalizedPhysicalSizeSource, keepsTheNumberAsItIsStored) {
    EXPECT_EQ(ImageMetadata::localizedPhysicalSizeSource(QStringLiteral("文件标注 240.5 ppi")),
              QStringLiteral("File metadata: 240.5 ppi"));
    EXPECT_EQ(ImageMetadata::localizedPhysicalSizeSource(QStringLiteral("文件标注 240,5 ppi")),
              QStringLiteral("File metadata: 240,5 ppi"));
    EXPECT_EQ(ImageMetadata::localizedPhysicalSizeSource(QStringLiteral("文件标注  ppi")),
              QStringLiteral("File metadata:  ppi"));
}

TEST(LocalizedPhysicalSizeSource, letsOtherTextsPass) {
    for (const QString& text : {QString(), QStringLiteral("文件标注300 ppi"), QStringLiteral("文件标注 300 dpi"),
                                QStringLiteral("按 300 ppi 估算"), QStringLiteral("some note")}) {
        EXPECT_EQ(ImageMetadata::localizedPhysicalSizeSource(text), text);
    }
}

} // namespace
} // namespace orvex
