#pragma once

#include <stop_token>
#include <thread>

namespace orvex {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into a stop request. A command that does not
/// end within the grace time is ended with the process; its temporary files are removed first.
class Interruption {
public:
    /// Blocks these signals, so that only the watching thread receives them. To be called before any thread is made.
    static void blockSignals();

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    [[nodiscard]] std::stop_token token() const { return stop_.get_token(); }

private:
    void watch();

    std::stop_source stop_;
    std::stop_source ended_;
    std::thread watcher_;
};

} // namespace orvex
