#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"
#include "Imaging/MemoryRaster.h"
#include "JpegFiles.h"
#include "PictureMaking.h"

namespace orvex::platform {

namespace {

/// A source in memory, reduced by whole factors of two on request.
class MemoryImage : public ImageSource {
public:
    MemoryImage(qint64 width, qint64 height, int orientation, PixelFormat format, QByteArray pixels)
        : width_(width),
          height_(height),
          orientation_(orientation),
          format_(format),
          pixels_(std::move(pixels)) {}

    [[nodiscard]] ImageProperties properties() const override { return {width_, height_, orientation_, {}, {}}; }

    [[nodiscard]] Raster full() const override {
        class Rows : public RowSource {
        public:
            explicit Rows(Raster raster) : raster_(std::move(raster)) {}

            void rows(const RowSink& sink) const override { raster_.rows(sink); }

        private:
            Raster raster_;
        };

        auto rows = std::make_shared<Rows>(memoryRaster(width_, height_, format_, std::nullopt, pixels_));
        return {width_, height_, orientation_, format_, QByteArray("profile"), std::move(rows)};
    }

private:
    qint64 width_;
    qint64 height_;
    int orientation_;
    PixelFormat format_;
    QByteArray pixels_;
};

/// Rows of a size that no memory holds.
class EndlessImage : public ImageSource {
public:
    explicit EndlessImage(qint64 height) : height_(height) {}

    [[nodiscard]] ImageProperties properties() const override { return {1, height_, 1, {}, {}}; }

