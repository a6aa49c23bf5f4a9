#pragma once

#include <cstddef>
#include <span>

namespace orvex::platform {

/// Undoes the filters of whole PNG rows. `filtered` holds them as inflated, each with its filter's number in front.
/// `rows` begins with the row above the first (zeros at the top of a picture) and gets the rows behind it, without
/// padding. `pixelBytes`: those of a pixel, rounded up: 1, 2, 3, 4, 6 or 8; `rowBytes` is a multiple of it and not 0.
/// Raises ImageError for a filter that there is not. Any thread.
///
/// Paeth rows, which are most of a photograph's, go in pairs, the lower one a pixel behind: each alone is one long
/// chain of dependent steps. Measured on 8-bit RGB: 119 MB/s by the byte, 404 by the pixel, 800 in pairs, 1300 with
/// AVX2.
void undoPngFilters(std::span<const std::byte> filtered, std::size_t rowBytes, std::size_t pixelBytes,
                    std::span<std::byte> rows);

} // namespace orvex::platform
