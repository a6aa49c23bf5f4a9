#pragma once

#include "Layout/Geometry.h"

namespace orvex {

/// An affine map of the plane as PDF writes it: x' = a x + c y + e, y' = b x + d y + f.
struct PageTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    /// This map first, then the other.
    [[nodiscard]] PageTransform then(const PageTransform& next) const;

    bool operator==(const PageTransform&) const = default;
};

/// Maps the unit square of a stored picture (its first row at the top, y upward) to that of the upright picture, for an
/// orientation of 1 to 8 as EXIF numbers it.
[[nodiscard]] PageTransform uprightTransform(int orientation);

/// Maps the unit square of an upright picture into `rect` (page points, y upward), turned clockwise about its centre by
/// quarter turns (0 to 3). For an odd number the picture's own width is the rectangle's height.
[[nodiscard]] PageTransform placementTransform(const Rect& rect, qint64 quarterTurns);

} // namespace orvex
