#include "Output/EmbeddedICC.h"

#include "Color/IccProfile.h"
#include "Color/Inflate.h"

#include <map>

namespace orvex {

using platform::ByteOrder;
using platform::ByteReader;

namespace {

constexpr quint32 chunkType(const char (&name)[5]) {
    quint32 type = 0;
    for (int i = 0; i < 4; ++i) {
        type = type << 8 | static_cast<quint8>(name[i]);
    }
    return type;
}

/// The profile in the data of an iCCP chunk: a name, a zero, the compression method, the deflated bytes.
std::optional<QByteArray> iccpProfile(ByteReader& data, quint64 offset, quint64 length) {
    const auto content = length <= EmbeddedICC::largestBytes ? data.bytes(offset, length) : std::nullopt;
    if (!content) {
        return std::nullopt;
    }
    const qsizetype nameEnd = content->indexOf('\0');
    if (nameEnd < 1 || nameEnd + 1 >= content->size() || content->at(nameEnd + 1) != 0) {
        return std::nullopt;
    }
    return EmbeddedICC::inflate(content->sliced(nameEnd + 2));
}

/// What the segments of a JPEG have told of its colours so far.
class JpegColor {
public:
    /// Looks at a segment's payload. False if it makes the whole file malformed.
    [[nodiscard]] bool take(quint8 marker, ByteReader& data, quint64 offset, quint64 length) {
        if (marker == 0xE2 && length >= iccHeadBytes && begins(data, offset, length, iccName)) {
            return takeChunk(data, offset, length);
        }
        if (marker == 0xE1 && begins(data, offset, length, exifName)) {
            const auto nameBytes = static_cast<quint64>(exifName.size());
            const auto exif = data.bytes(offset + nameBytes, length - nameBytes);
            declaresSRGB_ = declaresSRGB_ || (exif && EmbeddedICC::exifDeclaresSRGB(*exif));
        }
        return true;
    }

    /// A profile in the file goes before the declaration.
    [[nodiscard]] std::optional<QByteArray> profile() const {
        if (total_ == 0) {
            return declaresSRGB_ ? std::optional(platform::sRgbProfileData()) : std::nullopt;
        }
        if (chunks_.size() != total_) {
            return std::nullopt;
        }
        QByteArray joined;
        for (const auto& [sequence, bytes] : chunks_) {
            joined += bytes;
        }
        return joined;
    }

private:
    static constexpr QByteArrayView iccName{"ICC_PROFILE\0", 12};
    static constexpr QByteArrayView exifName{"Exif\0\0", 6};
    static constexpr quint64 iccHeadBytes = 14;

    static bool begins(ByteReader& data, quint64 offset, quint64 length, QByteArrayView name) {
        const auto nameBytes = static_cast<quint64>(name.size());
        return length >= nameBytes && data.bytes(offset, nameBytes) == name.toByteArray();
    }

    bool takeChunk(ByteReader& data, quint64 offset, quint64 length) {
        const auto sequence = data.u8(offset + 12);
        const auto declared = data.u8(offset + 13);
        auto bytes = data.bytes(offset + iccHeadBytes, length - iccHeadBytes);
        if (!sequence || !declared || !bytes || *sequence == 0 || *declared == 0 || *declared < *sequence ||
            chunks_.contains(*sequence) || (total_ != 0 && total_ != *declared)) {
            return false;
        }
        chunks_.emplace(*sequence, std::move(*bytes));
        total_ = *declared;
        return true;
    }

