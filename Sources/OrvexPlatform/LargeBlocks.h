#pragma once

namespace orvex::platform {

/// From now on the system gets the memory of large blocks back as soon as they are freed. By itself, the C library
/// would keep ever larger ones for its next needs, in pieces that fit worse and worse: pictures that come and go took a
/// hundred megabytes more. For `main`, before other threads.
void returnLargeBlocks();

} // namespace orvex::platform
