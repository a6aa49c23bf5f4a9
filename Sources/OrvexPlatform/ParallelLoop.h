#pragma once

#include <cstddef>
#include <functional>

namespace orvex::platform {

/// Calls `work` with each number below `count`, spread over the processor's threads in no fixed order, and returns when
/// all calls have ended. Raises what one of the calls raised, if any did; the numbers not yet begun are then left out.
void parallelLoop(std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace orvex::platform
