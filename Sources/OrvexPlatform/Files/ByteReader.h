#pragma once

#include <QByteArray>

#include <optional>

namespace orvex::platform {

class RandomAccessFile;

enum class ByteOrder { big, little };

/// Checked reads from bytes that came from outside, out of memory or out of a file: nothing beyond the end is ever
/// touched, and a read that would go there gives nothing. From a file it reads only what is asked for, through a small
/// window. The bytes or the file must outlive the reader. One thread.
class ByteReader {
public:
    explicit ByteReader(const QByteArray& bytes);
    explicit ByteReader(const RandomAccessFile& file);

    /// The size of the data in bytes.
    [[nodiscard]] quint64 size() const { return size_; }

    [[nodiscard]] std::optional<quint8> u8(quint64 offset);
    [[nodiscard]] std::optional<quint16> u16(quint64 offset, ByteOrder order);
    [[nodiscard]] std::optional<quint32> u32(quint64 offset, ByteOrder order);
    [[nodiscard]] std::optional<quint64> u64(quint64 offset, ByteOrder order);

    /// Exactly `count` bytes from `offset`, or nothing if they do not lie wholly in the data.
    [[nodiscard]] std::optional<QByteArray> bytes(quint64 offset, quint64 count);

private:
    template <typename Number>
    std::optional<Number> number(quint64 offset, ByteOrder order);
    [[nodiscard]] bool holds(quint64 offset, quint64 count) const;
    const char* window(quint64 offset, quint64 count);

    const QByteArray* memory_ = nullptr;
    const RandomAccessFile* file_ = nullptr;
    quint64 size_;
    QByteArray window_;
    quint64 windowOffset_ = 0;
};

} // namespace orvex::platform
