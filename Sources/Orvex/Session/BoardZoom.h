#pragma once

#include <QString>

#include <algorithm>

namespace orvex {

/// How large the board is shown: a factor on the scale at which the roll's width fits.
namespace BoardZoom {

inline constexpr double least = 0.2;
inline constexpr double most = 3.0;
inline constexpr double step = 1.25;
inline constexpr double fit = 1.0;

[[nodiscard]] constexpr double zoomedIn(double zoom) {
    return std::min(zoom * step, most);
}

[[nodiscard]] constexpr double zoomedOut(double zoom) {
    return std::max(zoom / step, least);
}

/// The factor in whole percent.
[[nodiscard]] inline QString text(double zoom) {
    return QString::asprintf("%.0f%%", zoom * 100.0);
}

} // namespace BoardZoom

} // namespace orvex
