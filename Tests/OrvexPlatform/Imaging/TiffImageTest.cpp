// Pictures written by libtiff and read back sample by sample, over all that decides how samples are stored.

#include "Imaging/ImageError.h"
#include "Imaging/ImageSource.h"
#include "TemporaryFolder.h"
#include "TiffFixtures.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <bit>
#include <cmath>
#include <cstring>

namespace orvex::platform {

namespace {

using test::allRows;
using test::SampleValues;
using test::scattered;
using test::smooth;
using test::TemporaryFolder;
using test::TiffForm;
using test::writeTiff;

std::unique_ptr<ImageSource> written(const TemporaryFolder& folder, const TiffForm& form, const SampleValues& values) {
    const QString path = folder.path(QStringLiteral("picture.tif"));
    writeTiff(path, form, values);
    return ImageSource::open(path);
}

template <typename Number>
void append(QByteArray& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

/// `value` on the whole range of `toBits`, to the nearest integer.
quint64 scaled(quint64 value, int bits, int toBits) {
    const long double range = std::ldexp(1.0L, bits) - 1;
    return static_cast<quint64>(std::llround(static_cast<long double>(value) * (std::ldexp(1.0L, toBits) - 1) / range));
}

int depthFor(int bits) {
    return bits <= 8 ? 8 : bits <= 16 ? 16 : 32;
}

void appendInteger(QByteArray& bytes, quint64 value, int depth) {
    bytes.append(reinterpret_cast<const char*>(&value), depth / 8);
}

/// The raster of an integer picture without alpha: every sample widened, and inverted where 0 is white.
QByteArray widenedRaster(const TiffForm& form, const SampleValues& values) {
    const int depth = depthFor(form.bits);
    const quint64 largest = ~quint64{0} >> (64 - depth);
    QByteArray bytes;
    for (const quint64 value : values) {
        const quint64 wide = scaled(value, form.bits, depth);
        appendInteger(bytes, form.photometric == PHOTOMETRIC_MINISWHITE ? largest - wide : wide, depth);
    }
    return bytes;
}

struct Depth {
    const char* name;
    quint16 bits;
};

struct Colors {
    const char* name;
    quint16 photometric;
    quint16 samples;
    ColorModel model;
};

constexpr std::array allColors = {
    Colors{"WhiteIsZero", PHOTOMETRIC_MINISWHITE, 1, ColorModel::gray},
    Colors{"BlackIsZero", PHOTOMETRIC_MINISBLACK, 1, ColorModel::gray},
    Colors{"Rgb", PHOTOMETRIC_RGB, 3, ColorModel::rgb},
    Colors{"Cmyk", PHOTOMETRIC_SEPARATED, 4, ColorModel::cmyk},
};

constexpr std::array allDepths = {
    Depth{"1Bit", 1},    Depth{"2Bits", 2},   Depth{"3Bits", 3},   Depth{"4Bits", 4},   Depth{"7Bits", 7},
    Depth{"8Bits", 8},   Depth{"10Bits", 10}, Depth{"12Bits", 12}, Depth{"15Bits", 15}, Depth{"16Bits", 16},
    Depth{"17Bits", 17}, Depth{"24Bits", 24}, Depth{"31Bits", 31}, Depth{"32Bits", 32},
};

/// The ways of storing the same samples without loss. The slow methods have their own share of the combinations.
std::vector<std::pair<std::string, TiffForm>> arrangements(TiffForm form) {
    std::vector<std::pair<std::string, TiffForm>> all;
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW, COMPRESSION_DEFLATE,
                                  COMPRESSION_ADOBE_DEFLATE, COMPRESSION_LZMA, COMPRESSION_ZSTD}) {
        const bool isSlow = compression == COMPRESSION_LZMA || compression == COMPRESSION_ZSTD;
        for (int shape = 0; shape < 24; shape += isSlow ? 7 : 1) {
            form.compression = static_cast<quint16>(compression);
            form.isSeparate = shape % 2 == 1;
            form.tileSize = shape / 2 % 3 == 2 ? 16 : 0;
            form.rowsPerStrip = shape / 2 % 3 == 1 ? form.height : 7;
            form.isBigEndian = shape / 6 % 2 == 1;
            form.isBig = shape / 12 == 1;
            std::string name = "compression " + std::to_string(compression);
            name += form.isSeparate ? ", separate" : ", contiguous";
            name += form.tileSize != 0 ? ", tiles" : form.rowsPerStrip == 7 ? ", strips" : ", one strip";
            name += form.isBigEndian ? ", big-endian" : ", little-endian";
            name += form.isBig ? ", BigTIFF" : "";
            all.emplace_back(name, form);
        }
    }
    return all;
}

class TiffLossless : public ::testing::TestWithParam<std::tuple<Colors, Depth>> {};

} // namespace

