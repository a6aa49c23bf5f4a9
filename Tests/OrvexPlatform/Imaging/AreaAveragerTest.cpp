#include "Imaging/AreaAverager.h"

#include "Imaging/MemoryRaster.h"
#include "PictureMaking.h"

#include <gtest/gtest.h>

namespace orvex::platform {

namespace {

using Size = AreaAverager::Size;

QByteArray averaged(const PixelFormat& format, Size source, Size target, const QByteArray& pixels) {
    QByteArray result;
    qint64 nextRow = 0;
    const auto averager =
        AreaAverager::make(format, source, target, [&](qint64 row, std::span<const std::byte> rowPixels) {
            EXPECT_EQ(row, nextRow++);
            result.append(reinterpret_cast<const char*>(rowPixels.data()), static_cast<qsizetype>(rowPixels.size()));
        });
    memoryRaster(source.width, source.height, format, std::nullopt, pixels).rows([&](const RowStrip& strip) {
        averager->add(strip);
    });
    EXPECT_EQ(nextRow, target.height);
    EXPECT_EQ(result.size(), target.width * target.height * format.bytesPerPixel());
    return result;
}

/// How much of source pixel `source` target pixel `target` covers along a side.
double overlap(qint64 target, qint64 source, double scale) {
    const double begin = std::max(static_cast<double>(target) * scale, static_cast<double>(source));
    const double end = std::min(static_cast<double>(target + 1) * scale, static_cast<double>(source + 1));
    return std::max(end - begin, 0.0);
}

/// One sample of the mean, straight from its definition.
double expectedSample(const PixelFormat& format, SampleType type, Size source, Size target, const QByteArray& pixels,
                      qint64 x, qint64 y, int index) {
    const int samples = format.samplesPerPixel();
    const double scaleX = static_cast<double>(source.width) / static_cast<double>(target.width);
    const double scaleY = static_cast<double>(source.height) / static_cast<double>(target.height);
    const bool isColor = format.hasAlpha && index < samples - 1;
    double sum = 0;
    double weights = 0;
    for (qint64 row = 0; row < source.height; ++row) {
        for (qint64 column = 0; column < source.width; ++column) {
            const qint64 pixel = (row * source.width + column) * samples;
            const double area = overlap(x, column, scaleX) * overlap(y, row, scaleY);
            const double weight = isColor ? area * type.read(pixels, pixel + samples - 1) : area;
            sum += weight * type.read(pixels, pixel + index);
            weights += weight;
        }
    }
    return weights > 0 ? sum / weights : 0.0;
}

} // namespace

TEST(AreaAverager, GivesTheMeanOfTheCoveredArea) {
    const std::vector<std::pair<Size, Size>> sizes{{{7, 5}, {3, 2}},  {{12, 9}, {4, 3}}, {{10, 10}, {9, 7}},
                                                   {{31, 1}, {5, 1}}, {{1, 31}, {1, 4}}, {{40, 23}, {1, 1}}};
    for (const SampleType type : sampleTypes()) {
        for (const ColorModel model : {ColorModel::gray, ColorModel::rgb, ColorModel::cmyk}) {
            for (const bool hasAlpha : {false, true}) {
                const PixelFormat format{model, type.bits, type.isFloat, hasAlpha};
                const int samples = format.samplesPerPixel();
                for (const auto& [source, target] : sizes) {
                    SCOPED_TRACE(testing::Message() << type.bits << " bits, float " << type.isFloat << ", " << samples
                                                    << " samples, " << source.width << " x " << source.height << " to "
                                                    << target.width << " x " << target.height);
                    const QByteArray pixels = noise(type, source.width * source.height * samples);
                    const QByteArray result = averaged(format, source, target, pixels);
                    const double tolerance = type.isFloat ? 1e-7 : 0.52; // rounding to a whole sample, and a little
                    for (qint64 index = 0; index < target.width * target.height * samples; ++index) {
                        const qint64 pixel = index / samples;
                        ASSERT_NEAR(type.read(result, index),
                                    expectedSample(format, type, source, target, pixels, pixel % target.width,
                                                   pixel / target.width, static_cast<int>(index % samples)),
                                    tolerance)
                            << index;
                    }
                }
            }
        }
    }
}

TEST(AreaAverager, KeepsAFlatColourExactly) {
    const Size source{997, 631};
    const Size target{241, 153};
    for (const SampleType type : sampleTypes()) {
        for (const double part : {0.0, 0.1, 0.5, 0.77, 1.0}) {
            QByteArray pixel;
            for (int index = 0; index < 4; ++index) {
                const double value = type.largest() * part;
                type.write(pixel, type.isFloat ? value : std::round(value));
            }
            SCOPED_TRACE(testing::Message() << type.bits << " " << type.isFloat << " " << part);
            const PixelFormat format{ColorModel::cmyk, type.bits, type.isFloat, false};
            const QByteArray result = averaged(format, source, target, pixel.repeated(source.width * source.height));
            EXPECT_TRUE(result == pixel.repeated(target.width * target.height));
        }
    }
}

TEST(AreaAverager, RoundsToTheNearestSample) {
    const PixelFormat gray{ColorModel::gray, 8, false, false};
    const auto mean = [&](const QByteArray& pixels) {
        return static_cast<int>(static_cast<quint8>(averaged(gray, {pixels.size(), 1}, {1, 1}, pixels)[0]));
    };
    EXPECT_EQ(mean(QByteArray("\x00\x01\x01\x01", 4)), 1);
    EXPECT_EQ(mean(QByteArray("\x00\x00\x00\x01", 4)), 0);
    EXPECT_EQ(mean(QByteArray("\x00\x00\x01\x01", 4)), 1);
    EXPECT_EQ(mean(QByteArray("\xFF\xFF\xFF\xFE", 4)), 255);
}

TEST(AreaAverager, LetsTransparentPixelsColourNothing) {
    const PixelFormat rgba{ColorModel::rgb, 8, false, true};
    const auto mean = [&](const QByteArray& pixels) {
        return averaged(rgba, {pixels.size() / 4, 1}, {1, 1}, QByteArray::fromHex(pixels.toHex()));
    };
    EXPECT_EQ(mean(QByteArray::fromHex("C8641EFF"
                                       "00000000")),
              QByteArray::fromHex("C8641E80"));
    EXPECT_EQ(mean(QByteArray::fromHex("FF0000FF"
                                       "0000FF55")), // opaque red, a third of blue
              QByteArray::fromHex("BF0040AA"));
    EXPECT_EQ(mean(QByteArray::fromHex("FFFFFF00"
                                       "12345600")),
              QByteArray::fromHex("00000000"));
}

TEST(AreaAverager, CopesWithHugeReductions) {
    const PixelFormat gray{ColorModel::gray, 16, false, false};
    const SampleType type{16};
    for (const Size source : {Size{3'000'000, 1}, Size{1, 3'000'000}}) {
        QByteArray half;
        type.write(half, 65535);
        type.write(half, 1001);
        const QByteArray result = averaged(gray, source, {1, 1}, half.repeated(1'500'000));
        EXPECT_EQ(type.read(result, 0), 33268.0);
    }
}

} // namespace orvex::platform
