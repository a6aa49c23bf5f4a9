#include "LargeBlocks.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <memory>
#include <vector>

namespace orvex::platform {

namespace {

constexpr std::size_t blockBytes = std::size_t{8} << 20;

std::unique_ptr<char[]> block(std::size_t bytes) {
    return std::make_unique<char[]>(bytes);
}

} // namespace

TEST(LargeBlocks, GoBackToTheSystemWhateverLiesBehindThem) {
    returnLargeBlocks();
    block(blockBytes).reset(); // from here on the library would keep blocks of this size
    const auto held = ::mallinfo2().arena;
    std::vector<std::unique_ptr<char[]>> behind;
    for (int number = 0; number < 4; ++number) {
        const auto large = block(blockBytes);
        behind.push_back(block(1000));
    }
    EXPECT_LT(::mallinfo2().arena, held + blockBytes);
}

} // namespace orvex::platform
