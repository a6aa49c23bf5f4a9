#pragma once

#include "Picture.h"

#include <cstdint>

namespace orvex::samples {

/// A picture that burdens codecs as a photograph does: smooth noise of all sizes with the spectrum of natural scenes,
/// stronger in some places than in others as focus is; hard-edged shapes; weak colour; grain that grows with
/// brightness. Rows are made on demand, so the size costs no memory.
[[nodiscard]] Picture photograph(int width, int height, std::uint64_t seed);

} // namespace orvex::samples
