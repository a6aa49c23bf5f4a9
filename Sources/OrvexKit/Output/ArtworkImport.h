#pragma once

#include "Layout/RollArtwork.h"
#include "Output/ImageMetadata.h"

namespace orvex {

/// A new artwork of an inspected file, with an id of its own and at no position yet: at 100 %, or as wide as the roll
/// allows.
[[nodiscard]] RollArtwork artworkOf(const ImageMetadata& metadata, double rollWidthInches);

/// The same, brought to the nearest size of whole quarter inches on both sides. Raises OrvexError if there is none.
[[nodiscard]] RollArtwork importedArtwork(const ImageMetadata& metadata, double rollWidthInches);

} // namespace orvex
