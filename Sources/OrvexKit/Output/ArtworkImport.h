#pragma once

#include "Layout/RollLayout.h"
#include "Output/ImageMetadata.h"

namespace orvex {

/// The artwork that an inspected file becomes on a roll of the given width: at its physical size, or the width of the
/// roll without borders if that is less, brought to the nearest exact quarter-inch size; at the origin and unturned.
/// Raises OrvexError if no such size fits.
[[nodiscard]] RollArtwork importedArtwork(const ImageMetadata& metadata, double rollWidthInches);

} // namespace orvex
