#pragma once

#include "Files/ByteReader.h"
#include "Imaging/Raster.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace orvex::test {

/// A TIFF file for libtiff to write.
struct TiffForm {
    quint32 width = 37;
    quint32 height = 29;
    quint16 bits = 8;
    quint16 sampleFormat = 1; ///< 1 unsigned, 2 signed, 3 float
    quint16 samples = 3;
    quint16 photometric = 2;
    quint16 compression = 1;
    quint16 predictor = 1;
    quint16 fillOrder = 1;
    bool isSeparate = false;
    quint32 rowsPerStrip = 7;
    quint32 tileSize = 0; ///< a multiple of 16; 0 for strips
    bool isBigEndian = false;
    bool isBig = false;
    std::vector<quint16> extraSamples;
    std::vector<quint16> colorMap; ///< red, green and blue one after the other
    std::vector<quint16> subsampling;
    quint32 group3Options = 0;
    quint16 orientation = 1;
    QByteArray profile;

    [[nodiscard]] std::size_t sampleCount() const { return std::size_t{width} * height * samples; }
};

/// The numbers of all samples, pixel by pixel; floats as the bits that stand for them.
using SampleValues = std::vector<quint64>;

/// Numbers over the whole range of that many bits, the same at every call.
[[nodiscard]] SampleValues scattered(std::size_t count, int bits);

/// Samples as libtiff takes them: packed from the highest bit, or whole words in the machine's order.
[[nodiscard]] QByteArray packed(const SampleValues& values, int bits);

/// Writes a file through libtiff.
void writeTiff(const QString& path, const TiffForm& form, const SampleValues& values);

/// A smooth 8-bit picture, which lossy methods keep well.
[[nodiscard]] SampleValues smooth(const TiffForm& form);

/// All rows of a raster. Checks on the way that the strips are those that the raster promises.
[[nodiscard]] QByteArray allRows(const platform::Raster& raster);

/// A TIFF file made byte by byte, of one directory.
class TiffBytes {
public:
    explicit TiffBytes(bool isBigEndian = false, bool isBig = false) : isBigEndian_(isBigEndian), isBig_(isBig) {}

    /// Adds an entry, or replaces the one of that tag. Entries are written in the order of their tags.
    TiffBytes& set(quint16 tag, quint16 type, const std::vector<quint64>& values);

    /// An entry that claims `count` values, whatever bytes it has.
    TiffBytes& setRaw(quint16 tag, quint16 type, quint64 count, const QByteArray& valueBytes);

    TiffBytes& remove(quint16 tag);

    TiffBytes& shorts(quint16 tag, const std::vector<quint64>& values) { return set(tag, 3, values); }

    TiffBytes& longs(quint16 tag, const std::vector<quint64>& values) { return set(tag, 4, values); }

    TiffBytes& rational(quint16 tag, quint32 numerator, quint32 denominator);

    /// The pixel data; the values of the tags 273 and 324 are offsets into it.
    TiffBytes& pixels(const QByteArray& bytes);

    /// Puts the pixels before the directory and not behind everything.
    TiffBytes& pixelsFirst();

    /// The offset of a next directory; the directory's own offset makes a loop.
    TiffBytes& next(quint64 offset);

    [[nodiscard]] quint64 directoryOffset() const;
    [[nodiscard]] quint64 pixelOffset() const;

    [[nodiscard]] QByteArray bytes() const;

    /// An uncompressed picture of 8-bit samples in one strip.
    [[nodiscard]] static TiffBytes plain(quint32 width, quint32 height, quint16 samples, const QByteArray& pixels,
                                         bool isBigEndian = false, bool isBig = false);

private:
    struct Entry {
        quint16 tag;
        quint16 type;
        quint64 count;
        std::vector<quint64> values; ///< numbers of the type's size
        QByteArray raw;              ///< instead of numbers
    };

    [[nodiscard]] QByteArray number(quint64 value, int size) const;
    [[nodiscard]] QByteArray valueBytes(const Entry& entry) const;
    [[nodiscard]] qsizetype outlyingBytes() const;

    [[nodiscard]] qsizetype headerBytes() const { return isBig_ ? 16 : 8; }

    [[nodiscard]] qsizetype directoryBytes() const;

    bool isBigEndian_;
    bool isBig_;
    bool hasPixelsFirst_ = false;
    quint64 next_ = 0;
    std::vector<Entry> entries_;
    QByteArray pixels_;
};

} // namespace orvex::test
