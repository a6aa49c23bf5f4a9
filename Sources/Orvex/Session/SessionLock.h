#pragma once

#include "Files/FolderLock.h"

#include <QUrl>

#include <chrono>
#include <optional>

namespace orvex {

/// The right to change what the stores hold, which one process at a time has for a folder: the window from its start to
/// its end, the command line for the moments of a change. Reading needs no lock. One thread at a time.
class SessionLock {
public:
    enum class State {
        held,
        heldByAnother,
        impossible, ///< the folder cannot be made or locked, in a home that is read-only or missing, say
    };

    /// How long a lock that another process holds is asked for again: the command line gives it back within that time.
    static constexpr std::chrono::milliseconds patience{1000};

    /// Locks the given folder, or else the application folder, which is made if it is missing. Waits while another
    /// holds it, for as long as `patience`. Raises nothing.
    [[nodiscard]] static SessionLock acquire(const std::optional<QUrl>& directory = std::nullopt);

    [[nodiscard]] State state() const { return state_; }

private:
    explicit SessionLock(State state) : state_(state) {}

    explicit SessionLock(platform::FolderLock lock) : state_(State::held), lock_(std::move(lock)) {}

    State state_;
    std::optional<platform::FolderLock> lock_;
};

} // namespace orvex
