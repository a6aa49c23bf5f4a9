#pragma once

#include "Profiles.h"

namespace orvex::samples {

/// An EXIF block from its TIFF header on: orientation, a density in pixels per inch, and sRGB as the colour space if
/// asked for.
[[nodiscard]] Bytes exifBlock(int orientation, int pixelsPerInch, bool declaresSRgb = false);

} // namespace orvex::samples
