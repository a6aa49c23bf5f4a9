#pragma once

#include "Imaging/Raster.h"
#include "Imaging/RowProgress.h"

#include <QByteArrayView>

#include <functional>
#include <stop_token>

namespace orvex::platform {

/// Which samples of a pixel go into a stream.
enum class Samples { colours, alpha };

/// The bits of each component that a PDF image of this raster has: 8 or 16. Sixteen is the most that PDF knows, so
/// 32-bit and floating-point samples (clamped to 0 to 1) are rounded to it.
[[nodiscard]] int pdfBitsPerComponent(const PixelFormat& format);

/// Decodes a raster and hands over its samples as one zlib stream (RFC 1950) of rows with PNG predictors, big-endian,
/// in pieces and in order.
///
/// Every strip is predicted and compressed for itself, on as many threads as the processor has, and the pieces are
/// joined in order: the bytes depend on the raster alone. Only a few strips are in flight at any time, and as many
/// more as `largestCompressingThreads`. Both functions are called on the calling thread; `progress` is told of the rows
/// that `output` has. Raises what decoding raises, what they raise, and Interrupted once a stop is requested.
void flateRows(const Raster& raster, Samples samples, const std::function<void(QByteArrayView)>& output,
               const std::stop_token& stop, const RowProgress& progress = {});

/// However many threads the processor has: each holds a strip three times over, and decoding keeps no more of them
/// busy.
inline constexpr unsigned largestCompressingThreads = 8;

} // namespace orvex::platform
