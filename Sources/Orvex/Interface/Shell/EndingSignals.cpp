#include "EndingSignals.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace orvex {

namespace {

sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&set, number);
    }
    return set;
}

} // namespace

void EndingSignals::block() {
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

EndingSignals::EndingSignals(QObject* parent) : QObject(parent), descriptor_(-1) {
    const sigset_t set = endingSignals();
    descriptor_ = ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor_ < 0) {
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr); // better an end without farewell than none
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo received{};
        if (::read(descriptor_, &received, sizeof received) == sizeof received) {
            Q_EMIT endRequested();
        }
    });
}

EndingSignals::~EndingSignals() {
    notifier_.reset();
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

} // namespace orvex
