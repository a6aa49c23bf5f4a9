#include "Imaging/TiffDirectory.h"

#include "Imaging/ImageError.h"

#include <tiff.h>

#include <algorithm>
#include <array>
#include <bit>

namespace orvex::platform {

namespace {

constexpr quint64 maximumEntries = 4096;      // more than any writer knows tags
constexpr quint64 largestIdleBytes = 1 << 20; // far more than any tag has that says how to decode

/// The tags whose values may be large in a sound picture and are needed.
constexpr std::array<quint16, 5> largeTags = {TIFFTAG_STRIPOFFSETS, TIFFTAG_STRIPBYTECOUNTS, TIFFTAG_TILEOFFSETS,
                                              TIFFTAG_TILEBYTECOUNTS, TIFFTAG_ICCPROFILE};

// TIFF 6.0, section 2, and the types of BigTIFF.
enum FieldType : quint16 {
    byte = 1,
    ascii,
    shortInteger,
    longInteger,
    rational,
    signedByte,
    undefined,
    signedShort,
    signedLong,
    signedRational,
    singleFloat,
    doubleFloat,
    directory,
    long8 = 16,
    signedLong8,
    directory8,
};

/// The bytes of one value; 0 for a type that does not exist.
quint64 valueBytes(quint16 type) {
    static constexpr std::array<quint8, 19> sizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < sizes.size() ? sizes.at(type) : 0;
}

template <typename Value>
Value required(std::optional<Value> value) {
    if (!value) {
        throw ImageError(QStringLiteral("the TIFF directory does not lie in the file"));
    }
    return *value;
}

/// The unsigned number at `offset`: 8 bytes if `isLong`, and otherwise `shortBytes`.
quint64 requiredNumber(ByteReader& reader, quint64 offset, ByteOrder order, bool isLong, int shortBytes = 4) {
    if (isLong) {
        return required(reader.u64(offset, order));
    }
    return shortBytes == 2 ? required(reader.u16(offset, order)) : required(reader.u32(offset, order));
}

template <typename Integer, typename Unsigned>
std::optional<double> asDouble(std::optional<Unsigned> value) {
    return value ? std::optional(static_cast<double>(std::bit_cast<Integer>(*value))) : std::nullopt;
}

template <typename Integer>
std::optional<double> quotient(std::optional<quint32> numerator, std::optional<quint32> denominator) {
    if (!numerator || !denominator || *denominator == 0) {
        return std::nullopt;
    }
    return static_cast<double>(std::bit_cast<Integer>(*numerator)) /
           static_cast<double>(std::bit_cast<Integer>(*denominator));
}

} // namespace

TiffDirectory TiffDirectory::read(std::shared_ptr<const RandomAccessFile> file) {
    ByteReader reader(*file);
    const std::optional<QByteArray> mark = reader.bytes(0, 2);
    if (mark != QByteArray("II") && mark != QByteArray("MM")) {
        throw ImageError(QStringLiteral("no TIFF header"));
    }
    const ByteOrder order = mark == QByteArray("II") ? ByteOrder::little : ByteOrder::big;
    const std::optional<quint16> version = reader.u16(2, order);
    const bool isBig = version == 43 && reader.u16(4, order) == 8 && reader.u16(6, order) == 0;
    if (version != 42 && !isBig) {
        throw ImageError(QStringLiteral("no TIFF header"));
    }
    TiffDirectory result(std::move(file), order);
    result.readEntries(isBig);
    result.checkValueSizes();
    return result;
}

void TiffDirectory::readEntries(bool isBig) {
    ByteReader reader(*file_);
    const quint64 start = requiredNumber(reader, isBig ? 8 : 4, order_, isBig);
    const quint64 count = requiredNumber(reader, start, order_, isBig, 2);
    if (start == 0 || count == 0 || count > maximumEntries) {
        throw ImageError(QStringLiteral("a TIFF directory of %1 entries").arg(count));
    }
    const quint64 entryBytes = isBig ? 20 : 12;
    const quint64 inlineBytes = isBig ? 8 : 4;
    for (quint64 index = 0; index < count; ++index) {
        const quint64 at = start + (isBig ? 8 : 2) + index * entryBytes;
        const quint64 valueAt = at + entryBytes - inlineBytes;
        Entry entry;
        entry.tag = required(reader.u16(at, order_));
        entry.type = required(reader.u16(at + 2, order_));
        entry.typeField = {at + 2, sizeof(entry.type)};
        entry.count = requiredNumber(reader, at + 4, order_, isBig);
        const quint64 pointer = requiredNumber(reader, valueAt, order_, isBig);
        const quint64 size = valueBytes(entry.type);
        const bool isInline = size == 0 || entry.count <= inlineBytes / size;
        entry.valueOffset = isInline ? valueAt : pointer;
        entries_.push_back(entry);
    }
}

/// The decoder keeps a copy of every tag's values, so thousands of tags that all point at the same megabytes would make
/// it hold gigabytes. Values of a few tags may share their bytes, as equal resolutions do.
void TiffDirectory::checkValueSizes() const {
    const auto fileSize = static_cast<quint64>(file_->size());
    quint64 total = 0;
    for (const Entry& entry : entries_) {
        total += holdsValues(entry) ? entry.count * valueBytes(entry.type) : 0;
    }
    if (total / 2 > fileSize) {
        throw ImageError(QStringLiteral("the TIFF tags claim %1 bytes of a file of %2").arg(total).arg(fileSize));
    }
}

const TiffDirectory::Entry* TiffDirectory::find(quint32 tag) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.tag == tag; });
    return found == entries_.end() ? nullptr : &*found;
}

