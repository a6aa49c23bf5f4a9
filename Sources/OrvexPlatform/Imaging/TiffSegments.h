#pragma once

#include "Imaging/TiffLayout.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace orvex::platform {

/// Reads the pixels of a TIFF file as they are stored, decompressed and in the machine's byte order. It is made for one
/// pass over the picture from the top. One thread.
class TiffSegments {
public:
    /// Some rows of one segment.
    struct Region {
        int plane = 0;
        qint64 column = 0; ///< of the segment in its band
        qint64 row = 0;    ///< in the picture
        qint64 rowCount = 0;
    };

    /// Opens the file anew for the given planes. Raises ImageError if it no longer has that layout. The layout and the
    /// planes must outlive the result.
    [[nodiscard]] static std::unique_ptr<TiffSegments> open(const std::shared_ptr<const RandomAccessFile>& file,
                                                            const TiffLayout& layout, const std::vector<int>& planes);

    virtual ~TiffSegments() = default;
    TiffSegments(const TiffSegments&) = delete;
    TiffSegments& operator=(const TiffSegments&) = delete;

    /// Delivers rows of a segment, each of `TiffLayout::segmentRowBytes` bytes; `into` has just the room for them. For
    /// each plane and column the rows are asked for in order, none left out, and those of one band before the next.
    /// Raises ImageError or FileSystemError.
    virtual void read(const Region& region, std::span<std::byte> into) = 0;

protected:
    TiffSegments() = default;
};

} // namespace orvex::platform
