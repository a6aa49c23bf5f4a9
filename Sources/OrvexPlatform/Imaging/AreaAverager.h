#pragma once

#include "Imaging/Raster.h"

namespace orvex::platform {

/// Makes a picture smaller by averaging: a target pixel is the mean of the source area that it covers, pixels on the
/// edge of that area counting by the part of them that lies in it. Colours count by their alpha; where that is 0
/// throughout, they are 0. Holds one row of sums as wide as the source. One thread.
class AreaAverager {
public:
    /// Receives the finished rows in order, in the source's format.
    using RowWriter = std::function<void(qint64 row, std::span<const std::byte> pixels)>;

    struct Size {
        qint64 width = 0;
        qint64 height = 0;
    };

    /// All sides are at least 1; no side of the target is longer than the source's.
    [[nodiscard]] static std::unique_ptr<AreaAverager> make(const PixelFormat& format, Size source, Size target,
                                                            RowWriter writer);

    AreaAverager() = default;
    AreaAverager(const AreaAverager&) = delete;
    AreaAverager& operator=(const AreaAverager&) = delete;
    virtual ~AreaAverager() = default;

    /// Takes the next rows of the source, in order from the top.
    virtual void add(const RowStrip& strip) = 0;
};

} // namespace orvex::platform
