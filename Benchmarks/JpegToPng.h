#pragma once

#include "Profiles.h"

#include <filesystem>

namespace orvex::samples {

/// Writes exactly the pixels that decoding an RGB JPEG gives as an RGB PNG of 300 pixels per inch, row by row. Raises
/// std::runtime_error.
void jpegToPng(const std::filesystem::path& jpeg, const std::filesystem::path& png, const Bytes& profile);

} // namespace orvex::samples
