#include "BoardGeometry.h"

#include <algorithm>

namespace orvex {

QRectF BoardGeometry::handleOf(const QRectF& frame) {
    constexpr double side = 24.0;
    constexpr double roomyFrame = 3.0 * side; // leaves the frame a place to be dragged by
    const bool isRoomy = std::min(frame.width(), frame.height()) >= roomyFrame;
    const QPointF offset = isRoomy ? QPointF(side, side) : QPointF(side, side) / 2.0;
    return {frame.bottomRight() - offset, QSizeF(side, side)};
}

} // namespace orvex
