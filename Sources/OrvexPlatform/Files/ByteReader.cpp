#include "Files/ByteReader.h"

#include "Files/RandomAccessFile.h"

#include <QtEndian>

namespace orvex::platform {

namespace {

constexpr qint64 windowBytes = 4096; // one page: the readers hop from header to header

} // namespace

ByteReader::ByteReader(const QByteArray& bytes) : memory_(&bytes), size_(static_cast<quint64>(bytes.size())) {}

ByteReader::ByteReader(const RandomAccessFile& file) : file_(&file), size_(static_cast<quint64>(file.size())) {}

bool ByteReader::holds(quint64 offset, quint64 count) const {
    return offset <= size_ && count <= size_ - offset;
}

/// The `count` bytes at `offset`, which lie in the data and fit a window; null if the file has become shorter.
const char* ByteReader::window(quint64 offset, quint64 count) {
    if (memory_ != nullptr) {
        return memory_->constData() + offset;
    }
    const auto windowEnd = windowOffset_ + static_cast<quint64>(window_.size());
    if (offset < windowOffset_ || offset + count > windowEnd) {
        window_ = file_->bytesAt(static_cast<qint64>(offset), windowBytes);
        windowOffset_ = offset;
    }
    return static_cast<quint64>(window_.size()) < offset - windowOffset_ + count
               ? nullptr
               : window_.constData() + (offset - windowOffset_);
}

template <typename Number>
std::optional<Number> ByteReader::number(quint64 offset, ByteOrder order) {
    if (!holds(offset, sizeof(Number))) {
        return std::nullopt;
    }
    const char* at = window(offset, sizeof(Number));
    if (at == nullptr) {
        return std::nullopt;
    }
    return order == ByteOrder::big ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
}

std::optional<quint8> ByteReader::u8(quint64 offset) {
    return number<quint8>(offset, ByteOrder::big);
}

std::optional<quint16> ByteReader::u16(quint64 offset, ByteOrder order) {
    return number<quint16>(offset, order);
}

std::optional<quint32> ByteReader::u32(quint64 offset, ByteOrder order) {
    return number<quint32>(offset, order);
}

std::optional<quint64> ByteReader::u64(quint64 offset, ByteOrder order) {
    return number<quint64>(offset, order);
}

std::optional<QByteArray> ByteReader::bytes(quint64 offset, quint64 count) {
    if (!holds(offset, count)) {
        return std::nullopt;
    }
    const auto at = static_cast<qint64>(offset);
    const auto length = static_cast<qint64>(count);
    QByteArray result = memory_ != nullptr ? memory_->mid(at, length) : file_->bytesAt(at, length);
    return result.size() == length ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace orvex::platform
