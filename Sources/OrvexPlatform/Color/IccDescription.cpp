#include "Color/IccDescription.h"

#include "Files/ByteReader.h"

#include <QStringDecoder>

namespace orvex::platform {

namespace {

constexpr quint32 descriptionTag = 0x64657363; // "desc", a tag and an old type of text
constexpr quint32 localizedType = 0x6D6C7563;  // "mluc"
constexpr quint16 english = 0x656E;            // "en"

constexpr quint64 tagCountOffset = 128;
constexpr quint64 firstTagOffset = 132;
constexpr quint64 tagEntryBytes = 12;

std::optional<quint64> tagOffset(ByteReader& profile, quint32 tag) {
    const quint64 count = profile.u32(tagCountOffset, ByteOrder::big).value_or(0);
    for (quint64 entry = firstTagOffset; entry < firstTagOffset + count * tagEntryBytes; entry += tagEntryBytes) {
        const auto signature = profile.u32(entry, ByteOrder::big);
        if (!signature || signature == tag) {
            return profile.u32(entry + 4, ByteOrder::big);
        }
    }
    return std::nullopt;
}

/// ICC.1:2001-04, 6.5.17: the text that was to be ASCII; some profiles hold Latin letters there.
std::optional<QString> oldText(ByteReader& profile, quint64 offset) {
    const auto length = profile.u32(offset + 8, ByteOrder::big);
    const auto bytes = length ? profile.bytes(offset + 12, *length) : std::nullopt;
    return bytes ? std::optional(QString::fromLatin1(*bytes)) : std::nullopt;
}

/// ICC.1, 10.15: records of language, country, length and offset, then UTF-16 texts.
std::optional<QString> localizedText(ByteReader& profile, quint64 offset) {
    constexpr quint64 recordBytes = 12;
    const quint64 count = profile.u32(offset + 8, ByteOrder::big).value_or(0);
    const quint64 first = offset + 16;
    quint64 chosen = first;
    for (quint64 record = first; record < first + count * recordBytes; record += recordBytes) {
        const auto language = profile.u16(record, ByteOrder::big);
        if (language == english) {
            chosen = record;
        }
        if (!language || language == english) {
            break;
        }
    }
    const auto length = profile.u32(chosen + 4, ByteOrder::big);
    const auto textOffset = profile.u32(chosen + 8, ByteOrder::big);
    const auto bytes = count > 0 && length && textOffset ? profile.bytes(offset + *textOffset, *length) : std::nullopt;
    if (!bytes) {
        return std::nullopt;
    }
    QStringDecoder decoder(QStringDecoder::Utf16BE, QStringDecoder::Flag::Stateless);
    return QString(decoder(*bytes));
}

} // namespace

std::optional<QString> iccDescription(const QByteArray& profile) {
    ByteReader reader(profile);
    const auto offset = tagOffset(reader, descriptionTag);
    const auto type = offset ? reader.u32(*offset, ByteOrder::big) : std::nullopt;
    std::optional<QString> text;
    if (type == localizedType) {
        text = localizedText(reader, *offset);
    } else if (type == descriptionTag) {
        text = oldText(reader, *offset);
    }
    if (!text) {
        return std::nullopt;
    }
    const QString shown = text->left(text->indexOf(QChar::Null)).trimmed(); // all of it without a NUL
    return shown.isEmpty() ? std::nullopt : std::optional(shown);
}

} // namespace orvex::platform