    [[nodiscard]] Raster full() const override {
        class Rows : public RowSource {
        public:
            void rows(const RowSink& sink) const override {
                const std::vector<std::byte> bytes(256, std::byte{77});
                for (qint64 row = 0; row < 1'000'000; row += 250) {
                    sink({row, 250, std::span(bytes).first(250)});
                }
            }
        };

        return {1, height_, 1, {ColorModel::gray, 8, false, false}, std::nullopt, std::make_shared<Rows>()};
    }

private:
    qint64 height_;
};

const PixelFormat gray8{ColorModel::gray, 8, false, false};

QByteArray previewPixels(const ImageSource& image, qint64 maximum) {
    return test::pixelsOf(image.preview(maximum));
}

} // namespace

TEST(Preview, IsAsLongAsAskedForAndKeepsTheProportions) {
    struct Row {
        qint64 width;
        qint64 height;
        qint64 maximum;
        qint64 previewWidth;
        qint64 previewHeight;
    };

    const std::vector<Row> rows{{300, 200, 30, 30, 20},    {200, 300, 30, 20, 30}, {300, 200, 300, 300, 200},
                                {300, 200, 301, 300, 200}, {300, 200, 1, 1, 1},    {301, 200, 30, 30, 20},
                                {300, 5, 30, 30, 1},       {300, 4, 30, 30, 1},    {300, 15, 30, 30, 2},
                                {300, 14, 30, 30, 1},      {1, 1, 2400, 1, 1},     {6000, 1, 2400, 2400, 1},
                                {1, 6000, 2400, 1, 2400}};
    for (const Row& row : rows) {
        for (const int orientation : {1, 3, 6}) {
            SCOPED_TRACE(testing::Message() << row.width << " x " << row.height << " / " << orientation);
            const MemoryImage image(row.width, row.height, orientation, gray8,
                                    QByteArray(row.width * row.height, '\x21'));
            const Raster preview = image.preview(row.maximum);
            EXPECT_EQ(preview.width(), orientation == 6 ? row.previewHeight : row.previewWidth);
            EXPECT_EQ(preview.height(), orientation == 6 ? row.previewWidth : row.previewHeight);
            EXPECT_EQ(preview.orientation(), 1);
            EXPECT_EQ(test::pixelsOf(preview), QByteArray(row.previewWidth * row.previewHeight, '\x21'));
        }
    }
}

TEST(Preview, TellsOfTheStoredRowsOfTheSource) {
    std::vector<std::pair<qint64, qint64>> told;
    const auto progress = [&](qint64 done, qint64 count) { told.emplace_back(done, count); };
    const MemoryImage image(10, 300, 6, gray8, QByteArray(3000, '\x21'));
    (void)image.preview(30, progress);
    EXPECT_EQ(told, (std::vector<std::pair<qint64, qint64>>{{0, 300}, {256, 300}, {300, 300}}));
}

TEST(Preview, StandsUpright) {
    // Three by two: ABC over DEF, as it is stored.
    const std::vector<std::pair<int, QByteArray>> rows{{1, "ABCDEF"}, {2, "CBAFED"}, {3, "FEDCBA"}, {4, "DEFABC"},
                                                       {5, "ADBECF"}, {6, "DAEBFC"}, {7, "FCEBDA"}, {8, "CFBEAD"}};
    for (const auto& [orientation, expected] : rows) {
        SCOPED_TRACE(orientation);
        const MemoryImage image(3, 2, orientation, gray8, "ABCDEF");
        EXPECT_EQ(image.preview(10).width(), orientation >= 5 ? 2 : 3);
        EXPECT_EQ(previewPixels(image, 10), expected);
    }
}

TEST(Preview, StandsUprightWhenReduced) {
    const std::vector<std::pair<int, QByteArray>> rows{{1, "ABCDEF"}, {2, "CBAFED"}, {3, "FEDCBA"}, {4, "DEFABC"},
                                                       {5, "ADBECF"}, {6, "DAEBFC"}, {7, "FCEBDA"}, {8, "CFBEAD"}};
    QByteArray large;
    for (const QByteArray& line : {QByteArray("ABC"), QByteArray("DEF")}) {
        QByteArray wide;
        for (const char letter : line) {
            wide += QByteArray(40, letter);
        }
        large += wide.repeated(40);
    }
    for (const auto& [orientation, expected] : rows) {
        const MemoryImage image(120, 80, orientation, gray8, large);
        EXPECT_EQ(previewPixels(image, 3), expected) << orientation;
    }
}

TEST(Preview, KeepsTheFormatAndTheSamplesOfASmallPicture) {
    for (const SampleType type : sampleTypes()) {
        for (const ColorModel model : {ColorModel::gray, ColorModel::rgb, ColorModel::cmyk}) {
            for (const bool hasAlpha : {false, true}) {
                const PixelFormat format{model, type.bits, type.isFloat, hasAlpha};
                const QByteArray pixels = noise(type, qint64{50} * 30 * format.samplesPerPixel());
                const Raster preview = MemoryImage(50, 30, 1, format, pixels).preview(2400);
                EXPECT_EQ(preview.format(), format);
                EXPECT_EQ(preview.iccProfile(), QByteArray("profile"));
                EXPECT_TRUE(test::pixelsOf(preview) == pixels);
            }
        }
    }
}

TEST(Preview, KeepsTheFormatOfALargePicture) {
    for (const SampleType type : sampleTypes()) {
        const PixelFormat format{ColorModel::rgb, type.bits, type.isFloat, true};
        const Raster preview = MemoryImage(60, 40, 6, format, noise(type, 60 * 40 * 4)).preview(30);
        EXPECT_EQ(preview.format(), format);
        EXPECT_EQ(preview.iccProfile(), QByteArray("profile"));
        EXPECT_EQ(preview.width(), 20);
        EXPECT_EQ(preview.height(), 30);
    }
}

TEST(Preview, WeighsColoursByAlpha) {
    const PixelFormat rgba{ColorModel::rgb, 8, false, true};
    const QByteArray pair = QByteArray::fromHex("C8641EFF"
                                                "00000000");
    EXPECT_EQ(previewPixels(MemoryImage(4, 2, 1, rgba, pair.repeated(4)), 2), QByteArray::fromHex("C8641E80C8641E80"));
}

TEST(Preview, MakesAPixelOfAThinPicture) {
    QByteArray pixels;
    for (int x = 0; x < 60000; ++x) {
        pixels += static_cast<char>(x / 25 % 256);
    }
    QByteArray expected;
    for (int x = 0; x < 2400; ++x) {
        expected += static_cast<char>(x % 256);
    }
    EXPECT_EQ(previewPixels(MemoryImage(60000, 1, 1, gray8, pixels), 2400), expected);
    EXPECT_EQ(previewPixels(MemoryImage(1, 60000, 1, gray8, pixels), 2400), expected);
}

TEST(Preview, HoldsNoMoreOfAnEndlessPictureThanAStrip) {
    const Raster preview = EndlessImage(1'000'000).preview(2400);
    EXPECT_EQ(test::pixelsOf(preview), QByteArray(2400, '\x4D'));
}

class JpegPreview : public JpegFiles {};

TEST_F(JpegPreview, IsMadeFromTheReducedPicture) {
    JpegFixture fixture{.width = 640, .height = 480, .lumaSampling = 2};
    const QByteArray file = fixture.bytes();
    EXPECT_EQ(previewPixels(*open(file), 80), JpegFixture::decoded(file, JCS_RGB, 8));
    EXPECT_EQ(previewPixels(*open(file), 160), JpegFixture::decoded(file, JCS_RGB, 4));
    EXPECT_EQ(previewPixels(*open(file), 320), JpegFixture::decoded(file, JCS_RGB, 2));
    EXPECT_EQ(previewPixels(*open(file), 640), JpegFixture::decoded(file, JCS_RGB));
}

TEST_F(JpegPreview, FailsForDamageAnywhere) {
    JpegFixture fixture{.width = 640, .height = 480, .quality = 90};
    const QByteArray file = fixture.bytes();
    EXPECT_THROW((void)open(file.chopped(2))->preview(80), ImageError);
    EXPECT_THROW((void)open(file.chopped(50) + "\xFF\xD9")->preview(80), ImageError);
}

} // namespace orvex::platform
