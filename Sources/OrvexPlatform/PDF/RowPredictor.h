#pragma once

#include "Imaging/Raster.h"
#include "PDF/FlateRows.h"

#include <QByteArray>

#include <cstddef>
#include <span>

namespace orvex::platform {

/// The shape of the rows that a predictor makes.
struct PredictedRows {
    qint64 rowBytes = 0;   ///< of the samples alone
    qint64 pixelBytes = 0; ///< the distance of the same sample in the pixel before

    /// With the byte in front of each row that names its filter.
    [[nodiscard]] qint64 strideBytes() const { return rowBytes + 1; }
};

[[nodiscard]] PredictedRows predictedRows(const PixelFormat& format, qint64 widthPixels, Samples samples);

/// Turns whole rows of a raster into the big-endian rows that PDF expects, each with the PNG filter (ISO/IEC 15948, 9)
/// that is likely to make it smaller: Sub, or Up below another row. The first row never refers to one before it, so
/// that strips can be made apart from each other.
[[nodiscard]] QByteArray predictRows(std::span<const std::byte> strip, const PixelFormat& format, qint64 widthPixels,
                                     Samples samples);

} // namespace orvex::platform
