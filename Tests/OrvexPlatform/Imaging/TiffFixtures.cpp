#include "TiffFixtures.h"

#include <QFile>

#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace orvex::test {

namespace {

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

using TiffPointer = std::unique_ptr<TIFF, CloseTiff>;

void mustHold(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// libtiff would rather have the newer of the two numbers for Deflate.
int ignoreWarning(TIFF* /*tiff*/, void* /*data*/, const char* /*module*/, const char* /*format*/, va_list /*values*/) {
    return 1;
}

TiffPointer create(const QString& path, const TiffForm& form) {
    const std::string mode = std::string("w") + (form.isBigEndian ? "b" : "l") + (form.isBig ? "8" : "4");
    QFile::remove(path); // a file that is truncated instead is written to the disk at once
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetWarningHandlerExtR(options, ignoreWarning, nullptr);
    TiffPointer tiff(TIFFOpenExt(path.toUtf8().constData(), mode.c_str(), options));
    TIFFOpenOptionsFree(options);
    mustHold(tiff != nullptr, "a TIFF file of the tests cannot be created");
    TIFF* t = tiff.get();
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, form.width);
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, form.height);
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, form.bits);
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, form.samples);
    TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, form.sampleFormat);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, form.photometric);
    TIFFSetField(t, TIFFTAG_COMPRESSION, form.compression);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, form.isSeparate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(t, TIFFTAG_FILLORDER, form.fillOrder);
    TIFFSetField(t, TIFFTAG_ORIENTATION, form.orientation);
    if (form.predictor != 1) {
        TIFFSetField(t, TIFFTAG_PREDICTOR, form.predictor);
    }
    if (form.group3Options != 0) {
        TIFFSetField(t, TIFFTAG_GROUP3OPTIONS, form.group3Options);
    }
    if (!form.extraSamples.empty()) {
        TIFFSetField(t, TIFFTAG_EXTRASAMPLES, static_cast<int>(form.extraSamples.size()), form.extraSamples.data());
    }
    if (!form.colorMap.empty()) {
        const std::size_t third = form.colorMap.size() / 3;
        TIFFSetField(t, TIFFTAG_COLORMAP, form.colorMap.data(), form.colorMap.data() + third,
                     form.colorMap.data() + 2 * third);
    }
    if (!form.subsampling.empty()) {
        TIFFSetField(t, TIFFTAG_YCBCRSUBSAMPLING, form.subsampling[0], form.subsampling[1]);
    }
    if (!form.profile.isEmpty()) {
        TIFFSetField(t, TIFFTAG_ICCPROFILE, static_cast<quint32>(form.profile.size()), form.profile.constData());
    }
    if (form.compression == COMPRESSION_WEBP) {
        TIFFSetField(t, TIFFTAG_WEBP_LOSSLESS, 1);
    }
    if (form.compression == COMPRESSION_JPEG) {
        TIFFSetField(t, TIFFTAG_JPEGQUALITY, 95);
        TIFFSetField(t, TIFFTAG_JPEGCOLORMODE,
                     form.photometric == PHOTOMETRIC_YCBCR ? JPEGCOLORMODE_RGB : JPEGCOLORMODE_RAW);
    }
    if (form.tileSize != 0) {
        TIFFSetField(t, TIFFTAG_TILEWIDTH, form.tileSize);
        TIFFSetField(t, TIFFTAG_TILELENGTH, form.tileSize);
    } else {
        TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
    }
    return tiff;
}

/// In a file of the other byte order libtiff swaps the samples before its floating-point predictor when it writes, but
/// not when it reads; the method's bytes are the same in both orders. So what is written must have been swapped.
void reverseSamples(QByteArray& bytes, int sampleBytes) {
    for (auto sample = bytes.begin(); sample != bytes.end(); sample += sampleBytes) {
        std::reverse(sample, sample + sampleBytes);
    }
}

/// One segment of the picture: its samples row by row, each row packed by itself. What lies beyond the picture repeats
/// its last sample.
QByteArray segment(const TiffForm& form, const SampleValues& values, quint32 left, quint32 top, quint32 width,
                   quint32 height, int plane) {
    QByteArray bytes;
    for (quint32 y = top; y < top + height; ++y) {
        SampleValues row;
        for (quint32 x = left; x < left + width; ++x) {
            const std::size_t pixel =
                std::size_t{std::min(y, form.height - 1)} * form.width + std::min(x, form.width - 1);
            for (int sample = 0; sample < form.samples; ++sample) {
                if (plane < 0 || plane == sample) {
                    row.push_back(values[pixel * form.samples + static_cast<std::size_t>(sample)]);
                }
            }
        }
        QByteArray rowBytes = packed(row, form.bits);
        if (form.predictor == PREDICTOR_FLOATINGPOINT && form.isBigEndian) {
            reverseSamples(rowBytes, form.bits / 8);
        }
        bytes += rowBytes;
    }
    return bytes;
}

