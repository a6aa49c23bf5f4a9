#include "ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace orvex::platform {

void parallelLoop(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> begun = 0;
    const auto workOn = [&] {
        try {
            for (std::size_t number = begun++; number < count; number = begun++) {
                work(number);
            }
        } catch (...) {
            begun = count;
            throw;
        }
    };
    const std::size_t threads = std::min<std::size_t>(count, std::max(std::thread::hardware_concurrency(), 1U));
    std::vector<std::future<void>> others; // which end before this function, in whatever way it ends
    for (std::size_t thread = 1; thread < threads; ++thread) {
        // Where the system has no thread to give, this one does all the work.
        others.push_back(std::async(std::launch::async | std::launch::deferred, workOn));
    }
    workOn();
    for (std::future<void>& other : others) {
        other.get();
    }
}

} // namespace orvex::platform
