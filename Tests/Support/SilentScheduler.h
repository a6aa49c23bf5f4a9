#pragma once

#include "PrivateMachine.h"

#include <sys/socket.h>

namespace orvex::test {

/// A socket that programs can connect to; nobody ever answers them.
class SilentSocket {
public:
    /// Throws std::system_error if the address cannot be had.
    SilentSocket(const sockaddr* address, socklen_t addressBytes);
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;
    ~SilentSocket();

    [[nodiscard]] int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

/// What hangs in place of the print scheduler of a private machine: takes every connection and never says a word, until
/// this object ends.
class SilentScheduler {
public:
    SilentScheduler();

    /// Waits until some program has connected. Throws std::runtime_error if none does within a minute.
    void waitForClient();

private:
    EmptiedFolder run_{"/run/cups", 0755, "lp"};
    SilentSocket socket_;
    SilentSocket port_;
};

} // namespace orvex::test
