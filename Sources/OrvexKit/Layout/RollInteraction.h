#pragma once

namespace orvex {

/// The arithmetic of the board's gestures, in inches. Pure and total: bad numbers give a usable answer, never an error.
namespace RollInteraction {

/// The smallest width that a drag reaches.
inline constexpr double minimumWidthInches = 0.1;

/// The image width during a drag of the lower right corner. The drag is projected on the image's diagonal, so that both
/// axes act and the proportions stay. `originX` is the left edge of the trim frame, which limits the width to what the
/// roll holds to its right.
[[nodiscard]] double resizedWidth(double startWidth, double startHeight, double translationX, double translationY,
                                  double originX, double rollWidthInches);

/// The requested top edge of a trim frame, kept within the canvas.
[[nodiscard]] double constrainedMoveY(double requestedY, double trimHeight, double canvasLength);

} // namespace RollInteraction

} // namespace orvex
