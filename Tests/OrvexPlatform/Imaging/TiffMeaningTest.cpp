// What the tags of a TIFF file say of its samples and of the picture: alpha, palettes, inks, densities, orientation,
// profiles.

#include "Color/IccProfile.h"
#include "IccFixtures.h"
#include "Imaging/ImageError.h"
#include "Imaging/ImageSource.h"
#include "TemporaryFolder.h"
#include "TiffFixtures.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <array>
#include <cmath>

namespace orvex::platform {

namespace {

using test::allRows;
using test::packed;
using test::SampleValues;
using test::scattered;
using test::TemporaryFolder;
using test::TiffBytes;
using test::TiffForm;
using test::writeTiff;

class TiffMeaning : public ::testing::Test {
protected:
    std::unique_ptr<ImageSource> written(const TiffForm& form, const SampleValues& values) {
        const QString path = folder_.path(QStringLiteral("picture.tif"));
        writeTiff(path, form, values);
        return ImageSource::open(path);
    }

    std::unique_ptr<ImageSource> written(const TiffBytes& tiff) {
        return ImageSource::open(folder_.write(QStringLiteral("picture.tif"), tiff.bytes()));
    }

    void expectRefused(const TiffBytes& tiff) { EXPECT_THROW((void)written(tiff), ImageError); }

private:
    TemporaryFolder folder_;
};

QByteArray bytesOf(std::initializer_list<int> values) {
    QByteArray bytes;
    for (const int value : values) {
        bytes.append(static_cast<char>(value));
    }
    return bytes;
}

/// A file of 8-bit gray pixels in one row.
TiffBytes grayRow(std::initializer_list<int> values) {
    return TiffBytes::plain(static_cast<quint32>(values.size()), 1, 1, bytesOf(values));
}

struct ColorCase {
    quint16 photometric;
    quint16 colors;
};

constexpr std::array colorCases = {
    ColorCase{PHOTOMETRIC_MINISWHITE, 1},
    ColorCase{PHOTOMETRIC_MINISBLACK, 1},
    ColorCase{PHOTOMETRIC_RGB, 3},
    ColorCase{PHOTOMETRIC_SEPARATED, 4},
};

/// The colour that was multiplied by alpha, to the nearest integer; what is wholly transparent has none.
quint64 unmultiplied(quint64 color, quint64 alpha, int bits) {
    const long double largest = std::ldexp(1.0L, bits) - 1;
    const long double value =
        alpha == 0 ? 0 : static_cast<long double>(color) * largest / static_cast<long double>(alpha);
    return static_cast<quint64>(std::llround(std::min(value, largest)));
}

/// The raster's samples of a picture with extra samples, of which the one at `alphaSample` is alpha.
QByteArray withAlpha(const TiffForm& form, int colors, int alphaSample, bool isAssociated, const SampleValues& values) {
    const quint64 largest = ~quint64{0} >> (64 - form.bits);
    SampleValues out;
    for (std::size_t pixel = 0; pixel < values.size(); pixel += form.samples) {
        const quint64 alpha = alphaSample < 0 ? largest : values[pixel + static_cast<std::size_t>(alphaSample)];
        for (std::size_t color = pixel; color < pixel + static_cast<std::size_t>(colors); ++color) {
            const quint64 value = isAssociated ? unmultiplied(values[color], alpha, form.bits) : values[color];
            out.push_back(form.photometric == PHOTOMETRIC_MINISWHITE ? largest - value : value);
        }
        if (alphaSample >= 0) {
            out.push_back(alpha);
        }
    }
    return packed(out, form.bits);
}

} // namespace

TEST_F(TiffMeaning, AlphaIsDividedOutTakenAsItIsOrLeftOut) {
    struct Row {
        std::vector<quint16> extraSamples;
        int alpha; ///< its index among the extra samples, or -1
        bool isAssociated;
    };

    const std::vector<Row> rows = {
        {{EXTRASAMPLE_UNSPECIFIED}, -1, false},
        {{EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNSPECIFIED}, -1, false},
        {{EXTRASAMPLE_UNASSALPHA}, 0, false},
        {{EXTRASAMPLE_ASSOCALPHA}, 0, true},
        {{EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA}, 1, false},
        {{EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNSPECIFIED}, 1, true},
        {{EXTRASAMPLE_UNASSALPHA, EXTRASAMPLE_ASSOCALPHA}, 0, false},
    };
    for (const Row& row : rows) {
        for (const ColorCase& colors : colorCases) {
            for (int shape = 0; shape < 24; ++shape) {
                TiffForm form;
                form.photometric = colors.photometric;
                form.samples = static_cast<quint16>(colors.colors + row.extraSamples.size());
                form.extraSamples = row.extraSamples;
                form.bits = static_cast<quint16>(std::array{8, 16, 32}.at(static_cast<std::size_t>(shape % 3)));
                form.isSeparate = shape / 3 % 2 == 1;
                form.tileSize = shape / 6 % 2 == 1 ? 16 : 0;
                form.compression = shape / 12 == 1 ? COMPRESSION_LZW : COMPRESSION_NONE;
                SCOPED_TRACE("photometric " + std::to_string(colors.photometric) + ", shape " + std::to_string(shape) +
                             ", extra samples " + std::to_string(row.extraSamples.size()));
                const SampleValues values = scattered(form.sampleCount(), form.bits);
                const Raster raster = written(form, values)->full();
                EXPECT_EQ(raster.format().hasAlpha, row.alpha >= 0);
                const int alphaSample = row.alpha < 0 ? -1 : colors.colors + row.alpha;
                ASSERT_TRUE(allRows(raster) == withAlpha(form, colors.colors, alphaSample, row.isAssociated, values));
            }
        }
    }
}

TEST_F(TiffMeaning, AssociatedAlphaOfFloatsIsDividedOut) {
    const auto bits = [](float value) { return quint64{std::bit_cast<quint32>(value)}; };
    TiffForm form;
    form.width = 3;
    form.height = 1;
    form.bits = 32;
    form.sampleFormat = SAMPLEFORMAT_IEEEFP;
    form.samples = 4;
    form.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
    const SampleValues stored = {bits(0.25F), bits(0.125F), bits(0.5F), bits(0.5F), bits(0.3F), bits(0.2F),
                                 bits(0.1F),  bits(0),      bits(2),    bits(0),    bits(1),    bits(1)};
    const SampleValues expected = {bits(0.5F), bits(0.25F), bits(1), bits(0.5F), bits(0), bits(0),
                                   bits(0),    bits(0),     bits(2), bits(0),    bits(1), bits(1)};
    EXPECT_TRUE(allRows(written(form, stored)->full()) == packed(expected, 32));
}

TEST_F(TiffMeaning, PaletteIndicesBecomeTheirColors) {
    for (const int bits : {1, 2, 3, 4, 8, 16}) {
        for (int shape = 0; shape < 12; ++shape) {
            TiffForm form;
            form.photometric = PHOTOMETRIC_PALETTE;
            form.samples = shape % 2 == 0 ? 1 : 2;
            form.extraSamples = shape % 2 == 0 ? std::vector<quint16>{} : std::vector<quint16>{EXTRASAMPLE_UNSPECIFIED};
            form.bits = static_cast<quint16>(bits);
            form.tileSize = shape / 2 % 2 == 1 ? 16 : 0;
            form.isBigEndian = shape / 4 == 1;
            form.isSeparate = shape / 4 == 2;
            form.compression = shape % 3 == 0 ? COMPRESSION_PACKBITS : COMPRESSION_NONE;
            const std::size_t colors = std::size_t{1} << bits;
            for (const quint64 entry : scattered(3 * colors, 16)) {
                form.colorMap.push_back(static_cast<quint16>(entry));
            }
            const SampleValues values = scattered(form.sampleCount(), bits);
            QByteArray expected;
            for (std::size_t index = 0; index < values.size(); index += form.samples) {
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    expected.append(static_cast<char>(form.colorMap[channel * colors + values[index]] >> 8));
                }
            }
            SCOPED_TRACE("bits " + std::to_string(bits) + ", shape " + std::to_string(shape));
            const Raster raster = written(form, values)->full();
            EXPECT_EQ(raster.format(), (PixelFormat{ColorModel::rgb, 8, false, false}));
            ASSERT_TRUE(allRows(raster) == expected);
        }
    }
}

