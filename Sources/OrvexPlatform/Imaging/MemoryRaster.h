#pragma once

#include "Imaging/Raster.h"

namespace orvex::platform {

/// An upright raster whose pixels are in memory: `bytes` are its rows from the top, without padding. Copies of the
/// raster share them.
[[nodiscard]] Raster memoryRaster(qint64 width, qint64 height, PixelFormat format, std::optional<QByteArray> iccProfile,
                                  QByteArray bytes);

} // namespace orvex::platform
