#pragma once

#include "Files/ByteReader.h"
#include "Files/RandomAccessFile.h"

#include <memory>
#include <optional>
#include <vector>

namespace orvex::platform {

/// The entries of the first directory of a TIFF or BigTIFF file, as they stand in the file. The decoder repairs and
/// drops what it cannot use, silently at times; this is what the file really says. Immutable; any thread.
class TiffDirectory {
public:
    /// Some bytes of the file.
    struct Range {
        quint64 offset = 0;
        quint64 size = 0;
    };

    struct Entry {
        quint16 tag = 0;
        quint16 type = 0;
        Range typeField;
        quint64 count = 0;
        quint64 valueOffset = 0; ///< in the file, for values within the entry too
    };

    /// Raises ImageError if the header or the directory is damaged or does not lie in the file, or if the values of its
    /// tags are together larger than the file can justify; FileSystemError if the file cannot be read.
    [[nodiscard]] static TiffDirectory read(std::shared_ptr<const RandomAccessFile> file);

    /// The first entry of that tag, the one that counts; null if there is none.
    [[nodiscard]] const Entry* find(quint32 tag) const;

    /// Whether all values of an entry of a known type lie in the file.
    [[nodiscard]] bool holdsValues(const Entry& entry) const;

    /// The type fields of the entries that have megabytes of values, as the layers of a layered picture, and say
    /// nothing of how to decode. A type of 0 makes such an entry one that no reader can use.
    [[nodiscard]] std::vector<Range> idleTypes() const;

    /// The first value of a tag of an unsigned integer type.
    [[nodiscard]] std::optional<quint64> firstInteger(quint32 tag) const;

    /// The value of a tag that has exactly one, of whatever numeric type, not rounded; absent for a denominator of 0.
    [[nodiscard]] std::optional<double> number(quint32 tag) const;

private:
    TiffDirectory(std::shared_ptr<const RandomAccessFile> file, ByteOrder order)
        : file_(std::move(file)),
          order_(order) {}

    void readEntries(bool isBig);
    void checkValueSizes() const;

    std::shared_ptr<const RandomAccessFile> file_;
    ByteOrder order_;
    std::vector<Entry> entries_;
};

} // namespace orvex::platform
