#include "Color/IccProfile.h"
#include "ExifFixture.h"
#include "HeifFixture.h"
#include "IccFixtures.h"
#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"
#include "RasterReading.h"
#include "TemporaryFolder.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <thread>

namespace orvex::platform {

namespace {

using test::ExifFixture;
using test::HeifFixture;

/// A different colour in each quarter.
std::vector<int> quarters(const HeifFixture& fixture, int x, int y) {
    const bool isLeft = x < fixture.width / 2;
    const bool isTop = y < fixture.height / 2;
    return isTop ? (isLeft ? std::vector{230, 20, 30} : std::vector{20, 220, 40})
                 : (isLeft ? std::vector{10, 30, 240} : std::vector{240, 235, 20});
}

QByteArray exifOf(std::vector<ExifFixture::Entry> entries) {
    ExifFixture exif;
    exif.main = std::move(entries);
    return exif.bytes();
}

std::vector<int> samplesAt(const Raster& raster, const QByteArray& pixels, qint64 x, qint64 y) {
    const PixelFormat& format = raster.format();
    std::vector<int> samples;
    for (int index = 0; index < format.samplesPerPixel(); ++index) {
        const char* at = pixels.constData() + y * raster.rowBytes() + x * format.bytesPerPixel();
        if (format.bitsPerComponent == 8) {
            samples.push_back(static_cast<quint8>(at[index]));
        } else {
            quint16 value = 0;
            std::memcpy(&value, at + 2 * index, sizeof(value));
            samples.push_back(value);
        }
    }
    return samples;
}

void expectNear(const std::vector<int>& actual, const std::vector<int>& expected, int tolerance) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t index = 0; index < actual.size(); ++index) {
        EXPECT_NEAR(actual[index], expected[index], tolerance) << "sample " << index;
    }
}

} // namespace

class HeifImages : public ::testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<ImageSource> open(const QByteArray& bytes) const {
        const QString name = QStringLiteral("picture.heic");
        QFile::remove(folder_.path(name)); // a file that is written over may be flushed to the disk every time
        return openHeif(std::make_shared<const RandomAccessFile>(RandomAccessFile::open(folder_.write(name, bytes))));
    }

    [[nodiscard]] QByteArray decoded(const QByteArray& bytes) const { return test::pixelsOf(open(bytes)->full()); }

    /// Checks a flat picture's format and colour.
    void expectFlat(const HeifFixture& fixture, const PixelFormat& format, const std::vector<int>& color,
                    int tolerance) const {
        const Raster raster = open(fixture.bytes())->full();
        ASSERT_EQ(raster.format(), format);
        const QByteArray pixels = test::pixelsOf(raster);
        for (const auto& [x, y] : {std::pair(0, 0), std::pair(47, 31), std::pair(95, 63)}) {
            expectNear(samplesAt(raster, pixels, x, y), color, tolerance);
        }
    }

    test::TemporaryFolder folder_;
};

TEST_F(HeifImages, HaveTheirSizeAndColors) {
    HeifFixture fixture;
    fixture.painter = [&](int x, int y) { return quarters(fixture, x, y); };
    const auto source = open(fixture.bytes());
    const ImageProperties properties = source->properties();
    EXPECT_EQ(properties.pixelWidth, 96);
    EXPECT_EQ(properties.pixelHeight, 64);
    EXPECT_EQ(properties.orientation, 1);
    EXPECT_EQ(properties.dpiWidth, std::nullopt);
    EXPECT_EQ(properties.dpiHeight, std::nullopt);
    const Raster raster = source->full();
    EXPECT_EQ(raster.format(), (PixelFormat{ColorModel::rgb, 8, false, false}));
    EXPECT_EQ(raster.iccProfile(), std::nullopt);
    EXPECT_FALSE(source->encodedStream());
    const QByteArray pixels = test::pixelsOf(raster);
    for (const auto& [x, y] : {std::pair(5, 5), std::pair(90, 5), std::pair(5, 60), std::pair(90, 60)}) {
        expectNear(samplesAt(raster, pixels, x, y), quarters(fixture, x, y), 3);
    }
}

