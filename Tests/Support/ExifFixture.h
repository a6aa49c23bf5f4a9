#pragma once

#include <QByteArray>
#include <QtEndian>

#include <vector>

namespace orvex::test {

/// An EXIF block made entry by entry, from its TIFF header on.
struct ExifFixture {
    struct Entry {
        quint16 tag = 0;
        quint16 type = 0;
        quint32 count = 0;
        std::vector<quint32> numbers; ///< two for a rational
    };

    enum Tag : quint16 {
        orientation = 0x0112,
        xResolution = 0x011A,
        yResolution = 0x011B,
        resolutionUnit = 0x0128,
        exifDirectory = 0x8769,
        colorSpace = 0xA001
    };

    enum Type : quint16 { byteType = 1, shortType = 3, longType = 4, rationalType = 5, signedRationalType = 10 };

    static Entry number(quint16 tag, quint32 value, Type type = shortType) { return {tag, type, 1, {value}}; }

    static Entry rational(quint16 tag, quint32 numerator, quint32 denominator = 1, Type type = rationalType) {
        return {tag, type, 1, {numerator, denominator}};
    }

    bool isBigEndian = false;
    std::vector<Entry> main{};
    std::vector<Entry> exif{}; ///< no such directory if empty

    [[nodiscard]] QByteArray bytes() const {
        const auto mainCount = static_cast<quint32>(main.size()) + (exif.empty() ? 0 : 1);
        const quint32 exifOffset = 8 + directoryBytes(mainCount);
        quint32 values = exifOffset + (exif.empty() ? 0 : directoryBytes(static_cast<quint32>(exif.size())));
        std::vector<Entry> first = main;
        if (!exif.empty()) {
            first.push_back(number(exifDirectory, exifOffset, longType));
        }
        QByteArray tail;
        QByteArray block = isBigEndian ? QByteArray("MM\0\x2A", 4) : QByteArray("II\x2A\0", 4);
        block += coded(quint32{8}) + directory(first, values, tail);
        if (!exif.empty()) {
            block += directory(exif, values, tail);
        }
        return block + tail;
    }

private:
    static quint32 directoryBytes(quint32 entries) { return 2 + 12 * entries + 4; }

    template <typename Number>
    [[nodiscard]] QByteArray coded(Number value) const {
        QByteArray bytes(sizeof(Number), '\0');
        isBigEndian ? qToBigEndian(value, bytes.data()) : qToLittleEndian(value, bytes.data());
        return bytes;
    }

    [[nodiscard]] QByteArray codedValues(const Entry& entry) const {
        QByteArray bytes;
        for (const quint32 value : entry.numbers) {
            bytes += entry.type == byteType    ? QByteArray(1, static_cast<char>(value))
                     : entry.type == shortType ? coded(static_cast<quint16>(value))
                                               : coded(value);
        }
        return bytes;
    }

    QByteArray directory(const std::vector<Entry>& entries, quint32 valuesOffset, QByteArray& tail) const {
        QByteArray bytes = coded(static_cast<quint16>(entries.size()));
        for (const Entry& entry : entries) {
            const QByteArray value = codedValues(entry);
            bytes += coded(entry.tag) + coded(entry.type) + coded(entry.count);
            if (value.size() <= 4) {
                bytes += value.leftJustified(4, '\0');
            } else {
                bytes += coded(valuesOffset + static_cast<quint32>(tail.size()));
                tail += value;
            }
        }
        return bytes + coded(quint32{0});
    }
};

} // namespace orvex::test
