#pragma once

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace orvex::test {

/// An uncompressed little-endian TIFF of one strip, made tag by tag.
struct TiffFixture {
    quint32 width = 1;
    quint32 height = 1;
    quint16 samples = 3;
    quint16 bits = 8;
    quint16 photometric = 2;  ///< 1 gray, 2 RGB, 3 palette, 5 CMYK
    quint16 sampleFormat = 1; ///< 1 unsigned, 3 floating point
    quint16 orientation = 1;
    std::optional<std::pair<quint32, quint32>> density{}; ///< pixels per inch, horizontal and vertical
    quint32 densityDenominator = 1;
    QList<quint16> palette{}; ///< all red values of 16 bits, then all green, then all blue ones
    bool hasAlpha = false;
    QByteArray profile{};
    QByteArray pixels{};

    [[nodiscard]] QByteArray bytes() const {
        Builder builder;
        builder.data = QByteArray("II*\0\0\0\0\0", 8);
        const quint32 pixelOffset = builder.append(pixels);
        builder.shortTag(254, 0);
        builder.longTag(256, width);
        builder.longTag(257, height);
        builder.shortsTag(258, QList<quint16>(samples, bits));
        builder.shortTag(259, 1);
        builder.shortTag(262, photometric);
        builder.longTag(273, pixelOffset);
        builder.shortTag(274, orientation);
        builder.shortTag(277, samples);
        builder.longTag(278, height);
        builder.longTag(279, static_cast<quint32>(pixels.size()));
        if (density) {
            builder.rationalTag(282, density->first, densityDenominator);
            builder.rationalTag(283, density->second, densityDenominator);
        }
        builder.shortTag(284, 1);
        if (density) {
            builder.shortTag(296, 2);
        }
        if (!palette.isEmpty()) {
            builder.shortsTag(320, palette);
        }
        if (hasAlpha) {
            builder.shortTag(338, 2);
        }
        builder.shortsTag(339, QList<quint16>(samples, sampleFormat));
        if (!profile.isEmpty()) {
            builder.entry(34675, 7, static_cast<quint32>(profile.size()), builder.append(profile));
        }
        return builder.finish();
    }

private:
    struct Builder {
        QByteArray data;
        QByteArray entries;
        quint16 count = 0;

        template <typename Number>
        static QByteArray little(Number number) {
            return QByteArray(reinterpret_cast<const char*>(&number), sizeof(number));
        }

        quint32 append(const QByteArray& bytes) {
            if (data.size() % 2 != 0) {
                data.append('\0');
            }
            const auto offset = static_cast<quint32>(data.size());
            data.append(bytes);
            return offset;
        }

        void entry(quint16 tag, quint16 type, quint32 valueCount, quint32 value) {
            entries += little(tag) + little(type) + little(valueCount) + little(value);
            ++count;
        }

        void shortTag(quint16 tag, quint16 value) { entry(tag, 3, 1, value); }

        void longTag(quint16 tag, quint32 value) { entry(tag, 4, 1, value); }

        void shortsTag(quint16 tag, const QList<quint16>& values) {
            QByteArray bytes;
            for (const quint16 value : values) {
                bytes += little(value);
            }
            const bool fits = bytes.size() <= 4;
            quint32 inlined = 0;
            std::memcpy(&inlined, bytes.constData(), static_cast<std::size_t>(std::min<qsizetype>(bytes.size(), 4)));
            entry(tag, 3, static_cast<quint32>(values.size()), fits ? inlined : append(bytes));
        }

        void rationalTag(quint16 tag, quint32 numerator, quint32 denominator) {
            entry(tag, 5, 1, append(little(numerator) + little(denominator)));
        }

        QByteArray finish() {
            const quint32 directory = append({});
            data += little(count) + entries + little(quint32{0});
            data.replace(4, 4, little(directory));
            return data;
        }
    };
};

} // namespace orvex::test