TEST_P(TiffLossless, EverySampleComesBack) {
    const auto& [colors, depth] = GetParam();
    TiffForm base;
    base.photometric = colors.photometric;
    base.samples = colors.samples;
    base.bits = depth.bits;
    const SampleValues values = scattered(base.sampleCount(), base.bits);
    const QByteArray expected = widenedRaster(base, values);
    const TemporaryFolder folder;
    for (const auto& [name, form] : arrangements(base)) {
        SCOPED_TRACE(name);
        const auto source = written(folder, form, values);
        const Raster raster = source->full();
        EXPECT_EQ(raster.storedWidth(), form.width);
        EXPECT_EQ(raster.storedHeight(), form.height);
        EXPECT_EQ(raster.format(), (PixelFormat{colors.model, depthFor(depth.bits), false, false}));
        ASSERT_TRUE(allRows(raster) == expected);
        EXPECT_FALSE(source->encodedStream());
    }
}

INSTANTIATE_TEST_SUITE_P(Of, TiffLossless,
                         ::testing::Combine(::testing::ValuesIn(allColors), ::testing::ValuesIn(allDepths)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) + std::get<1>(row.param).name;
                         });

namespace {

struct FloatCase {
    quint64 bits;
    float value;
};

struct FloatKind {
    const char* name;
    quint16 bits;
    std::vector<FloatCase> cases;
};

constexpr float infinity = std::numeric_limits<float>::infinity();

/// Numbers of each width and what they are, by their definition.
const std::vector<FloatKind>& floatKinds() {
    static const std::vector<FloatKind> kinds = {
        {"16Bits",
         16,
         {{0x0000, 0.0F},
          {0x8000, -0.0F},
          {0x3C00, 1.0F},
          {0x3800, 0.5F},
          {0xC000, -2.0F},
          {0x3555, 1365.0F / 4096},
          {0x7BFF, 65504.0F},
          {0x0400, 0x1p-14F},
          {0x0001, 0x1p-24F},
          {0x83FF, -0x3FFp-24F},
          {0x7C00, infinity},
          {0xFC00, -infinity}}},
        {"24Bits",
         24,
         {{0x000000, 0.0F},
          {0x800000, -0.0F},
          {0x3F0000, 1.0F},
          {0x3E0000, 0.5F},
          {0xC00000, -2.0F},
          {0x3F8000, 1.5F},
          {0x3F0001, 1.0F + 0x1p-16F},
          {0x7EFFFF, 0x1FFFFp47F},
          {0x010000, 0x1p-62F},
          {0x000001, 0x1p-78F},
          {0x7F0000, infinity},
          {0xFF0000, -infinity}}},
        {"32Bits",
         32,
         {{0x00000000, 0.0F},
          {0x3F800000, 1.0F},
          {0x3E800000, 0.25F},
          {0xBF800000, -1.0F},
          {0x3F800001, 0x1.000002p0F}}},
        {"64Bits",
         64,
         {{0x0000000000000000, 0.0F},
          {0x3FF0000000000000, 1.0F},
          {0x3FE0000000000000, 0.5F},
          {0x3FB999999999999A, 0.1F},
          {0xBFF0000000000000, -1.0F}}},
    };
    return kinds;
}

class TiffFloat : public ::testing::TestWithParam<FloatKind> {};

} // namespace

