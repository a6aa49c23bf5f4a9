#include "PDF/FlateRows.h"

#include "Imaging/MemoryRaster.h"
#include "Interrupted.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <limits>
#include <thread>

namespace orvex::platform {
namespace {

QByteArray flate(const Raster& raster, Samples samples) {
    QByteArray stream;
    flateRows(raster, samples, [&](QByteArrayView bytes) { stream.append(bytes); }, {});
    return stream;
}

/// zlib itself undoes the stream, checksum included.
QByteArray inflated(const QByteArray& stream, qsizetype plainBytes) {
    QByteArray plain(plainBytes + 1, '\0');
    uLongf length = static_cast<uLongf>(plain.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(plain.data()), &length,
                         reinterpret_cast<const Bytef*>(stream.constData()), static_cast<uLong>(stream.size())),
              Z_OK);
    plain.truncate(static_cast<qsizetype>(length));
    return plain;
}

/// Undoes the PNG filters None, Sub and Up in a plain way.
QByteArray unpredicted(const QByteArray& plain, qsizetype rowBytes, qsizetype pixelBytes) {
    QByteArray rows;
    QByteArray above(rowBytes, '\0');
    for (qsizetype at = 0; at < plain.size(); at += rowBytes + 1) {
        QByteArray row = plain.mid(at + 1, rowBytes);
        const char filter = plain[at];
        EXPECT_TRUE(filter == 1 || filter == 2);
        for (qsizetype i = 0; i < rowBytes; ++i) {
            const char reference = filter == 2 ? above[i] : i >= pixelBytes ? row[i - pixelBytes] : '\0';
            row[i] = static_cast<char>(static_cast<unsigned char>(row[i]) + static_cast<unsigned char>(reference));
        }
        rows += row;
        above = row;
    }
    return rows;
}

QByteArray picture(qsizetype bytes) {
    QByteArray picture(bytes, '\0');
    quint32 state = 1;
    for (qsizetype i = 0; i < bytes; ++i) {
        state = state * 1664525U + 1013904223U;
        picture[i] = static_cast<char>((i / 7 + (state >> 28U)) & 0xff);
    }
    return picture;
}

template <typename Sample>
QByteArray samplesOf(std::initializer_list<Sample> samples) {
    QByteArray bytes;
    for (const Sample sample : samples) {
        bytes.append(reinterpret_cast<const char*>(&sample), sizeof(sample));
    }
    return bytes;
}

TEST(FlateRows, givesBackEveryByteOfAnEightBitPicture) {
    constexpr PixelFormat rgb{.model = ColorModel::rgb};
    const QByteArray pixels = picture(300 * 700 * 3);
    const QByteArray stream = flate(memoryRaster(300, 700, rgb, {}, pixels), Samples::colours);
    EXPECT_EQ(unpredicted(inflated(stream, 700 * 901), 900, 3), pixels);
    EXPECT_LT(stream.size(), pixels.size());
}

TEST(FlateRows, turnsSixteenBitSamplesRoundToBigEndian) {
    constexpr PixelFormat gray{.model = ColorModel::gray, .bitsPerComponent = 16};
    const QByteArray pixels = samplesOf<quint16>({0x0102, 0xfffe});
    const QByteArray stream = flate(memoryRaster(2, 1, gray, {}, pixels), Samples::colours);
    EXPECT_EQ(unpredicted(inflated(stream, 5), 4, 2), QByteArray("\x01\x02\xff\xfe"));
}

TEST(FlateRows, splitsColoursAndAlpha) {
    constexpr PixelFormat rgba{.model = ColorModel::rgb, .hasAlpha = true};
    const Raster raster = memoryRaster(2, 1, rgba, {}, QByteArray("\1\2\3\4\5\6\7\x08"));
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::colours), 7), 6, 3), QByteArray("\1\2\3\5\6\7"));
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::alpha), 3), 2, 1), QByteArray("\4\x08"));
}

TEST(FlateRows, splitsSixteenBitAlphaToo) {
    constexpr PixelFormat grayAlpha{.model = ColorModel::gray, .bitsPerComponent = 16, .hasAlpha = true};
    const Raster raster = memoryRaster(1, 1, grayAlpha, {}, samplesOf<quint16>({0x1234, 0x5678}));
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::colours), 3), 2, 2), QByteArray("\x12\x34"));
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::alpha), 3), 2, 2), QByteArray("\x56\x78"));
}

TEST(FlateRows, roundsThirtyTwoBitsToTheSixteenOfPdf) {
    constexpr PixelFormat gray{.model = ColorModel::gray, .bitsPerComponent = 32};
    const Raster raster = memoryRaster(3, 1, gray, {}, samplesOf<quint32>({0, 0x80000000U, 0xffffffffU}));
    EXPECT_EQ(pdfBitsPerComponent(gray), 16);
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::colours), 7), 6, 2),
              QByteArray("\x00\x00\x80\x00\xff\xff", 6));
}

TEST(FlateRows, clampsFloatingPointSamples) {
    constexpr PixelFormat gray{.model = ColorModel::gray, .bitsPerComponent = 32, .isFloat = true};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const Raster raster = memoryRaster(6, 1, gray, {}, samplesOf<float>({-1.0F, nan, 0.5F, 1.0F, 7.0F, infinity}));
    EXPECT_EQ(unpredicted(inflated(flate(raster, Samples::colours), 13), 12, 2),
              QByteArray("\x00\x00\x00\x00\x80\x00\xff\xff\xff\xff\xff\xff", 12));
}

TEST(FlateRows, givesTheSameBytesEveryTime) {
    constexpr PixelFormat rgb{.model = ColorModel::rgb};
    const Raster raster = memoryRaster(2000, 3000, rgb, {}, picture(2000 * 3000 * 3));
    const QByteArray first = flate(raster, Samples::colours);
    for (int run = 0; run < 5; ++run) {
        EXPECT_EQ(flate(raster, Samples::colours), first);
    }
}

TEST(FlateRows, raisesWhatItsOutputRaises) {
    constexpr PixelFormat rgb{.model = ColorModel::rgb};
    const Raster raster = memoryRaster(2000, 3000, rgb, {}, picture(2000 * 3000 * 3));
    int pieces = 0;
    const auto failing = [&](QByteArrayView) {
        if (++pieces == 2) {
            throw std::runtime_error("disk full");
        }
    };
    EXPECT_THROW(flateRows(raster, Samples::colours, failing, {}), std::runtime_error);
}

TEST(FlateRows, tellsOfTheRowsThatAreInTheStream) {
    constexpr PixelFormat rgb{.model = ColorModel::rgb};
    const Raster raster = memoryRaster(2000, 600, rgb, {}, picture(2000 * 600 * 3)); // strips of 256 rows
    const auto caller = std::this_thread::get_id();
    std::vector<std::pair<qint64, qint64>> told;
    flateRows(
        raster, Samples::colours, [](QByteArrayView) {}, {},
        [&](qint64 done, qint64 count) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            told.emplace_back(done, count);
        });
    EXPECT_EQ(told, (std::vector<std::pair<qint64, qint64>>{{0, 600}, {256, 600}, {512, 600}, {600, 600}}));
}

TEST(FlateRows, endsWhenAskedToStop) {
    constexpr PixelFormat rgb{.model = ColorModel::rgb};
    const Raster raster = memoryRaster(10, 10, rgb, {}, picture(300));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(flateRows(
                     raster, Samples::colours, [](QByteArrayView) {}, stop.get_token()),
                 Interrupted);
}

} // namespace
} // namespace orvex::platform