TEST_F(HeifImages, ComeInStrips) {
    HeifFixture fixture;
    fixture.width = 64;
    fixture.height = 700;
    fixture.painter = [](int, int y) { return std::vector{y % 250, y % 250, y % 250}; };
    const Raster raster = open(fixture.bytes())->full();
    const QByteArray pixels = test::pixelsOf(raster);
    for (qint64 y = 0; y < 700; ++y) {
        const int gray = static_cast<int>(y % 250);
        expectNear(samplesAt(raster, pixels, 30, y), {gray, gray, gray}, 3);
    }
}

TEST_F(HeifImages, ApplyTheContainersTransformsOnceAndNoOthers) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        // The EXIF block tells something else each time, as it does in files of cameras that turn the picture twice.
        for (const quint32 exifOrientation : {0U, 1U, 6U, static_cast<quint32>(orientation)}) {
            SCOPED_TRACE(testing::Message() << orientation << ", EXIF " << exifOrientation);
            HeifFixture fixture;
            fixture.orientation = static_cast<heif_orientation>(orientation);
            fixture.painter = [&](int x, int y) { return quarters(fixture, x, y); };
            if (exifOrientation > 0) {
                fixture.exif = exifOf({ExifFixture::number(ExifFixture::orientation, exifOrientation)});
            }
            const auto source = open(fixture.bytes());
            const Raster raster = source->full();
            const bool isTurned = orientation >= 5;
            EXPECT_EQ(source->properties().orientation, 1);
            EXPECT_EQ(source->properties().pixelWidth, isTurned ? 64 : 96);
            EXPECT_EQ(source->properties().pixelHeight, isTurned ? 96 : 64);
            ASSERT_EQ(raster.orientation(), 1);
            ASSERT_EQ(raster.width(), isTurned ? 64 : 96);
            const QByteArray pixels = test::pixelsOf(raster);
            // Where the upright picture's left top and right top come from.
            const std::vector<std::pair<int, int>> leftTop{{5, 5}, {90, 5}, {90, 58}, {5, 58},
                                                           {5, 5}, {5, 58}, {90, 58}, {90, 5}};
            const std::vector<std::pair<int, int>> rightTop{{90, 5}, {5, 5}, {5, 58}, {90, 58},
                                                            {5, 58}, {5, 5}, {90, 5}, {90, 58}};
            const auto row = static_cast<std::size_t>(orientation - 1);
            expectNear(samplesAt(raster, pixels, 5, 5), quarters(fixture, leftTop[row].first, leftTop[row].second), 3);
            expectNear(samplesAt(raster, pixels, raster.width() - 6, 5),
                       quarters(fixture, rightTop[row].first, rightTop[row].second), 3);
        }
    }
}

TEST_F(HeifImages, ScaleDeeperSamplesToTheWholeRange) {
    for (const int depth : {10, 12}) {
        HeifFixture fixture;
        fixture.bitDepth = depth;
        const int largest = (1 << depth) - 1;
        const int step = 65535 / largest + 1; // what the coding may be off by
        const PixelFormat format{ColorModel::rgb, 16, false, false};
        fixture.painter = [&](int, int) { return std::vector{largest, largest, largest}; };
        expectFlat(fixture, format, {65535, 65535, 65535}, 0);
        fixture.painter = [](int, int) { return std::vector{0, 0, 0}; };
        expectFlat(fixture, format, {0, 0, 0}, 0);
        const std::vector color{largest * 3 / 4, largest / 2, largest / 5};
        fixture.painter = [&](int, int) { return color; };
        expectFlat(fixture, format,
                   {color[0] * 65535 / largest, color[1] * 65535 / largest, color[2] * 65535 / largest}, 3 * step);
    }
}

TEST_F(HeifImages, MayHaveAlpha) {
    HeifFixture fixture;
    fixture.hasAlpha = true;
    fixture.painter = [](int, int) { return std::vector{200, 120, 40, 130}; };
    expectFlat(fixture, {ColorModel::rgb, 8, false, true}, {200, 120, 40, 130}, 3);
    fixture.bitDepth = 10;
    fixture.painter = [](int, int) { return std::vector{800, 480, 160, 512}; };
    expectFlat(fixture, {ColorModel::rgb, 16, false, true},
               {800 * 65535 / 1023, 480 * 65535 / 1023, 160 * 65535 / 1023, 512 * 65535 / 1023}, 3 * 65);
}

