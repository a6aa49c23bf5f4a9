#pragma once

#include "BackgroundTask.h"

#include <QSemaphore>

namespace orvex::test {

/// Lets one thread do all background work that somebody waits for, in the order in which it is started.
class OneWorker {
public:
    OneWorker() { platform::userInitiatedPool().setMaxThreadCount(1); }

    ~OneWorker() { platform::userInitiatedPool().setMaxThreadCount(threadCount_); }

    OneWorker(const OneWorker&) = delete;
    OneWorker& operator=(const OneWorker&) = delete;

    /// Waits for the end of all that was started, without a turn of the event loop: nobody has heard of it yet.
    static void finishWork() {
        const auto reached = std::make_shared<QSemaphore>();
        const QFuture<void> last = platform::startUserInitiatedTask([reached] { reached->release(); });
        reached->acquire();
    }

private:
    int threadCount_ = platform::userInitiatedPool().maxThreadCount();
};

} // namespace orvex::test
