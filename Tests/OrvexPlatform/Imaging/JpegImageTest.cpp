#include "Color/IccProfile.h"
#include "ExifFixture.h"
#include "IccFixtures.h"
#include "Imaging/ImageError.h"
#include "JpegFiles.h"

namespace orvex::platform {

namespace {

namespace icc = test::icc;
using test::ExifFixture;
using test::JpegFixture;

QByteArray exifResolution(quint32 x, quint32 y, std::optional<quint32> unit, quint32 denominator = 1) {
    ExifFixture exif;
    exif.main = {ExifFixture::rational(ExifFixture::xResolution, x, denominator),
                 ExifFixture::rational(ExifFixture::yResolution, y, denominator)};
    if (unit) {
        exif.main.push_back(ExifFixture::number(ExifFixture::resolutionUnit, *unit));
    }
    return exif.bytes();
}

QByteArray exifColorSpace(quint32 value) {
    ExifFixture exif;
    exif.exif = {ExifFixture::number(ExifFixture::colorSpace, value)};
    return exif.bytes();
}

QByteArray copied(const EncodedStream& stream) {
    QByteArray bytes;
    stream.copy([&](std::span<const std::byte> piece) {
        bytes.append(reinterpret_cast<const char*>(piece.data()), static_cast<qsizetype>(piece.size()));
    });
    return bytes;
}

} // namespace

class JpegImages : public JpegFiles {};

TEST_F(JpegImages, StateTheirSizeAndOrientation) {
    for (quint32 orientation = 0; orientation <= 9; ++orientation) {
        SCOPED_TRACE(orientation);
        ExifFixture exif;
        exif.main = {ExifFixture::number(ExifFixture::orientation, orientation)};
        JpegFixture fixture{.width = 30, .height = 20};
        fixture.exif = exif.bytes();
        const auto source = open(fixture.bytes());
        const ImageProperties properties = source->properties();
        const int expected = orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
        EXPECT_EQ(properties.pixelWidth, 30);
        EXPECT_EQ(properties.pixelHeight, 20);
        EXPECT_EQ(properties.orientation, expected);
        EXPECT_EQ(source->full().orientation(), expected);
        EXPECT_EQ(source->full().width(), expected >= 5 ? 20 : 30);
    }
}

TEST_F(JpegImages, TakeTheFirstExifSegmentOnly) {
    const auto segmentOf = [](quint32 orientation) {
        ExifFixture exif;
        exif.main = {ExifFixture::number(ExifFixture::orientation, orientation)};
        return segment(0xE1, QByteArray("Exif\0\0", 6) + exif.bytes());
    };
    const QByteArray file = JpegFixture{.width = 30, .height = 20}.bytes();
    const QByteArray other = segment(0xE1, "http://ns.adobe.com/xap/1.0/");
    const QByteArray headers = other + "\xFF\xFF" + segmentOf(6) + segmentOf(3); // with two fill bytes
    EXPECT_EQ(open(QByteArray(file).insert(2, headers))->properties().orientation, 6);
}

TEST_F(JpegImages, StateTheirDensity) {
    struct Row {
        const char* name;
        std::optional<JpegFixture::Density> jfif;
        QByteArray exif;
        std::optional<double> width;
        std::optional<double> height;
    };

    const ExifFixture onlyWidth{.main = {ExifFixture::rational(ExifFixture::xResolution, 200)}};
    const std::vector<Row> rows{
        {"nothing", std::nullopt, {}, {}, {}},
        {"JFIF without a unit", {{0, 300, 300}}, {}, {}, {}},
        {"JFIF per inch", {{1, 300, 150}}, {}, 300.0, 150.0},
        {"JFIF per centimetre", {{2, 100, 50}}, {}, 254.0, 127.0},
        {"JFIF with an unknown unit", {{3, 300, 300}}, {}, {}, {}},
        {"JFIF of nothing per inch", {{1, 0, 300}}, {}, 0.0, 300.0},
        {"EXIF per inch", std::nullopt, exifResolution(240, 120, 2), 240.0, 120.0},
        {"EXIF before JFIF", {{1, 72, 72}}, exifResolution(2405, 1200, 2, 10), 240.5, 120.0},
        {"EXIF per centimetre", std::nullopt, exifResolution(100, 50, 3), 254.0, 127.0},
        {"EXIF without a unit tag", {{1, 72, 72}}, exifResolution(300, 300, std::nullopt), 300.0, 300.0},
        {"EXIF of no unit", std::nullopt, exifResolution(300, 300, 1), {}, {}},
        {"EXIF of no unit, JFIF per inch", {{1, 72, 71}}, exifResolution(300, 300, 1), 72.0, 71.0},
        {"EXIF over zero", {{1, 72, 72}}, exifResolution(300, 300, 2, 0), 72.0, 72.0},
        {"EXIF over zero alone", std::nullopt, exifResolution(300, 300, 2, 0), {}, {}},
        {"EXIF of zero", {{1, 72, 72}}, exifResolution(0, 0, 2), 0.0, 0.0},
        {"half an EXIF", {{0, 1, 1}}, onlyWidth.bytes(), 200.0, {}},
        {"half an EXIF, whole JFIF", {{1, 72, 72}}, onlyWidth.bytes(), 72.0, 72.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        JpegFixture fixture{.width = 8, .height = 8, .hasJfif = row.jfif.has_value()};
        fixture.density = row.jfif.value_or(JpegFixture::Density{});
        fixture.exif = row.exif;
        const ImageProperties properties = open(fixture.bytes())->properties();
        EXPECT_EQ(properties.dpiWidth, row.width);
        EXPECT_EQ(properties.dpiHeight, row.height);
    }
}

TEST_F(JpegImages, AreReducedAsFarAsTheTargetAllows) {
    struct Row {
        qint64 targetWidth;
        qint64 targetHeight;
        unsigned denominator;
    };

    JpegFixture fixture{.width = 203, .height = 101, .lumaSampling = 2};
    const QByteArray file = fixture.bytes();
    const auto source = open(file);
    const std::vector<Row> rows{{26, 13, 8}, {1, 1, 8},    {27, 13, 4},  {26, 14, 4},  {51, 26, 4},   {52, 26, 2},
                                {51, 27, 2}, {102, 51, 2}, {103, 51, 1}, {102, 52, 1}, {203, 101, 1}, {500, 500, 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.targetWidth << " x " << row.targetHeight);
        const Raster raster = source->reduced(row.targetWidth, row.targetHeight);
        EXPECT_EQ(raster.storedWidth(), (203 + row.denominator - 1) / row.denominator);
        EXPECT_EQ(raster.storedHeight(), (101 + row.denominator - 1) / row.denominator);
        EXPECT_EQ(test::pixelsOf(raster), JpegFixture::decoded(file, JCS_RGB, row.denominator));
    }
}

TEST_F(JpegImages, KeepTheirFactsWhenReduced) {
    ExifFixture exif;
    exif.main = {ExifFixture::number(ExifFixture::orientation, 6)};
    JpegFixture fixture{.width = 64, .height = 48, .pixelSpace = JCS_CMYK, .storedSpace = JCS_YCCK};
    fixture.exif = exif.bytes();
    fixture.profile = icc::saved(icc::cmyk());
    fixture.pixels = JpegFixture::flat(64, 48, {100, 100, 100, 30});
    const Raster raster = open(fixture.bytes())->reduced(8, 6);
    EXPECT_EQ(raster.orientation(), 6);
    EXPECT_EQ(raster.iccProfile(), fixture.profile);
    EXPECT_EQ(raster.format(), (PixelFormat{ColorModel::cmyk, 8, false, false}));
    EXPECT_EQ(test::pixelsOf(raster), JpegFixture::flat(8, 6, {155, 155, 155, 225}));
}

TEST_F(JpegImages, FindDamageWhenReduced) {
    for (const auto coding : {Coding::baseline, Coding::progressive}) {
        JpegFixture fixture{.width = 640, .height = 480, .coding = coding, .quality = 90};
        const QByteArray file = fixture.bytes();
        const auto source = open(file.first(file.size() * 9 / 10) + "\xFF\xD9");
        EXPECT_THROW((void)test::pixelsOf(source->reduced(80, 60)), ImageError);
    }
}

TEST_F(JpegImages, HaveTheProfileThatTheyEmbed) {
    struct Row {
        const char* name;
        J_COLOR_SPACE space;
        QByteArray profile;
        QByteArray exif;
        std::optional<QByteArray> applied;
    };

    const QByteArray rgb = icc::saved(icc::rgb(2.2));
    const QByteArray gray = icc::saved(icc::gray(2.2));
    const QByteArray cmyk = icc::saved(icc::cmyk());
    const std::vector<Row> rows{
        {"nothing", JCS_RGB, {}, {}, std::nullopt},
        {"RGB", JCS_RGB, rgb, {}, rgb},
        {"gray", JCS_GRAYSCALE, gray, {}, gray},
        {"CMYK", JCS_CMYK, cmyk, {}, cmyk},
        {"an RGB profile of a gray picture", JCS_GRAYSCALE, rgb, {}, std::nullopt},
        {"a gray profile of an RGB picture", JCS_RGB, gray, {}, std::nullopt},
        {"no profile at all", JCS_RGB, "nonsense", {}, std::nullopt},
        {"EXIF says sRGB", JCS_RGB, {}, exifColorSpace(1), sRgbProfileData()},
        {"EXIF says uncalibrated", JCS_RGB, {}, exifColorSpace(65535), std::nullopt},
        {"EXIF says sRGB of a gray picture", JCS_GRAYSCALE, {}, exifColorSpace(1), std::nullopt},
        {"EXIF says sRGB of a CMYK picture", JCS_CMYK, {}, exifColorSpace(1), std::nullopt},
        {"the profile before EXIF", JCS_RGB, rgb, exifColorSpace(1), rgb},
        {"a useless profile before EXIF", JCS_RGB, gray, exifColorSpace(1), std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        JpegFixture fixture{.width = 8, .height = 8, .pixelSpace = row.space};
        fixture.storedSpace = row.space == JCS_RGB ? JCS_YCbCr : row.space;
        fixture.profile = row.profile;
        fixture.exif = row.exif;
        EXPECT_EQ(open(fixture.bytes())->full().iccProfile(), row.applied);
    }
}

TEST_F(JpegImages, JoinAProfileOfSeveralSegments) {
    const QByteArray profile = icc::saved(icc::cmyk());
    const QByteArray file =
        JpegFixture{.width = 8, .height = 8, .pixelSpace = JCS_CMYK, .storedSpace = JCS_CMYK}.bytes();
    const qsizetype half = profile.size() / 2;
    const auto part = [&](char number, char count, const QByteArray& bytes) {
        return segment(0xE2, QByteArray("ICC_PROFILE\0", 12) + number + count + bytes);
    };
    const QByteArray first = part(1, 2, profile.first(half));
    const QByteArray second = part(2, 2, profile.sliced(half));
    const auto applied = [&](const QByteArray& segments) {
        return open(QByteArray(file).insert(2, segments))->full().iccProfile();
    };
    EXPECT_EQ(applied(first + second), profile);
    EXPECT_EQ(applied(second + first), profile) << "in any order";
    EXPECT_EQ(applied(first), std::nullopt) << "the second is missing";
    EXPECT_EQ(applied(first + second + second), std::nullopt) << "one comes twice";
    EXPECT_EQ(applied(first + part(2, 3, profile.sliced(half))), std::nullopt) << "they differ in their count";
}

TEST_F(JpegImages, OfferTheirStreamWhereAViewerShowsTheSame) {
    struct Row {
        const char* name;
        JpegFixture fixture;
        std::optional<int> transform; ///< absent: no stream
        ColorModel model = ColorModel::rgb;
        bool isInverted = false;
    };

    const auto make = [](J_COLOR_SPACE pixels, J_COLOR_SPACE stored, std::optional<bool> hasJfif = std::nullopt,
                         std::optional<bool> hasAdobe = std::nullopt, Coding coding = Coding::baseline) {
        JpegFixture fixture{.width = 24, .height = 16, .pixelSpace = pixels, .storedSpace = stored, .coding = coding};
        fixture.hasJfif = hasJfif;
        fixture.hasAdobe = hasAdobe;
        return fixture;
    };
    const std::vector<Row> rows{
        {"gray", make(JCS_GRAYSCALE, JCS_GRAYSCALE), 0, ColorModel::gray},
        {"gray, Adobe", make(JCS_GRAYSCALE, JCS_GRAYSCALE, true, true), 0, ColorModel::gray},
        {"YCbCr, JFIF", make(JCS_RGB, JCS_YCbCr), 1},
        {"YCbCr, Adobe", make(JCS_RGB, JCS_YCbCr, false, true), 1},
        {"YCbCr, both", make(JCS_RGB, JCS_YCbCr, true, true), 1},
        {"YCbCr, neither", make(JCS_RGB, JCS_YCbCr, false, false), 1},
        {"YCbCr, progressive", make(JCS_RGB, JCS_YCbCr, true, false, Coding::progressive), 1},
        {"YCbCr, arithmetic", make(JCS_RGB, JCS_YCbCr, true, false, Coding::arithmetic), std::nullopt},
        {"RGB, Adobe", make(JCS_RGB, JCS_RGB), 0},
        {"RGB by its component names", make(JCS_RGB, JCS_RGB, false, false), 0},
        {"JFIF, but Adobe says RGB", make(JCS_RGB, JCS_RGB, true, true), std::nullopt},
        {"CMYK", make(JCS_CMYK, JCS_CMYK, false, false), 0, ColorModel::cmyk, false},
        {"CMYK, Adobe", make(JCS_CMYK, JCS_CMYK), 0, ColorModel::cmyk, true},
        {"YCCK, Adobe", make(JCS_CMYK, JCS_YCCK), 1, ColorModel::cmyk, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray file = row.fixture.bytes();
        const auto stream = open(file)->encodedStream();
        ASSERT_EQ(stream.has_value(), row.transform.has_value());
        if (stream) {
            EXPECT_EQ(stream->filter, EncodedStream::Filter::dct);
            EXPECT_EQ(stream->width, 24);
            EXPECT_EQ(stream->height, 16);
            EXPECT_EQ(stream->bitsPerComponent, 8);
            EXPECT_EQ(stream->model, row.model);
            EXPECT_EQ(stream->isInverted, row.isInverted);
            EXPECT_EQ(stream->dctColorTransform, *row.transform);
            EXPECT_TRUE(stream->palette.isEmpty());
            EXPECT_EQ(copied(*stream), file);
        }
    }
}

TEST_F(JpegImages, OfferNoStreamUnderAnUnknownTransform) {
    JpegFixture fixture{.width = 24, .height = 16, .hasJfif = false, .hasAdobe = true};
    QByteArray file = fixture.bytes();
    const qsizetype adobe = segmentOffset(file, 0xEE);
    ASSERT_GT(adobe, 0);
    file[adobe + 15] = 2; // YCCK, of three components
    EXPECT_EQ(open(file)->encodedStream(), std::nullopt);
    EXPECT_EQ(decoded(file), JpegFixture::decoded(file, JCS_RGB));
}

TEST_F(JpegImages, CopyALargeStreamWhole) {
    JpegFixture fixture{.width = 1600, .height = 1200};
    const QByteArray file = fixture.bytes();
    ASSERT_GT(file.size(), 1 << 20);
    EXPECT_EQ(copied(*open(file)->encodedStream()), file);
}

TEST_F(JpegImages, RefuseToCopyAFileThatBecameShorter) {
    const QByteArray file = JpegFixture{.width = 80, .height = 60}.bytes();
    const auto stream = open(file)->encodedStream();
    (void)folder_.write(fileName, file.chopped(1));
    EXPECT_THROW((void)copied(*stream), ImageError);
}

} // namespace orvex::platform
