#pragma once

#include "Layout/Geometry.h"

#include <QPointF>
#include <QRectF>

namespace orvex {

/// Where the roll lies in the board's viewport. Plain value.
struct BoardGeometry {
    double pointsPerInch = 1.0;
    double widthInches = 0.0;  ///< of the roll
    double lengthInches = 0.0; ///< as it is shown
    QPointF origin;            ///< of the roll's start and left edge, in the viewport

    bool operator==(const BoardGeometry&) const = default;

    [[nodiscard]] double xOf(double inches) const { return origin.x() + inches * pointsPerInch; }

    [[nodiscard]] double yOf(double inches) const { return origin.y() + inches * pointsPerInch; }

    [[nodiscard]] QPointF inchesAt(const QPointF& position) const { return (position - origin) / pointsPerInch; }

    [[nodiscard]] QRectF rectOf(const Rect& inches) const {
        return {xOf(inches.x), yOf(inches.y), inches.width * pointsPerInch, inches.height * pointsPerInch};
    }

    [[nodiscard]] QRectF canvas() const {
        return rectOf({.x = 0.0, .y = 0.0, .width = widthInches, .height = lengthInches});
    }

    /// The mark at the lower right corner of a trim frame by which it is scaled; of a frame too small to hold it, it
    /// stands on the corner.
    [[nodiscard]] static QRectF handleOf(const QRectF& frame);
};

} // namespace orvex