TEST_F(TiffMeaning, APaletteOfSmallNumbersHolds8BitColors) {
    TiffBytes tiff = TiffBytes::plain(4, 1, 1, bytesOf({0b00011011})).shorts(258, {2}).shorts(262, {3});
    tiff.shorts(320, {0, 10, 20, 255, 1, 11, 21, 254, 2, 12, 22, 253});
    EXPECT_EQ(allRows(written(tiff)->full()), bytesOf({0, 1, 2, 10, 11, 12, 20, 21, 22, 255, 254, 253}));
    tiff.shorts(320, {0, 10, 20, 256, 1, 11, 21, 254, 2, 12, 22, 65535});
    EXPECT_EQ(allRows(written(tiff)->full()), bytesOf({0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 255}));
}

namespace {

/// A YCbCr picture of 8-bit data units, each of `horizontal` x `vertical` luminances with one colour, and the pixels
/// that it stands for.
struct YCbCrPicture {
    QByteArray units;
    QByteArray rgb;
};

YCbCrPicture ycbcr(quint32 width, quint32 height, quint32 horizontal, quint32 vertical) {
    const auto luma = [](quint32 x, quint32 y) { return static_cast<int>(60 + (x * 5 + y * 3) % 120); };
    const auto chroma = [&](quint32 x, quint32 y, quint32 factor) {
        return static_cast<int>(100 + (x / horizontal * factor + y / vertical * 7) % 56);
    };
    YCbCrPicture picture;
    for (quint32 top = 0; top < height; top += vertical) {
        for (quint32 left = 0; left < width; left += horizontal) {
            for (quint32 index = 0; index < horizontal * vertical; ++index) {
                picture.units.append(static_cast<char>(luma(left + index % horizontal, top + index / horizontal)));
            }
            picture.units.append(static_cast<char>(chroma(left, top, 4)));
            picture.units.append(static_cast<char>(chroma(left, top, 9)));
        }
    }
    for (quint32 y = 0; y < height; ++y) {
        for (quint32 x = 0; x < width; ++x) {
            // TIFF 6.0, section 21, with the coefficients that hold if a file names none.
            const double cb = chroma(x, y, 4) - 128;
            const double cr = chroma(x, y, 9) - 128;
            const double red = luma(x, y) + 1.402 * cr;
            const double blue = luma(x, y) + 1.772 * cb;
            const double green = (luma(x, y) - 0.299 * red - 0.114 * blue) / 0.587;
            for (const double value : {red, green, blue}) {
                picture.rgb.append(static_cast<char>(std::clamp(std::lround(value), 0L, 255L)));
            }
        }
    }
    return picture;
}

int distance(const QByteArray& first, const QByteArray& second) {
    int largest = first.size() == second.size() ? 0 : 1000;
    for (qsizetype index = 0; index < std::min(first.size(), second.size()); ++index) {
        largest = std::max(largest, std::abs(static_cast<quint8>(first[index]) - static_cast<quint8>(second[index])));
    }
    return largest;
}

} // namespace