TEST_F(HeifImages, HaveTheAlphaTakenOutOfTheirColors) {
    HeifFixture fixture;
    fixture.hasAlpha = true;
    fixture.isPremultiplied = true;
    const PixelFormat format{ColorModel::rgb, 8, false, true};
    fixture.painter = [](int, int) { return std::vector{100, 60, 20, 128}; };
    expectFlat(fixture, format, {199, 120, 40, 128}, 6);
    fixture.painter = [](int, int) { return std::vector{200, 120, 40, 255}; };
    expectFlat(fixture, format, {200, 120, 40, 255}, 3);
    fixture.painter = [](int, int) { return std::vector{200, 120, 40, 0}; }; // which no alpha of 0 can have
    expectFlat(fixture, format, {0, 0, 0, 0}, 0);
    fixture.painter = [](int, int) { return std::vector{200, 200, 200, 100}; };
    expectFlat(fixture, format, {255, 255, 255, 100}, 0);
}

TEST_F(HeifImages, ComeAsRgbFromGray) {
    HeifFixture fixture;
    fixture.isMonochrome = true;
    fixture.painter = [](int, int) { return std::vector{77}; };
    expectFlat(fixture, {ColorModel::rgb, 8, false, false}, {77, 77, 77}, 2);
}

TEST_F(HeifImages, HaveTheColorSpaceOfTheirProfile) {
    HeifFixture fixture;
    const QByteArray rgb = test::icc::saved(test::icc::rgb(1.9));
    fixture.profile = rgb;
    EXPECT_EQ(open(fixture.bytes())->full().iccProfile(), rgb);
    fixture.profile = test::icc::saved(test::icc::gray(2.2));
    EXPECT_EQ(open(fixture.bytes())->full().iccProfile(), std::nullopt);
    fixture.profile = "this is no profile";
    EXPECT_EQ(open(fixture.bytes())->full().iccProfile(), std::nullopt);
}

TEST_F(HeifImages, StateTheDensityOfTheirExifBlock) {
    HeifFixture fixture;
    const auto densityOf = [&](quint32 unit) {
        fixture.exif = exifOf({ExifFixture::number(ExifFixture::orientation, 6),
                               ExifFixture::rational(ExifFixture::xResolution, 240),
                               ExifFixture::rational(ExifFixture::yResolution, 481, 2),
                               ExifFixture::number(ExifFixture::resolutionUnit, unit)});
        const ImageProperties properties = open(fixture.bytes())->properties();
        return std::pair(properties.dpiWidth, properties.dpiHeight);
    };
    EXPECT_EQ(densityOf(2), std::pair(std::optional(240.0), std::optional(240.5)));
    EXPECT_EQ(densityOf(3), std::pair(std::optional(240 * 2.54), std::optional(240.5 * 2.54)));
    EXPECT_EQ(densityOf(1), std::pair(std::optional<double>(), std::optional<double>()));
}

