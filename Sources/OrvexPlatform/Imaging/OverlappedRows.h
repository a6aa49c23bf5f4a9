#pragma once

#include "Imaging/Raster.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace orvex::platform {

/// Delivers a raster's rows as `Raster::rows` does, but decodes them in a thread of its own while the sink works on the
/// calling thread. At most `stripsInFlight` strips are held. Raises what the decoder raises, after the rows before it
/// were delivered, and what the sink raises, which stops the decoder at its next strip.
void overlappedRows(const Raster& raster, const RowSink& sink);

/// A strip that its holder may keep.
struct OwnedStrip {
    qint64 firstRow = 0;
    qint64 rowCount = 0;
    std::vector<std::byte> bytes;
};

/// The same for a sink that works on the strips later, and bounds their number itself.
void overlappedStrips(const Raster& raster, const std::function<void(OwnedStrip)>& sink);

/// The strips that may be decoded and not yet consumed, the one that the sink works on included.
inline constexpr int stripsInFlight = 3;

} // namespace orvex::platform