void writePlane(TIFF* tiff, const TiffForm& form, const SampleValues& values, int plane) {
    const auto sample = static_cast<quint16>(std::max(plane, 0));
    if (form.tileSize != 0) {
        for (quint32 top = 0; top < form.height; top += form.tileSize) {
            for (quint32 left = 0; left < form.width; left += form.tileSize) {
                QByteArray bytes = segment(form, values, left, top, form.tileSize, form.tileSize, plane);
                const quint32 index = TIFFComputeTile(tiff, left, top, 0, sample);
                mustHold(TIFFWriteEncodedTile(tiff, index, bytes.data(), bytes.size()) == bytes.size(), "no tile");
            }
        }
        return;
    }
    const quint32 step = std::min(form.rowsPerStrip, form.height);
    for (quint32 top = 0; top < form.height; top += step) {
        QByteArray bytes = segment(form, values, 0, top, form.width, std::min(step, form.height - top), plane);
        const quint32 index = TIFFComputeStrip(tiff, top, sample);
        mustHold(TIFFWriteEncodedStrip(tiff, index, bytes.data(), bytes.size()) == bytes.size(), "no strip");
    }
}

} // namespace

SampleValues scattered(std::size_t count, int bits) {
    SampleValues values(count);
    quint64 state = 0x9E3779B97F4A7C15;
    for (std::size_t index = 0; index < count; ++index) {
        state = state * 6364136223846793005 + 1442695040888963407;
        values[index] = state >> (64 - bits);
    }
    // Both ends of the range are always there.
    if (count > 1) {
        values[0] = 0;
        values[count - 1] = ~quint64{0} >> (64 - bits);
    }
    return values;
}

QByteArray packed(const SampleValues& values, int bits) {
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(values.size()) * bits / 8 + 1);
    if (bits == 16 || bits == 24 || bits == 32 || bits == 64) {
        for (const quint64 value : values) {
            std::array<char, 8> word{};
            std::memcpy(word.data(), &value, word.size()); // the tests run on little-endian machines
            bytes.append(word.data(), bits / 8);
        }
        return bytes;
    }
    quint64 window = 0;
    int held = 0;
    for (const quint64 value : values) {
        window = window << bits | value;
        for (held += bits; held >= 8; held -= 8) {
            bytes.append(static_cast<char>(window >> (held - 8)));
        }
    }
    if (held > 0) {
        bytes.append(static_cast<char>(window << (8 - held)));
    }
    return bytes;
}

void writeTiff(const QString& path, const TiffForm& form, const SampleValues& values) {
    const TiffPointer tiff = create(path, form);
    for (int plane = form.isSeparate ? 0 : -1; plane < (form.isSeparate ? form.samples : 0); ++plane) {
        writePlane(tiff.get(), form, values, plane);
    }
    mustHold(TIFFFlush(tiff.get()) == 1, "a TIFF file of the tests cannot be finished");
}

SampleValues smooth(const TiffForm& form) {
    SampleValues values;
    for (quint32 y = 0; y < form.height; ++y) {
        for (quint32 x = 0; x < form.width; ++x) {
            for (quint32 sample = 0; sample < form.samples; ++sample) {
                values.push_back((x * (sample + 1) + y * (3 - sample % 3) + 40 * sample) / 2 % 256 / 2 + 60);
            }
        }
    }
    return values;
}

QByteArray allRows(const platform::Raster& raster) {
    QByteArray all;
    qint64 expectedRow = 0;
    raster.rows([&](const platform::RowStrip& strip) {
        const qint64 expectedCount = std::min(raster.stripRows(), raster.storedHeight() - expectedRow);
        ASSERT_EQ(strip.firstRow, expectedRow);
        ASSERT_EQ(strip.rowCount, expectedCount);
        ASSERT_EQ(static_cast<qint64>(strip.bytes.size()), expectedCount * raster.rowBytes());
        all.append(reinterpret_cast<const char*>(strip.bytes.data()), static_cast<qsizetype>(strip.bytes.size()));
        expectedRow += strip.rowCount;
    });
    EXPECT_EQ(expectedRow, raster.storedHeight());
    return all;
}

TiffBytes& TiffBytes::set(quint16 tag, quint16 type, const std::vector<quint64>& values) {
    remove(tag);
    entries_.push_back({tag, type, values.size(), values, {}});
    return *this;
}

TiffBytes& TiffBytes::setRaw(quint16 tag, quint16 type, quint64 count, const QByteArray& valueBytes) {
    remove(tag);
    entries_.push_back({tag, type, count, {}, valueBytes});
    return *this;
}