TEST_F(TiffMeaning, UncompressedYCbCrBecomesRgb) {
    for (const auto& [horizontal, vertical] : {std::pair(1U, 1U), std::pair(2U, 1U), std::pair(2U, 2U)}) {
        const YCbCrPicture picture = ycbcr(22, 13, horizontal, vertical);
        for (const quint64 orientation : {1U, 3U, 6U}) {
            SCOPED_TRACE(std::to_string(horizontal) + " x " + std::to_string(vertical) + ", orientation " +
                         std::to_string(orientation));
            TiffBytes tiff = TiffBytes::plain(22, 13, 3, picture.units);
            tiff.shorts(262, {6}).shorts(530, {horizontal, vertical}).shorts(274, {orientation});
            const Raster raster = written(tiff)->full();
            EXPECT_EQ(raster.format(), (PixelFormat{ColorModel::rgb, 8, false, false}));
            EXPECT_LE(distance(allRows(raster), picture.rgb), 2);
        }
    }
}

TEST_F(TiffMeaning, YCbCrInSeveralStripsAndInTilesBecomesRgb) {
    const QByteArray expected = ycbcr(32, 20, 2, 2).rgb;
    const QByteArray units = ycbcr(32, 20, 2, 2).units; // 16 units of 6 bytes for two rows
    TiffBytes strips = TiffBytes::plain(32, 20, 3, units).shorts(262, {6}).shorts(530, {2, 2});
    strips.longs(278, {8}).longs(273, {0, 384, 768}).longs(279, {384, 384, 192});
    EXPECT_LE(distance(allRows(written(strips)->full()), expected), 2);

    QByteArray tileData;
    for (const int band : {0, 1}) {
        for (const int column : {0, 1}) {
            for (int unitRow = band * 8; unitRow < band * 8 + 8; ++unitRow) {
                tileData += unitRow < 10 ? units.sliced(unitRow * 96 + column * 48, 48) : QByteArray(48, '\x7f');
            }
        }
    }
    TiffBytes tiles = TiffBytes::plain(32, 20, 3, tileData).shorts(262, {6}).shorts(530, {2, 2});
    tiles.remove(273).remove(278).remove(279).shorts(322, {16}).shorts(323, {16});
    tiles.longs(324, {0, 384, 768, 1152}).longs(325, {384, 384, 384, 384});
    EXPECT_LE(distance(allRows(written(tiles)->full()), expected), 2);
}

