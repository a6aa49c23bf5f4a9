#pragma once

#include "Layout/RollLayout.h"

#include <QList>

#include <optional>

namespace orvex {

/// How the board shows the roll: its scale, its length and the marks of its rulers. Pure; any thread.
namespace BoardScale {

/// What the rulers and the space beside the canvas take of the container's width, in points.
inline constexpr double surroundings = 48.0;

/// The least points per inch at zoom 1, however narrow the container is.
inline constexpr double leastPointsPerInch = 1.0;

/// The distance between marks of the ruler across the roll, and the least one along it.
inline constexpr double markInches = 5.0;

/// Points per inch: at zoom 1, the scale at which the roll's width fits the container.
[[nodiscard]] double pointsPerInch(double containerWidth, double rollWidthInches, double zoom);

/// The length of the canvas as it is shown: it does not become shorter in the middle of a gesture, whose frame length
/// this is.
[[nodiscard]] double shownLengthInches(double lengthInches, const std::optional<double>& gestureFrameLength);

/// The marks across the roll, in inches from its left edge.
[[nodiscard]] QList<double> horizontalMarks(double rollWidthInches);

/// The marks along the roll, in inches from its start; some hundreds at most, however long it is.
[[nodiscard]] QList<double> verticalMarks(double lengthInches);

} // namespace BoardScale

} // namespace orvex
