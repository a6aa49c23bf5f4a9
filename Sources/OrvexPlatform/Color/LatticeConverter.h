#pragma once

#include "Color/ColorConverter.h"

namespace orvex::platform {

namespace LatticeLimits {

// Of 65535. A cell that exceeds one of them is left to the exact conversion.

/// How far interpolation may be from the exact colour in the middle of a cell.
inline constexpr int largestMiddleError = 128;

/// How far a sample may be from an end of its range where it lies at that end elsewhere in the cell. Colours bend where
/// they are cut off there, by no more than this.
inline constexpr int largestCutOff = 600;

} // namespace LatticeLimits

/// Converts pixels of three samples of 16 bits by tetrahedral interpolation between exact colours, 1/255 of the range
/// apart, and exactly where the colours between them bend too much. `destination` is RGB or CMYK.
[[nodiscard]] std::unique_ptr<ColorConverter> makeLatticeConverter(ColorModel destination, ExactConversion exact);

} // namespace orvex::platform
