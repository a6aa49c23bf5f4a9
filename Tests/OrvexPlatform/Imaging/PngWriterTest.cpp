#include "Imaging/PngWriter.h"

#include "PngFiles.h"

#include <random>

namespace orvex::platform {

namespace {

std::vector<std::byte> randomBytes(std::size_t count) {
    std::mt19937 random(11);
    std::vector<std::byte> bytes(count);
    std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random()); });
    return bytes;
}

QByteArray byteArray(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

} // namespace

class PngWriting : public PngFiles {};

TEST_F(PngWriting, KeepsTheSamplesOfEveryFormat) {
    for (const ColorModel model : {ColorModel::gray, ColorModel::rgb}) {
        for (const int bits : {8, 16}) {
            for (const bool hasAlpha : {false, true}) {
                const PixelFormat format{model, bits, false, hasAlpha};
                for (const auto& [width, height] : {std::pair(1, 1), std::pair(37, 21), std::pair(3, 900)}) {
                    const auto samples = randomBytes(static_cast<std::size_t>(width * height * format.bytesPerPixel()));
                    const QByteArray file = encodePng(width, height, format, samples);
                    EXPECT_EQ(test::decodedByLibpng(file), byteArray(samples));
                    const Raster raster = open(file)->full();
                    EXPECT_EQ(raster.format(), format);
                    EXPECT_EQ(test::pixelsOf(raster), byteArray(samples));
                }
            }
        }
    }
}

TEST_F(PngWriting, NotesTheDensityToTheNearestPixelPerMetre) {
    const std::vector<std::byte> samples(12);
    const auto dpi = [&](std::optional<double> density) {
        return open(encodePng(2, 2, {}, samples, density))->properties().dpiWidth;
    };
    EXPECT_EQ(dpi(300.0), 11811 * 0.0254);
    EXPECT_EQ(dpi(72.0), 2835 * 0.0254);
    EXPECT_EQ(dpi(0.0254), 0.0254);
    EXPECT_EQ(dpi(std::nullopt), std::nullopt);
    EXPECT_EQ(dpi(0.0), std::nullopt);
    EXPECT_EQ(dpi(-300.0), std::nullopt);
    EXPECT_EQ(dpi(1e300), std::nullopt);
    EXPECT_EQ(dpi(std::nan("")), std::nullopt);
}

TEST_F(PngWriting, GivesTheSameFileForTheSamePicture) {
    const auto samples = randomBytes(300);
    EXPECT_EQ(encodePng(10, 10, {}, samples), encodePng(10, 10, {}, samples));
}

TEST_F(PngWriting, RefusesWhatNoPngCanHold) {
    const std::vector<std::byte> samples(16);
    const auto refuses = [&](qint64 width, qint64 height, const PixelFormat& format) {
        EXPECT_THROW((void)encodePng(width, height, format, samples), ImageError);
    };
    refuses(2, 2, {ColorModel::cmyk, 8, false, false});
    refuses(2, 2, {ColorModel::gray, 32, false, false});
    refuses(2, 2, {ColorModel::gray, 32, true, false});
    refuses(2, 2, {ColorModel::rgb, 8, false, false}); // 12 bytes, not 16
    refuses(0, 16, {ColorModel::gray, 8, false, false});
    refuses(16, 0, {ColorModel::gray, 8, false, false});
    refuses(-4, -4, {ColorModel::gray, 8, false, false});
    refuses(qint64{1} << 32, qint64{1} << 32, {ColorModel::gray, 8, false, false});
}

} // namespace orvex::platform
