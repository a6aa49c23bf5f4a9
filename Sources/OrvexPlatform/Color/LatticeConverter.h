#pragma once

#include "Color/ColorConverter.h"

namespace orvex::platform {

namespace LatticeLimits {

// A cell that exceeds one of them is left to a finer lattice, and one of the finest to the exact conversion.

/// How far interpolation may be from the exact colour at any of the five places where a cell is checked, of 65535.
inline constexpr int largestCheckedError = 160;

/// How far it may be from it in the middle of a cell that needs no further checks, of 65535.
inline constexpr int largestStraightError = 16;

/// How far a sample may be from an end of its range where it lies at that end elsewhere in the cell, of 65535. Colours
/// bend where they are cut off there.
inline constexpr int largestCutOff = 600;

/// How much a sample may change within a cell elsewhere, for each step of the source samples along the cell: what
/// changes more is likely to bend more than the checks tell.
inline constexpr int largestChangePerStep = 10;

} // namespace LatticeLimits

/// Converts pixels of three samples of 16 bits by tetrahedral interpolation between exact colours: 1/85 of the range
/// apart, where colours bend too much for that 1/255, and exactly where they bend too much even then. `destination` is
/// RGB or CMYK.
[[nodiscard]] std::unique_ptr<ColorConverter> makeLatticeConverter(ColorModel destination,
                                                                   const ExactConversion& exact);

} // namespace orvex::platform