TiffBytes& TiffBytes::remove(quint16 tag) {
    std::erase_if(entries_, [tag](const Entry& entry) { return entry.tag == tag; });
    return *this;
}

TiffBytes& TiffBytes::rational(quint16 tag, quint32 numerator, quint32 denominator) {
    return setRaw(tag, 5, 1, number(numerator, 4) + number(denominator, 4));
}

TiffBytes& TiffBytes::pixels(const QByteArray& bytes) {
    pixels_ = bytes;
    return *this;
}

TiffBytes& TiffBytes::pixelsFirst() {
    hasPixelsFirst_ = true;
    return *this;
}

TiffBytes& TiffBytes::next(quint64 offset) {
    next_ = offset;
    return *this;
}

QByteArray TiffBytes::number(quint64 value, int size) const {
    QByteArray bytes;
    for (int index = 0; index < size; ++index) {
        bytes.append(static_cast<char>(value >> 8 * (isBigEndian_ ? size - 1 - index : index)));
    }
    return bytes;
}

QByteArray TiffBytes::valueBytes(const Entry& entry) const {
    static constexpr std::array<int, 19> sizes = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 1, 1, 8, 8, 8};
    QByteArray bytes = entry.raw;
    for (const quint64 value : entry.values) {
        const bool isOffset = entry.tag == 273 || entry.tag == 324;
        bytes += number(value + (isOffset ? pixelOffset() : 0), entry.type < sizes.size() ? sizes.at(entry.type) : 1);
    }
    return bytes;
}

qsizetype TiffBytes::directoryBytes() const {
    const auto count = static_cast<qsizetype>(entries_.size());
    return isBig_ ? 8 + 20 * count + 8 : 2 + 12 * count + 4;
}

qsizetype TiffBytes::outlyingBytes() const {
    static constexpr std::array<qsizetype, 19> sizes = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 1, 1, 8, 8, 8};
    qsizetype total = 0;
    for (const Entry& entry : entries_) {
        const qsizetype each = entry.type < sizes.size() ? sizes.at(entry.type) : 1;
        const qsizetype size = entry.raw.size() + static_cast<qsizetype>(entry.values.size()) * each;
        total += size > (isBig_ ? 8 : 4) ? size : 0;
    }
    return total;
}

quint64 TiffBytes::directoryOffset() const {
    return static_cast<quint64>(headerBytes() + (hasPixelsFirst_ ? pixels_.size() : 0));
}

quint64 TiffBytes::pixelOffset() const {
    return static_cast<quint64>(headerBytes() + (hasPixelsFirst_ ? 0 : directoryBytes() + outlyingBytes()));
}

QByteArray TiffBytes::bytes() const {
    const int wordSize = isBig_ ? 8 : 4;
    QByteArray file = isBigEndian_ ? "MM" : "II";
    file += number(isBig_ ? 43 : 42, 2) + (isBig_ ? number(8, 2) + number(0, 2) : QByteArray());
    file += number(directoryOffset(), wordSize) + (hasPixelsFirst_ ? pixels_ : QByteArray());
    QByteArray outlying;
    const auto outlyingOffset = directoryOffset() + static_cast<quint64>(directoryBytes());
    std::vector<Entry> sorted = entries_;
    std::ranges::stable_sort(sorted, {}, &Entry::tag);
    file += number(sorted.size(), isBig_ ? 8 : 2);
    for (const Entry& entry : sorted) {
        const QByteArray value = valueBytes(entry);
        file += number(entry.tag, 2) + number(entry.type, 2) + number(entry.count, wordSize);
        if (value.size() <= wordSize) {
            file += value.leftJustified(wordSize, '\0');
        } else {
            file += number(outlyingOffset + static_cast<quint64>(outlying.size()), wordSize);
            outlying += value;
        }
    }
    file += number(next_, wordSize) + outlying + (hasPixelsFirst_ ? QByteArray() : pixels_);
    return file;
}

TiffBytes TiffBytes::plain(quint32 width, quint32 height, quint16 samples, const QByteArray& pixels, bool isBigEndian,
                           bool isBig) {
    TiffBytes tiff(isBigEndian, isBig);
    tiff.longs(256, {width}).longs(257, {height}).shorts(258, std::vector<quint64>(samples, 8)).shorts(259, {1});
    tiff.shorts(262, {samples < 3 ? 1U : samples == 3 ? 2U : 5U}).longs(273, {0}).shorts(277, {samples});
    tiff.longs(278, {height}).longs(279, {static_cast<quint64>(pixels.size())}).shorts(284, {1}).pixels(pixels);
    return tiff;
}

} // namespace orvex::test
