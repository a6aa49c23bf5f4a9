#include "LargeBlocks.h"

#include <malloc.h>

namespace orvex::platform {

void returnLargeBlocks() {
    constexpr int largeBytes = 1 << 18; // being set keeps it from growing
    ::mallopt(M_MMAP_THRESHOLD, largeBytes);
}

} // namespace orvex::platform