    std::map<quint8, QByteArray> chunks_; // by sequence number, so in their order
    quint8 total_ = 0;
    bool declaresSRGB_ = false;
};

/// The marker at `offset`, behind any number of fill bytes, with `offset` moved behind it.
std::optional<quint8> nextMarker(ByteReader& data, quint64& offset) {
    if (data.u8(offset) != 0xFF) {
        return std::nullopt;
    }
    auto byte = data.u8(offset);
    while (byte == 0xFF) {
        byte = data.u8(++offset);
    }
    ++offset;
    return byte;
}

bool hasNoLength(quint8 marker) {
    return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

bool endsHead(quint8 marker) {
    return marker == 0xD9 || marker == 0xDA;
}

/// Reads directories of the TIFF structure, classic or big.
class TiffReader {
public:
    TiffReader(ByteReader& data, ByteOrder order, bool isBig) : data_(data), order_(order), isBig_(isBig) {}

    [[nodiscard]] std::optional<quint16> u16(quint64 offset) { return data_.u16(offset, order_); }

    /// A field whose width is that of an offset.
    [[nodiscard]] std::optional<quint64> word(quint64 offset) {
        return isBig_ ? data_.u64(offset, order_) : std::optional<quint64>(data_.u32(offset, order_));
    }

    /// The offset of a directory's first entry with that tag.
    [[nodiscard]] std::optional<quint64> entry(std::optional<quint64> directory, quint16 tag) {
        if (!directory || *directory >= data_.size()) {
            return std::nullopt;
        }
        const auto count = isBig_ ? data_.u64(*directory, order_) : std::optional<quint64>(u16(*directory));
        const quint64 first = *directory + (isBig_ ? 8 : 2);
        const quint64 entryBytes = isBig_ ? 20 : 12;
        if (!count || *count > (data_.size() - first) / entryBytes) {
            return std::nullopt;
        }
        for (quint64 i = 0; i < *count; ++i) {
            const quint64 offset = first + i * entryBytes;
            if (u16(offset) == tag) {
                return offset;
            }
        }
        return std::nullopt;
    }

private:
    ByteReader& data_;
    ByteOrder order_;
    bool isBig_;
};

constexpr quint16 exifDirectoryTag = 34665;
constexpr quint16 colorSpaceTag = 40961;
constexpr quint16 profileTag = 34675;
constexpr quint16 shortType = 3;
constexpr quint16 longType = 4;
constexpr quint16 undefinedType = 7;

} // namespace

namespace EmbeddedICC {

std::optional<QByteArray> inflate(const QByteArray& data) {
    return platform::inflate(data, firstInflateBytes, largestBytes);
}

std::optional<QByteArray> png(ByteReader& data) {
    constexpr quint64 frameBytes = 12; // length, type and checksum of a chunk
    constexpr quint8 unknownIntent = 4;
    quint64 offset = 8;
    while (data.size() >= frameBytes && offset <= data.size() - frameBytes) {
        const auto length = data.u32(offset, ByteOrder::big);
        const auto type = data.u32(offset + 4, ByteOrder::big);
        if (!length || !type || *length > data.size() - offset - frameBytes) {
            return std::nullopt;
        }
        if (*type == chunkType("iCCP")) {
            return iccpProfile(data, offset + 8, *length);
        }
        if (*type == chunkType("sRGB") && *length == 1 && data.u8(offset + 8).value_or(unknownIntent) < unknownIntent) {
            return platform::sRgbProfileData();
        }
        if (*type == chunkType("IDAT") || *type == chunkType("IEND")) {
            return std::nullopt;
        }
        offset += frameBytes + *length;
    }
    return std::nullopt;
}

std::optional<QByteArray> jpeg(ByteReader& data) {
    JpegColor color;
    quint64 offset = 2;
    while (offset < data.size()) {
        const auto marker = nextMarker(data, offset);
        if (!marker) {
            return std::nullopt;
        }
        if (hasNoLength(*marker)) {
            continue;
        }
        if (endsHead(*marker)) {
            break;
        }
        const auto length = data.u16(offset, ByteOrder::big); // counts itself
        if (!length || *length < 2 || *length > data.size() - offset ||
            !color.take(*marker, data, offset + 2, *length - 2U)) {
            return std::nullopt;
        }
        offset += *length;
    }
    return color.profile();
}

bool exifDeclaresSRGB(const QByteArray& exif) {
    if (!exif.startsWith("II") && !exif.startsWith("MM")) {
        return false;
    }
    ByteReader data(exif);
    TiffReader tiff(data, exif.startsWith("II") ? ByteOrder::little : ByteOrder::big, false);
    if (tiff.u16(2) != 42) {
        return false;
    }
    const auto pointer = tiff.entry(tiff.word(4), exifDirectoryTag);
    if (!pointer || tiff.u16(*pointer + 2) != longType || tiff.word(*pointer + 4) != 1U) {
        return false;
    }
    const auto colorSpace = tiff.entry(tiff.word(*pointer + 8), colorSpaceTag);
    return colorSpace && tiff.u16(*colorSpace + 2) == shortType && tiff.word(*colorSpace + 4) == 1U &&
           tiff.u16(*colorSpace + 8) == 1;
}

std::optional<QByteArray> tiff(ByteReader& data) {
    const auto order = data.bytes(0, 2) == QByteArray("II") ? ByteOrder::little : ByteOrder::big;
    const auto version = data.u16(2, order);
    const bool isBig = version == 43;
    if (!isBig && version != 42) {
        return std::nullopt;
    }
    if (isBig && (data.u16(4, order) != 8 || data.u16(6, order) != 0)) {
        return std::nullopt;
    }
    TiffReader reader(data, order, isBig);
    const auto entry = reader.entry(reader.word(isBig ? 8 : 4), profileTag);
    if (!entry || reader.u16(*entry + 2) != undefinedType) {
        return std::nullopt;
    }
    const auto count = reader.word(*entry + 4);
    const auto offset = reader.word(*entry + (isBig ? 12 : 8));
    if (!count || !offset || *count < smallestTiffProfile || *count > largestBytes) {
        return std::nullopt;
    }
    return data.bytes(*offset, *count);
}

} // namespace EmbeddedICC

} // namespace orvex
