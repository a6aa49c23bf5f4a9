#include "ParallelLoop.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <stdexcept>

namespace orvex {
namespace {

using platform::parallelLoop;

TEST(ParallelLoop, callsTheWorkOnceWithEachNumber) {
    std::array<std::atomic<int>, 1000> calls{};
    parallelLoop(calls.size(), [&](std::size_t number) { ++calls[number]; });
    for (const std::atomic<int>& each : calls) {
        EXPECT_EQ(each, 1);
    }
}

TEST(ParallelLoop, doesNothingForNone) {
    parallelLoop(0, [](std::size_t) { FAIL(); });
}

TEST(ParallelLoop, raisesWhatACallRaisedAndBeginsNoMore) {
    std::atomic<int> calls = 0;
    const auto failAtOnce = [&](std::size_t) {
        ++calls;
        throw std::runtime_error("out of canvas");
    };
    EXPECT_THROW(parallelLoop(1'000'000, failAtOnce), std::runtime_error);
    EXPECT_LT(calls, 1000);
}

} // namespace
} // namespace orvex