TEST_F(HeifImages, PassOverAnExifBlockThatIsBeyondItself) {
    HeifFixture fixture;
    fixture.exif = exifOf({ExifFixture::rational(ExifFixture::xResolution, 240)});
    QByteArray file = fixture.bytes();
    const qsizetype offset = file.indexOf(fixture.exif) - 4;
    ASSERT_GT(offset, 0);
    EXPECT_EQ(open(file)->properties().dpiWidth, 240.0);
    for (const quint32 distance : {1U, 1000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        qToBigEndian(distance, file.data() + offset);
        EXPECT_EQ(open(file)->properties().dpiWidth, std::nullopt);
        EXPECT_NO_THROW((void)decoded(file));
    }
}

TEST_F(HeifImages, MayBeReadAgainAndInSeveralThreads) {
    HeifFixture fixture;
    fixture.painter = [](int x, int y) { return std::vector{x * 2, y * 3, (x + y) % 200}; };
    const auto source = open(fixture.bytes());
    const QByteArray expected = test::pixelsOf(source->full());
    std::array<QByteArray, 3> results;
    {
        std::vector<std::jthread> threads;
        for (QByteArray& result : results) {
            threads.emplace_back([&] { result = test::pixelsOf(source->full()); });
        }
    }
    for (const QByteArray& result : results) {
        EXPECT_EQ(result, expected);
    }
}

TEST_F(HeifImages, AreRefusedIfCutOffAnywhere) {
    HeifFixture fixture;
    fixture.painter = [](int x, int y) { return std::vector{(x * 37 + y * 91) % 256, x * 2, y * 3}; };
    const QByteArray file = fixture.bytes();
    ASSERT_NO_THROW((void)decoded(file));
    for (qsizetype part = 0; part < 64; ++part) {
        const qsizetype size = 12 + (file.size() - 12) * part / 64;
        EXPECT_THROW((void)decoded(file.first(size)), ImageError) << size;
    }
    EXPECT_THROW((void)decoded(file.chopped(1)), ImageError);
}

TEST_F(HeifImages, AreRefusedOrReadIfDamagedAnywhere) {
    HeifFixture fixture;
    fixture.painter = [](int x, int y) { return std::vector{(x * 37 + y * 91) % 256, x * 2, y * 3}; };
    const QByteArray file = fixture.bytes();
    std::mt19937 random(5);
    int refused = 0;
    for (int count = 0; count < 256; ++count) {
        QByteArray damaged = file;
        damaged[static_cast<qsizetype>(8 + random() % static_cast<quint64>(file.size() - 8))] =
            static_cast<char>(random());
        try {
            const Raster raster = open(damaged)->full();
            EXPECT_EQ(test::pixelsOf(raster).size(), raster.storedHeight() * raster.rowBytes());
        } catch (const ImageError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0);
}

TEST_F(HeifImages, AreRefusedIfTheyAreNone) {
    const QByteArray brand("\0\0\0\x18"
                           "ftypheic\0\0\0\0heicmif1",
                           24);
    EXPECT_THROW((void)open(brand), ImageError);
    EXPECT_THROW((void)open(brand.first(12)), ImageError);
    EXPECT_THROW((void)open(brand + QByteArray(5000, 'x')), ImageError);
    QByteArray film = HeifFixture{}.bytes();
    film.replace(8, 4, "isom");
    film.replace("mif1", "isom");
    film.replace("heic", "isom");
    EXPECT_THROW((void)open(film), ImageError);
}

TEST_F(HeifImages, AreRefusedIfTheirSizeIsNotThatOfTheCodedPicture) {
    const QByteArray file = HeifFixture{}.bytes();
    const qsizetype size = file.indexOf("ispe") + 8;
    const auto announced = [&](quint32 width, quint32 height) {
        QByteArray patched = file;
        qToBigEndian(width, patched.data() + size);
        qToBigEndian(height, patched.data() + size + 4);
        return patched;
    };
    ASSERT_NO_THROW((void)decoded(announced(96, 64)));
    EXPECT_THROW((void)decoded(announced(97, 64)), ImageError);
    EXPECT_THROW((void)decoded(announced(96, 65)), ImageError);
    EXPECT_THROW((void)decoded(announced(64, 96)), ImageError);
    EXPECT_THROW((void)open(announced(0, 64)), ImageError);
    EXPECT_THROW((void)open(announced(30000, 30000)), ImageError);
    EXPECT_THROW((void)open(announced(0x7FFFFFFF, 0x7FFFFFFF)), ImageError);
    EXPECT_THROW((void)open(announced(0xFFFFFFFF, 0xFFFFFFFF)), ImageError);
}

TEST_F(HeifImages, AreRefusedIfTheFileHasChangedSinceItWasOpened) {
    const auto source = open(HeifFixture{}.bytes());
    HeifFixture other;
    other.width = 64;
    QFile written(folder_.path(QStringLiteral("picture.heic")));
    ASSERT_TRUE(written.open(QIODevice::ReadWrite));
    written.write(other.bytes());
    written.close();
    EXPECT_THROW((void)test::pixelsOf(source->full()), ImageError);
}

} // namespace orvex::platform
