#pragma once

#include "Imaging/PngHeader.h"
#include "Imaging/PngImageData.h"

#include <cstddef>
#include <vector>

namespace orvex::platform {

/// Reads the seven passes of an interlaced PNG and gives its rows as they would be stored without interlacing,
/// unfiltered. Holds the whole picture. Raises ImageError for damaged data or if there is no memory for it;
/// FileSystemError.
[[nodiscard]] std::vector<std::byte> readInterlacedPng(PngInflater& inflater, const PngHeader& header);

} // namespace orvex::platform
