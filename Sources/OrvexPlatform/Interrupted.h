#pragma once

#include <exception>
#include <stop_token>

namespace orvex::platform {

/// Long work that ended because it was asked to stop. No failure: nothing is shown.
class Interrupted : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return "interrupted"; }
};

/// Raises Interrupted if a stop has been requested.
inline void throwIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) {
        throw Interrupted();
    }
}

} // namespace orvex::platform