bool TiffDirectory::holdsValues(const Entry& entry) const {
    const auto fileSize = static_cast<quint64>(file_->size());
    const quint64 size = valueBytes(entry.type);
    return size != 0 && entry.valueOffset <= fileSize && entry.count <= (fileSize - entry.valueOffset) / size;
}

std::vector<TiffDirectory::Range> TiffDirectory::idleTypes() const {
    std::vector<Range> types;
    for (const Entry& entry : entries_) {
        const quint64 size = valueBytes(entry.type);
        const bool isLarge = size != 0 && entry.count > largestIdleBytes / size;
        if (isLarge && std::ranges::find(largeTags, entry.tag) == largeTags.end()) {
            types.push_back(entry.typeField);
        }
    }
    return types;
}

std::optional<quint64> TiffDirectory::firstInteger(quint32 tag) const {
    const Entry* entry = find(tag);
    if (entry == nullptr || entry->count == 0) {
        return std::nullopt;
    }
    ByteReader reader(*file_);
    switch (entry->type) {
    case byte:
        return reader.u8(entry->valueOffset);
    case shortInteger:
        return reader.u16(entry->valueOffset, order_);
    case longInteger:
    case directory:
        return reader.u32(entry->valueOffset, order_);
    case long8:
    case directory8:
        return reader.u64(entry->valueOffset, order_);
    default:
        return std::nullopt;
    }
}

std::optional<double> TiffDirectory::number(quint32 tag) const {
    const Entry* entry = find(tag);
    if (entry == nullptr || entry->count != 1) {
        return std::nullopt;
    }
    ByteReader reader(*file_);
    const quint64 at = entry->valueOffset;
    switch (entry->type) {
    case rational:
        return quotient<quint32>(reader.u32(at, order_), reader.u32(at + 4, order_));
    case signedRational:
        return quotient<qint32>(reader.u32(at, order_), reader.u32(at + 4, order_));
    case singleFloat:
        return asDouble<float>(reader.u32(at, order_));
    case doubleFloat:
        return asDouble<double>(reader.u64(at, order_));
    case signedByte:
        return asDouble<qint8>(reader.u8(at));
    case signedShort:
        return asDouble<qint16>(reader.u16(at, order_));
    case signedLong:
        return asDouble<qint32>(reader.u32(at, order_));
    case signedLong8:
        return asDouble<qint64>(reader.u64(at, order_));
    default:
        return asDouble<quint64>(firstInteger(tag));
    }
}

} // namespace orvex::platform