TEST_P(TiffFloat, SamplesBecome32BitFloats) {
    const FloatKind& kind = GetParam();
    for (const Colors& colors : allColors) {
        TiffForm base;
        base.photometric = colors.photometric;
        base.samples = colors.samples;
        base.sampleFormat = SAMPLEFORMAT_IEEEFP;
        base.bits = kind.bits;
        SampleValues values;
        QByteArray expected;
        for (std::size_t index = 0; index < base.sampleCount(); ++index) {
            const FloatCase& each = kind.cases[index * 7 % kind.cases.size()];
            values.push_back(each.bits);
            append(expected, colors.photometric == PHOTOMETRIC_MINISWHITE ? 1 - each.value : each.value);
        }
        const TemporaryFolder folder;
        for (const auto& [name, form] : arrangements(base)) {
            SCOPED_TRACE(std::string(colors.name) + ", " + name);
            const Raster raster = written(folder, form, values)->full();
            EXPECT_EQ(raster.format(), (PixelFormat{colors.model, 32, true, false}));
            ASSERT_TRUE(allRows(raster) == expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, TiffFloat, ::testing::ValuesIn(floatKinds()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TiffImage, UndoesThePredictors) {
    struct Row {
        quint16 predictor;
        quint16 bits;
        quint16 sampleFormat;
    };

    const TemporaryFolder folder;
    for (const Row& row :
         {Row{2, 8, 1}, Row{2, 16, 1}, Row{2, 32, 1}, Row{3, 16, 3}, Row{3, 24, 3}, Row{3, 32, 3}, Row{3, 64, 3}}) {
        TiffForm base;
        base.bits = row.bits;
        base.sampleFormat = row.sampleFormat;
        SampleValues values = scattered(base.sampleCount(), row.bits);
        if (row.sampleFormat == SAMPLEFORMAT_IEEEFP) { // numbers between 1 and 2
            const quint64 one = row.bits == 16   ? 0x3C00
                                : row.bits == 24 ? 0x3F0000
                                : row.bits == 32 ? 0x3F800000
                                                 : 0x3FF0000000000000;
            const int mantissa = row.bits == 16 ? 10 : row.bits == 24 ? 16 : row.bits == 32 ? 23 : 52;
            std::ranges::transform(values, values.begin(),
                                   [&](quint64 value) { return one | (value & ((quint64{1} << mantissa) - 1)); });
        }
        const QByteArray expected = allRows(written(folder, base, values)->full());
        for (auto [name, form] : arrangements(base)) {
            if (form.compression != COMPRESSION_NONE && form.compression != COMPRESSION_PACKBITS) {
                SCOPED_TRACE(name + ", predictor " + std::to_string(row.predictor) + ", bits " +
                             std::to_string(row.bits));
                form.predictor = row.predictor;
                ASSERT_TRUE(allRows(written(folder, form, values)->full()) == expected);
            }
        }
    }
}

TEST(TiffImage, ReadsReversedBits) {
    const TemporaryFolder folder;
    for (const int bits : {1, 4, 8, 12, 16}) {
        TiffForm base;
        base.bits = static_cast<quint16>(bits);
        base.fillOrder = FILLORDER_LSB2MSB;
        const SampleValues values = scattered(base.sampleCount(), bits);
        const QByteArray expected = widenedRaster(base, values);
        for (const auto& [name, form] : arrangements(base)) {
            SCOPED_TRACE(name + ", bits " + std::to_string(bits));
            ASSERT_TRUE(allRows(written(folder, form, values)->full()) == expected);
        }
    }
}

TEST(TiffImage, ReadsTheFaxMethods) {
    struct Row {
        quint16 compression;
        quint32 options;
    };

    const TemporaryFolder folder;
    for (const Row& row :
         {Row{COMPRESSION_CCITTRLE, 0}, Row{COMPRESSION_CCITTFAX3, 0}, Row{COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING},
          Row{COMPRESSION_CCITTFAX3, GROUP3OPT_FILLBITS}, Row{COMPRESSION_CCITTFAX4, 0}}) {
        for (int shape = 0; shape < 24; ++shape) {
            TiffForm form;
            form.bits = 1;
            form.samples = 1;
            form.photometric = shape % 2 == 0 ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
            form.fillOrder = shape / 2 % 2 == 0 ? FILLORDER_MSB2LSB : FILLORDER_LSB2MSB;
            form.tileSize = shape / 4 % 3 == 2 ? 32 : 0;
            form.rowsPerStrip = shape / 4 % 3 == 1 ? form.height : 7;
            form.isBigEndian = shape >= 12;
            form.compression = row.compression;
            form.group3Options = row.options;
            SCOPED_TRACE("compression " + std::to_string(row.compression) + ", options " + std::to_string(row.options) +
                         ", shape " + std::to_string(shape));
            const SampleValues values = scattered(form.sampleCount(), 1);
            ASSERT_TRUE(allRows(written(folder, form, values)->full()) == widenedRaster(form, values));
        }
    }
}

TEST(TiffImage, ReadsWebPWithoutLoss) {
    const TemporaryFolder folder;
    for (int shape = 0; shape < 6; ++shape) {
        TiffForm form;
        form.samples = shape % 2 == 0 ? 3 : 4;
        form.extraSamples = shape % 2 == 0 ? std::vector<quint16>{} : std::vector<quint16>{EXTRASAMPLE_UNASSALPHA};
        form.tileSize = shape / 2 == 2 ? 16 : 0;
        form.rowsPerStrip = shape / 2 == 1 ? form.height : 7;
        form.compression = COMPRESSION_WEBP;
        SCOPED_TRACE("shape " + std::to_string(shape));
        SampleValues values = scattered(form.sampleCount(), 8);
        if (form.samples == 4) { // the method gives up the colours of what cannot be seen
            for (std::size_t alpha = 3; alpha < values.size(); alpha += 4) {
                values[alpha] = values[alpha] % 255 + 1;
            }
        }
        const Raster raster = written(folder, form, values)->full();
        EXPECT_EQ(raster.format().hasAlpha, form.samples == 4);
        ASSERT_TRUE(allRows(raster) == widenedRaster(form, values));
    }
}

TEST(TiffImage, ReadsAWebPStripOfFarMorePixelsThanTheFileHasBytes) {
    const TemporaryFolder folder;
    const QString path = folder.path(QStringLiteral("picture.tif"));
    constexpr quint32 side = 5000;
    QByteArray pixels; // 75 MB; the file has some kilobytes
    for (quint32 row = 0; row < side; ++row) {
        pixels += QByteArray(qsizetype{side} * 3, static_cast<char>(row * row % 251));
    }
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(path.toUtf8().constData(), "w"), &TIFFClose);
    for (const auto& [tag, value] :
         {std::pair(TIFFTAG_IMAGEWIDTH, side), std::pair(TIFFTAG_IMAGELENGTH, side),
          std::pair(TIFFTAG_ROWSPERSTRIP, side), std::pair(TIFFTAG_SAMPLESPERPIXEL, 3U),
          std::pair(TIFFTAG_BITSPERSAMPLE, 8U), std::pair(TIFFTAG_PLANARCONFIG, quint32{PLANARCONFIG_CONTIG}),
          std::pair(TIFFTAG_PHOTOMETRIC, quint32{PHOTOMETRIC_RGB}),
          std::pair(TIFFTAG_COMPRESSION, quint32{COMPRESSION_WEBP}), std::pair(TIFFTAG_WEBP_LOSSLESS, 1U)}) {
        ASSERT_EQ(TIFFSetField(tiff.get(), static_cast<quint32>(tag), value), 1);
    }
    ASSERT_EQ(TIFFWriteEncodedStrip(tiff.get(), 0, QByteArray(pixels).data(), pixels.size()), pixels.size());
    ASSERT_EQ(TIFFFlush(tiff.get()), 1);
    ASSERT_TRUE(allRows(ImageSource::open(path)->full()) == pixels);
}

namespace {

/// How far the samples of two 8-bit pictures are apart at most.
int distance(const QByteArray& picture, const SampleValues& values) {
    if (picture.size() != static_cast<qsizetype>(values.size())) {
        return 1000;
    }
    int largest = 0;
    for (qsizetype index = 0; index < picture.size(); ++index) {
        const int value = static_cast<quint8>(picture[index]);
        largest = std::max(largest, std::abs(value - static_cast<int>(values[static_cast<std::size_t>(index)])));
    }
    return largest;
}

struct JpegKind {
    const char* name;
    quint16 photometric;
    quint16 samples;
    ColorModel model;
    std::vector<quint16> subsampling;
};

class TiffJpeg : public ::testing::TestWithParam<JpegKind> {};

} // namespace

TEST_P(TiffJpeg, IsCloseToWhatWasWritten) {
    const JpegKind& kind = GetParam();
    const TemporaryFolder folder;
    for (int shape = 0; shape < 6; ++shape) {
        TiffForm form;
        form.width = 83;
        form.height = 67;
        form.photometric = kind.photometric;
        form.samples = kind.samples;
        form.subsampling = kind.subsampling;
        form.compression = COMPRESSION_JPEG;
        form.tileSize = shape % 3 == 2 ? 32 : 0;
        form.rowsPerStrip = shape % 3 == 1 ? form.height : 16;
        form.isBigEndian = shape >= 3;
        SCOPED_TRACE("shape " + std::to_string(shape));
        const SampleValues values = smooth(form);
        SampleValues expected = values;
        if (kind.photometric == PHOTOMETRIC_MINISWHITE) {
            std::ranges::transform(values, expected.begin(), [](quint64 value) { return 255 - value; });
        }
        const Raster raster = written(folder, form, values)->full();
        EXPECT_EQ(raster.format(), (PixelFormat{kind.model, 8, false, false}));
        EXPECT_LE(distance(allRows(raster), expected), 12);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, TiffJpeg,
    ::testing::Values(JpegKind{"Gray", PHOTOMETRIC_MINISBLACK, 1, ColorModel::gray, {}},
                      JpegKind{"InvertedGray", PHOTOMETRIC_MINISWHITE, 1, ColorModel::gray, {}},
                      JpegKind{"Rgb", PHOTOMETRIC_RGB, 3, ColorModel::rgb, {}},
                      JpegKind{"Cmyk", PHOTOMETRIC_SEPARATED, 4, ColorModel::cmyk, {}},
                      JpegKind{"YCbCr", PHOTOMETRIC_YCBCR, 3, ColorModel::rgb, {1, 1}},
                      JpegKind{"YCbCrOfHalfTheColours", PHOTOMETRIC_YCBCR, 3, ColorModel::rgb, {2, 1}},
                      JpegKind{"YCbCrOfAQuarterOfTheColours", PHOTOMETRIC_YCBCR, 3, ColorModel::rgb, {2, 2}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TiffImage, ReadsStripsThatAreTooLongToHold) {
    const TemporaryFolder folder;
    TiffForm form;
    form.width = 2903; // a strip is longer than is decoded at once
    form.height = 2899;
    form.bits = 16;
    form.samples = 2;
    form.photometric = PHOTOMETRIC_MINISBLACK;
    form.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    form.rowsPerStrip = form.height;
    SampleValues values;
    for (std::size_t index = 0; index < form.sampleCount(); ++index) {
        const std::size_t pixel = index / 2;
        values.push_back((pixel / form.width * 31 + pixel % form.width / 16 + index % 2 * 7) % 256 * 257);
    }
    const QByteArray expected = widenedRaster(form, values);
    for (const auto& [compression, isSeparate] :
         {std::pair(COMPRESSION_NONE, false), std::pair(COMPRESSION_LZW, true),
          std::pair(COMPRESSION_ADOBE_DEFLATE, false), std::pair(COMPRESSION_ADOBE_DEFLATE, true)}) {
        SCOPED_TRACE("compression " + std::to_string(compression) + (isSeparate ? ", separate" : ""));
        form.compression = static_cast<quint16>(compression);
        form.isSeparate = isSeparate;
        ASSERT_TRUE(allRows(written(folder, form, values)->full()) == expected);
    }
}

} // namespace orvex::platform
