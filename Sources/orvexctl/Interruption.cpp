#include "Interruption.h"

#include "CommandLine.h"
#include "Files/LiveTemporaries.h"

#include <pthread.h>

#include <csignal>
#include <ctime>

namespace orvex {

namespace {

constexpr int wakeSignal = SIGUSR1; // ends the watcher's wait; blocked in it and used for nothing else
constexpr timespec graceTime{.tv_sec = 1, .tv_nsec = 500'000'000};

sigset_t signals(std::initializer_list<int> numbers) {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers) {
        sigaddset(&set, number);
    }
    return set;
}

/// A blocked signal arrives even if the caller has it ignored: one that is to outlive its terminal is left alone.
sigset_t endingSignals() {
    struct sigaction hangup {};

    const bool isHangupIgnored = ::sigaction(SIGHUP, nullptr, &hangup) == 0 && hangup.sa_handler == SIG_IGN;
    return isHangupIgnored ? signals({SIGINT, SIGTERM}) : signals({SIGINT, SIGTERM, SIGHUP});
}

} // namespace

void Interruption::blockSignals() {
    const sigset_t ending = endingSignals();
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
}

Interruption::Interruption() {
    const sigset_t wake = signals({wakeSignal});
    pthread_sigmask(SIG_BLOCK, &wake, nullptr);
    watcher_ = std::thread([this] { watch(); });
}

Interruption::~Interruption() {
    ended_.request_stop();
    pthread_kill(watcher_.native_handle(), wakeSignal);
    watcher_.join();
}

void Interruption::watch() {
    sigset_t awaited = endingSignals();
    sigaddset(&awaited, wakeSignal);
    int received = 0;
    while (sigwait(&awaited, &received) == 0 && received == wakeSignal) {
        if (ended_.stop_requested()) {
            return;
        }
    }
    stop_.request_stop();
    const sigset_t wake = signals({wakeSignal});
    if (sigtimedwait(&wake, nullptr, &graceTime) != wakeSignal) {
        platform::LiveTemporaries::removeAllAndExit(exitInterrupted);
    }
}

} // namespace orvex
