#pragma once

#include <cstdint>
#include <vector>

namespace orvex::samples {

using Bytes = std::vector<std::uint8_t>;

// ICC profiles, made from their colorimetry; the same bytes at every call.

[[nodiscard]] const Bytes& sRgbProfile();
[[nodiscard]] const Bytes& wideGamutProfile();
[[nodiscard]] const Bytes& displayP3Profile();
[[nodiscard]] const Bytes& grayProfile();

/// A coated-paper press: four halftoned inks, with black generation.
[[nodiscard]] const Bytes& pressProfile();

} // namespace orvex::samples
