#pragma once

#include "Imaging/Raster.h"

#include <QByteArray>

#include <cstddef>
#include <optional>
#include <span>

namespace orvex::platform {

/// A PNG file of rows that are in memory. `samples` are `width` x `height` pixels as PixelFormat tells them, gray or
/// RGB of 8 or 16 bits, with or without alpha. The density is noted to the nearest pixel per metre. Raises ImageError
/// for another format, or if the samples are not exactly those of that size. Any thread.
[[nodiscard]] QByteArray encodePng(qint64 width, qint64 height, const PixelFormat& format,
                                   std::span<const std::byte> samples,
                                   std::optional<double> pixelsPerInch = std::nullopt);

} // namespace orvex::platform
