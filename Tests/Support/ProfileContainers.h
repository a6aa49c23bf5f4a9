#pragma once

#include <QByteArray>
#include <QtEndian>

#include <vector>

/// The heads of image files, as far as a search for a profile reads them. None holds a picture.
namespace orvex::test {

template <typename Number>
QByteArray bigEndian(Number value) {
    QByteArray bytes(sizeof(Number), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

template <typename Number>
QByteArray littleEndian(Number value) {
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// PNG

/// A chunk; nobody looks at its checksum here.
inline QByteArray pngChunk(const QByteArray& type, const QByteArray& data) {
    return bigEndian(static_cast<quint32>(data.size())) + type + data + QByteArray(4, '\0');
}

inline QByteArray pngFile(const std::vector<QByteArray>& chunks) {
    QByteArray file("\x89PNG\r\n\x1a\n", 8);
    for (const QByteArray& each : chunks) {
        file += each;
    }
    return file;
}

/// The data of an iCCP chunk. Qt puts the size before the zlib stream that it makes.
inline QByteArray iccpData(const QByteArray& profile, const QByteArray& name = "Profile", char method = 0) {
    return name + QByteArray(1, '\0') + QByteArray(1, method) + qCompress(profile).sliced(4);
}

// JPEG

inline QByteArray jpegSegment(quint8 marker, const QByteArray& payload) {
    return "\xFF" + bigEndian(marker) + bigEndian(static_cast<quint16>(payload.size() + 2)) + payload;
}

inline QByteArray jpegFile(const std::vector<QByteArray>& segments, const QByteArray& end = "\xFF\xD9") {
    QByteArray file("\xFF\xD8");
    for (const QByteArray& each : segments) {
        file += each;
    }
    return file + end;
}

inline QByteArray iccSegment(quint8 sequence, quint8 total, const QByteArray& bytes) {
    return jpegSegment(0xE2, QByteArray("ICC_PROFILE\0", 12) + bigEndian(sequence) + bigEndian(total) + bytes);
}

inline QByteArray exifSegment(const QByteArray& exif) {
    return jpegSegment(0xE1, QByteArray("Exif\0\0", 6) + exif);
}

// TIFF

struct TiffField {
    quint16 tag = 0;
    quint16 type = 0;
    quint64 count = 0;
    quint64 value = 0; ///< or its offset; a short stands in the field's first two bytes
};

/// One form of the TIFF structure: byte order and width of the fields.
struct TiffForm {
    bool isLittle = true;
    bool isBig = false;

    template <typename Number>
    [[nodiscard]] QByteArray number(Number value) const {
        return isLittle ? littleEndian(value) : bigEndian(value);
    }

    [[nodiscard]] QByteArray word(quint64 value) const {
        return isBig ? number(value) : number(static_cast<quint32>(value));
    }

    [[nodiscard]] QByteArray header(quint64 firstDirectory) const {
        const QByteArray order = isLittle ? "II" : "MM";
        return isBig ? order + number(quint16{43}) + number(quint16{8}) + number(quint16{0}) + word(firstDirectory)
                     : order + number(quint16{42}) + word(firstDirectory);
    }

    [[nodiscard]] quint64 headerBytes() const { return isBig ? 16 : 8; }

    [[nodiscard]] quint64 directoryBytes(quint64 fields) const { return isBig ? 16 + 20 * fields : 6 + 12 * fields; }

    [[nodiscard]] QByteArray field(const TiffField& field) const {
        const bool isShort = field.type == 3;
        const QByteArray value =
            isShort ? number(static_cast<quint16>(field.value)) + QByteArray(isBig ? 6 : 2, '\0') : word(field.value);
        return number(field.tag) + number(field.type) + word(field.count) + value;
    }

    [[nodiscard]] QByteArray directory(const std::vector<TiffField>& fields, quint64 next = 0) const {
        QByteArray bytes = isBig ? number(quint64{fields.size()}) : number(static_cast<quint16>(fields.size()));
        for (const TiffField& each : fields) {
            bytes += field(each);
        }
        return bytes + word(next);
    }

    /// A file of one directory with the given field behind an ordinary one, and `tail` behind the directory.
    [[nodiscard]] QByteArray file(const TiffField& field, const QByteArray& tail) const {
        return header(headerBytes()) + directory({{256, 4, 1, 10}, field}) + tail;
    }

    /// Where the tail of `file` begins.
    [[nodiscard]] quint64 tailOffset() const { return headerBytes() + directoryBytes(2); }

    /// EXIF data with the given fields for the pointer to the EXIF directory and for the colour space.
    [[nodiscard]] QByteArray exif(const TiffField& pointer, const TiffField& colorSpace) const {
        return header(8) + directory({{274, 3, 1, 1}, pointer}) + directory({{36864, 7, 4, 0}, colorSpace});
    }

    [[nodiscard]] TiffField exifPointer() const { return {34665, 4, 1, 8 + directoryBytes(2)}; }
};

} // namespace orvex::test