namespace {

struct DensityCase {
    const char* name;
    TiffBytes tiff;
    std::optional<double> width;
    std::optional<double> height;
};

void PrintTo(const DensityCase& row, std::ostream* out) {
    *out << row.name;
}

class TiffDensity : public TiffMeaning, public ::testing::WithParamInterface<DensityCase> {};

TiffBytes pixel() {
    return grayRow({7});
}

TiffBytes dense(quint32 x, quint32 y, quint32 denominator = 1) {
    return pixel().rational(282, x, denominator).rational(283, y, denominator);
}

const std::vector<DensityCase>& densityCases() {
    static const std::vector<DensityCase> rows = {
        {"None", pixel(), {}, {}},
        {"Inch", dense(300, 240).shorts(296, {2}), 300, 240},
        {"Centimetre", dense(11811, 100, 100).shorts(296, {3}), 11811.0 / 100 * 2.54, 1 * 2.54},
        {"WithoutUnit", dense(3000002, 3000000, 10000), 3000002.0 / 10000, 300},
        {"UnitNone", dense(300, 300).shorts(296, {1}), {}, {}},
        {"UnknownUnit", dense(300, 300).shorts(296, {9}), {}, {}},
        {"UnitOfAnotherType", dense(300, 300).longs(296, {3}), 300 * 2.54, 300 * 2.54},
        {"UnitAsText", dense(300, 300).setRaw(296, 2, 2, "2"), {}, {}},
        {"OnlyWidth", pixel().rational(282, 72, 1), 72, {}},
        {"OnlyHeight", pixel().rational(283, 72, 1), {}, 72},
        {"Zero", dense(0, 0), 0, 0},
        {"ZeroDenominator", dense(300, 300, 0), {}, {}},
        {"Largest", dense(0xFFFFFFFF, 1), 4294967295.0, 1},
        {"Signed", pixel().setRaw(282, 10, 1, QByteArray("\xd4\xfe\xff\xff\1\0\0\0", 8)), -300, {}},
        {"Shorts", pixel().shorts(282, {300}).shorts(283, {301}), 300, 301},
        {"Float", pixel().set(282, 11, {0x43707000}), 240.4375, {}},
        {"Double", pixel().set(282, 12, {0x406E0F3333333333}), 240.475, {}},
        {"SeveralValues", pixel().shorts(282, {300, 300}), {}, {}},
        {"Text", pixel().setRaw(282, 2, 4, QByteArray("300", 4)), {}, {}},
        {"OutsideTheFile", pixel().setRaw(282, 5, 1, QByteArray("\xff\xff\xff\x7f", 4)), {}, {}},
    };
    return rows;
}

} // namespace

