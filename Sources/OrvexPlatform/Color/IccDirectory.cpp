#include "Color/IccDirectory.h"

#include "Files/ByteReader.h"

namespace orvex::platform {

namespace {

constexpr quint64 profileSizeOffset = 0;
constexpr quint64 tagCountOffset = 128;
constexpr quint64 firstEntryOffset = 132;
constexpr quint64 entryBytes = 12;

/// The size that the profile states, as far as the data have that many bytes.
std::optional<quint64> statedSize(ByteReader& profile) {
    const auto size = profile.u32(profileSizeOffset, ByteOrder::big);
    return size && *size <= profile.size() ? std::optional<quint64>(*size) : std::nullopt;
}

/// Where the directory ends, if that is within the first `profileSize` bytes.
std::optional<quint64> directoryEnd(ByteReader& profile, quint64 profileSize) {
    const auto count = profile.u32(tagCountOffset, ByteOrder::big);
    const quint64 room = profileSize < firstEntryOffset ? 0 : profileSize - firstEntryOffset;
    return count && *count <= room / entryBytes ? std::optional(firstEntryOffset + *count * entryBytes) : std::nullopt;
}

std::optional<IccTag> tagAt(ByteReader& profile, quint64 entry) {
    const auto signature = profile.u32(entry, ByteOrder::big);
    const auto offset = profile.u32(entry + 4, ByteOrder::big);
    const auto size = profile.u32(entry + 8, ByteOrder::big);
    return signature && offset && size ? std::optional(IccTag{*signature, *offset, *size}) : std::nullopt;
}

bool liesBetween(const IccTag& tag, quint64 begin, quint64 end) {
    return tag.offset >= begin && tag.offset <= end && tag.size <= end - tag.offset;
}

} // namespace

std::optional<std::vector<IccTag>> iccDirectory(const QByteArray& profile) {
    ByteReader reader(profile);
    const auto profileEnd = statedSize(reader);
    const auto end = profileEnd ? directoryEnd(reader, *profileEnd) : std::nullopt;
    if (!end) {
        return std::nullopt;
    }
    std::vector<IccTag> tags;
    for (quint64 entry = firstEntryOffset; entry < *end; entry += entryBytes) {
        const auto tag = tagAt(reader, entry);
        if (!tag || !liesBetween(*tag, *end, *profileEnd)) {
            return std::nullopt;
        }
        tags.push_back(*tag);
    }
    return tags;
}

} // namespace orvex::platform
