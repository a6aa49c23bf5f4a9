#pragma once

#include "Files/RandomAccessFile.h"
#include "Imaging/ImageSource.h"

#include <memory>

namespace orvex::platform {

// One opener for each container; each is given a file whose first bytes are its own. All raise ImageError.

[[nodiscard]] std::unique_ptr<ImageSource> openJpeg(std::shared_ptr<const RandomAccessFile> file);
[[nodiscard]] std::unique_ptr<ImageSource> openPng(std::shared_ptr<const RandomAccessFile> file);
[[nodiscard]] std::unique_ptr<ImageSource> openTiff(std::shared_ptr<const RandomAccessFile> file);
[[nodiscard]] std::unique_ptr<ImageSource> openHeif(std::shared_ptr<const RandomAccessFile> file);

} // namespace orvex::platform