TEST_P(TiffDensity, IsAsTheFileStatesIt) {
    const DensityCase& row = GetParam();
    const ImageProperties properties = written(row.tiff)->properties();
    EXPECT_EQ(properties.dpiWidth, row.width);
    EXPECT_EQ(properties.dpiHeight, row.height);
}

INSTANTIATE_TEST_SUITE_P(Of, TiffDensity, ::testing::ValuesIn(densityCases()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(TiffMeaning, OrientationIsThatOfTheFile) {
    EXPECT_EQ(written(grayRow({1}))->properties().orientation, 1);
    for (quint64 orientation = 0; orientation < 12; ++orientation) {
        const auto source = written(TiffBytes::plain(2, 3, 1, QByteArray(6, 'x')).shorts(274, {orientation}));
        const int expected = orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
        EXPECT_EQ(source->properties().orientation, expected);
        EXPECT_EQ(source->properties().pixelWidth, 2);
        EXPECT_EQ(source->properties().pixelHeight, 3);
        EXPECT_EQ(source->full().orientation(), expected);
        EXPECT_EQ(source->full().width(), expected >= 5 ? 3 : 2);
    }
    EXPECT_EQ(written(grayRow({1}).setRaw(274, 2, 4, QByteArray("six", 4)))->properties().orientation, 1);
}

TEST_F(TiffMeaning, OnlyTheFirstDirectoryCounts) {
    const TiffBytes second = TiffBytes::plain(9, 9, 3, QByteArray(243, 'b'));
    TiffBytes first = grayRow({1, 2, 3});
    const QByteArray alone = first.bytes();
    // The second directory's own offsets are wrong here, so that reading it would fail.
    const QByteArray both =
        first.next(static_cast<quint64>(alone.size()) + second.directoryOffset()).bytes() + second.bytes();
    const TemporaryFolder folder;
    const auto source = ImageSource::open(folder.write(QStringLiteral("two.tif"), both));
    EXPECT_EQ(source->properties().pixelWidth, 3);
    EXPECT_EQ(allRows(source->full()), bytesOf({1, 2, 3}));
}

TEST_F(TiffMeaning, TheProfileIsAppliedIfItSuitsTheColors) {
    const QByteArray rgb = test::icc::saved(test::icc::rgb(2.2));
    const QByteArray gray = test::icc::saved(test::icc::gray(2.2));
    const TiffBytes color = TiffBytes::plain(1, 1, 3, bytesOf({1, 2, 3}));
    const auto profileOf = [&](TiffBytes tiff, const QByteArray& data, quint16 type = 7) {
        tiff.setRaw(34675, type, static_cast<quint64>(data.size()), data);
        return written(tiff)->full().iccProfile();
    };
    EXPECT_EQ(written(color)->full().iccProfile(), std::nullopt);
    EXPECT_EQ(profileOf(color, rgb), rgb);
    EXPECT_EQ(profileOf(color, gray), std::nullopt);
    EXPECT_EQ(profileOf(grayRow({1}), gray), gray);
    EXPECT_EQ(profileOf(color, rgb.first(200)), std::nullopt);
    EXPECT_EQ(profileOf(color, rgb, 3), std::nullopt);
    TiffBytes outside = color;
    outside.setRaw(34675, 7, 4000, QByteArray("\x00\x00\x00\x70", 4));
    EXPECT_THROW((void)written(outside), ImageError);
}

TEST_F(TiffMeaning, WhatHasNoCertainMeaningIsRefused) {
    const TiffBytes gray = grayRow({1, 2, 3, 4});
    const TiffBytes color = TiffBytes::plain(1, 1, 3, bytesOf({1, 2, 3}));
    const TiffBytes inks = TiffBytes::plain(1, 1, 4, bytesOf({1, 2, 3, 4}));
    EXPECT_NO_THROW((void)written(gray));
    EXPECT_NO_THROW((void)written(color));
    EXPECT_NO_THROW((void)written(inks));
    expectRefused(TiffBytes(gray).shorts(339, {SAMPLEFORMAT_INT}));
    expectRefused(TiffBytes(gray).shorts(339, {SAMPLEFORMAT_COMPLEXINT}));
    expectRefused(TiffBytes(gray).shorts(339, {SAMPLEFORMAT_IEEEFP})); // of 8 bits
    expectRefused(TiffBytes(gray).shorts(258, {64}).longs(256, {1}));  // as an integer
    expectRefused(TiffBytes(gray).shorts(262, {PHOTOMETRIC_PALETTE})); // without colours
    expectRefused(TiffBytes(gray).shorts(262, {PHOTOMETRIC_MASK}));
    expectRefused(TiffBytes(gray).shorts(262, {PHOTOMETRIC_LOGL}));
    expectRefused(TiffBytes(gray).remove(262));
    expectRefused(TiffBytes(color).shorts(262, {PHOTOMETRIC_CIELAB}));
    expectRefused(TiffBytes(color).shorts(262, {PHOTOMETRIC_ICCLAB}));
    expectRefused(TiffBytes(color).shorts(262, {PHOTOMETRIC_ITULAB}));
    expectRefused(TiffBytes(color).shorts(262, {PHOTOMETRIC_SEPARATED})); // of three inks
    expectRefused(TiffBytes(color).shorts(338, {1}));                     // two colours and alpha
    expectRefused(TiffBytes(inks).shorts(332, {INKSET_MULTIINK}));
    expectRefused(TiffBytes(inks).shorts(338, {0})); // three inks and something
    expectRefused(TiffBytes(gray).shorts(259, {COMPRESSION_OJPEG}));
    expectRefused(TiffBytes(gray).shorts(259, {COMPRESSION_NEXT}));
    expectRefused(TiffBytes(gray).shorts(259, {COMPRESSION_CCITTRLEW}));
    expectRefused(TiffBytes(gray).shorts(259, {12345}));
    expectRefused(TiffBytes(gray).shorts(32997, {2}).longs(256, {2})); // a volume
}

TEST_F(TiffMeaning, InksWithoutAnInkSetAreCmyk) {
    const TiffBytes inks = TiffBytes::plain(1, 1, 4, bytesOf({0, 50, 200, 255}));
    EXPECT_EQ(written(inks)->full().format().model, ColorModel::cmyk);
    EXPECT_EQ(allRows(written(inks)->full()), bytesOf({0, 50, 200, 255}));
    EXPECT_EQ(written(TiffBytes(inks).shorts(332, {INKSET_CMYK}))->full().format().model, ColorModel::cmyk);
}

TEST_F(TiffMeaning, UnknownTagsAndDisorderDoNoHarm) {
    TiffBytes tiff = grayRow({5, 6});
    tiff.shorts(65000, {1, 2, 3}).setRaw(65001, 99, 7, "?").setRaw(270, 2, 5, "title").longs(34665, {4});
    EXPECT_EQ(allRows(written(tiff)->full()), bytesOf({5, 6}));
}

TEST_F(TiffMeaning, AMissingByteCountOfOneStripIsNoDamage) {
    EXPECT_EQ(allRows(written(grayRow({5, 6}).remove(279))->full()), bytesOf({5, 6}));
    EXPECT_EQ(allRows(written(grayRow({5, 6}).remove(278))->full()), bytesOf({5, 6})); // nor are missing rows
}

} // namespace orvex::platform
