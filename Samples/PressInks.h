#pragma once

#include <array>

namespace orvex::samples {

using Inks = std::array<double, 4>; ///< cyan, magenta, yellow, black: 0 for none, 1 for solid
using Xyz = std::array<double, 3>;  ///< relative to D50 white paper

/// What four halftoned inks on coated paper look like.
[[nodiscard]] Xyz printed(const Inks& inks);

/// The inks that look like a colour, or come near it if the press cannot print it.
[[nodiscard]] Inks separated(const Xyz& color);

} // namespace orvex::samples
