#include "Imaging/ExifMetadata.h"

#include "ExifFixture.h"

#include <gtest/gtest.h>

#include <random>

namespace orvex::platform {

namespace {

using test::ExifFixture;

ExifMetadata read(const std::vector<ExifFixture::Entry>& main, const std::vector<ExifFixture::Entry>& exif = {}) {
    const ExifMetadata little =
        ExifMetadata::read(ExifFixture{.isBigEndian = false, .main = main, .exif = exif}.bytes());
    const ExifMetadata big = ExifMetadata::read(ExifFixture{.isBigEndian = true, .main = main, .exif = exif}.bytes());
    EXPECT_EQ(little, big);
    return little;
}

QByteArray wholeBlock() {
    return ExifFixture{.main = {ExifFixture::number(ExifFixture::orientation, 6),
                                ExifFixture::rational(ExifFixture::xResolution, 300),
                                ExifFixture::rational(ExifFixture::yResolution, 240),
                                ExifFixture::number(ExifFixture::resolutionUnit, 2)},
                       .exif = {ExifFixture::number(ExifFixture::colorSpace, 1)}}
        .bytes();
}

} // namespace

TEST(ExifMetadataReading, GivesWhatAWholeBlockSays) {
    EXPECT_EQ(ExifMetadata::read(wholeBlock()), (ExifMetadata{6, 300.0, 240.0, true}));
}

TEST(ExifMetadataReading, TakesAnOrientationFromOneToEight) {
    for (quint32 value = 0; value <= 300; ++value) {
        const int expected = value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
        EXPECT_EQ(read({ExifFixture::number(ExifFixture::orientation, value)}).orientation, expected) << value;
    }
}

TEST(ExifMetadataReading, TakesAnOrientationOfOneShortOnly) {
    const auto tag = ExifFixture::orientation;
    EXPECT_EQ(read({ExifFixture::number(tag, 6, ExifFixture::longType)}).orientation, 1);
    EXPECT_EQ(read({ExifFixture::number(tag, 6, ExifFixture::byteType)}).orientation, 1);
    EXPECT_EQ(read({ExifFixture::rational(tag, 6)}).orientation, 1);
    EXPECT_EQ(read({{tag, ExifFixture::shortType, 2, {6, 6}}}).orientation, 1);
    EXPECT_EQ(read({{tag, ExifFixture::shortType, 0, {6}}}).orientation, 1);
    EXPECT_EQ(read({}, {ExifFixture::number(tag, 6)}).orientation, 1) << "in the other directory";
}

TEST(ExifMetadataReading, ConvertsTheResolutionToPixelsPerInch) {
    struct Row {
        std::optional<quint32> unit;
        std::optional<double> expected; ///< of 3001 / 10
    };

    for (const Row& row :
         {Row{std::nullopt, 300.1}, Row{2, 300.1}, Row{3, 300.1 * 2.54}, Row{1, {}}, Row{0, {}}, Row{4, {}}}) {
        std::vector<ExifFixture::Entry> entries{ExifFixture::rational(ExifFixture::xResolution, 3001, 10)};
        if (row.unit) {
            entries.push_back(ExifFixture::number(ExifFixture::resolutionUnit, *row.unit));
        }
        SCOPED_TRACE(row.unit.value_or(99));
        EXPECT_EQ(read(entries).dpiWidth, row.expected);
        EXPECT_EQ(read(entries).dpiHeight, std::nullopt);
    }
}

TEST(ExifMetadataReading, TakesNoUnitOfAnotherTypeForAnInch) {
    EXPECT_EQ(read({ExifFixture::rational(ExifFixture::xResolution, 300),
                    ExifFixture::number(ExifFixture::resolutionUnit, 2, ExifFixture::longType)})
                  .dpiWidth,
              std::nullopt);
}

TEST(ExifMetadataReading, TakesResolutionsThatAreFractionsOnly) {
    const auto width = [](const ExifFixture::Entry& entry) { return read({entry}).dpiWidth; };
    const auto tag = ExifFixture::xResolution;
    EXPECT_EQ(width(ExifFixture::rational(tag, 0)), 0.0);
    EXPECT_EQ(width(ExifFixture::rational(tag, 300, 0)), std::nullopt);
    EXPECT_EQ(width(ExifFixture::rational(tag, 0, 0)), std::nullopt);
    EXPECT_EQ(width(ExifFixture::rational(tag, 4294967295, 4294967295)), 1.0);
    EXPECT_EQ(width(ExifFixture::rational(tag, 4294967295, 1)), 4294967295.0);
    EXPECT_EQ(width(ExifFixture::rational(tag, static_cast<quint32>(-300), 1, ExifFixture::signedRationalType)),
              -300.0);
    EXPECT_EQ(width(ExifFixture::number(tag, 300)), std::nullopt);
    EXPECT_EQ(width(ExifFixture::number(tag, 300, ExifFixture::longType)), std::nullopt);
    EXPECT_EQ(width({tag, ExifFixture::rationalType, 2, {300, 1, 300, 1}}), std::nullopt);
}

TEST(ExifMetadataReading, KnowsTheSRgbOfTheExifDirectoryOnly) {
    const auto tag = ExifFixture::colorSpace;
    EXPECT_TRUE(read({}, {ExifFixture::number(tag, 1)}).declaresSRGB);
    EXPECT_FALSE(read({}, {ExifFixture::number(tag, 2)}).declaresSRGB);
    EXPECT_FALSE(read({}, {ExifFixture::number(tag, 65535)}).declaresSRGB);
    EXPECT_FALSE(read({}, {ExifFixture::number(tag, 1, ExifFixture::longType)}).declaresSRGB);
    EXPECT_FALSE(read({ExifFixture::number(tag, 1)}).declaresSRGB);
}

TEST(ExifMetadataReading, GivesTheDefaultsForWhatIsNoBlock) {
    for (const QByteArray& bytes : {QByteArray(), QByteArray("I"), QByteArray("II*\0", 4),
                                    QByteArray("XX*\0\x08\0\0\0\0\0", 10), QByteArray(100000, '\xFF')}) {
        EXPECT_EQ(ExifMetadata::read(bytes), ExifMetadata());
    }
}

TEST(ExifMetadataReading, ReadsABlockWithMuchBehindIt) {
    EXPECT_EQ(ExifMetadata::read(wholeBlock() + QByteArray(300000, 'x')), (ExifMetadata{6, 300.0, 240.0, true}));
}

TEST(ExifMetadataReading, SurvivesABlockThatIsCutOffOrDamagedAnywhere) {
    const QByteArray block = wholeBlock();
    for (qsizetype size = 0; size < block.size(); ++size) {
        const ExifMetadata metadata = ExifMetadata::read(block.first(size));
        EXPECT_TRUE(metadata.orientation == 1 || metadata.orientation == 6) << size;
    }
    std::mt19937 random(3);
    for (int trial = 0; trial < 5000; ++trial) {
        QByteArray damaged = block;
        for (int flip = 0; flip < 3; ++flip) {
            damaged[static_cast<qsizetype>(random() % static_cast<quint64>(block.size()))] =
                static_cast<char>(random());
        }
        const ExifMetadata metadata = ExifMetadata::read(damaged);
        EXPECT_GE(metadata.orientation, 1);
        EXPECT_LE(metadata.orientation, 8);
    }
}

} // namespace orvex::platform
