#pragma once

#include "SessionFixture.h"

#include <QSemaphore>

namespace orvex::test {

/// Closes a session whose background work is held up, and lets go of the work when the session has asked it to stop.
inline void closeWhileHeld(std::unique_ptr<OrvexModel>& session, Barrier& barrier) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&barrier] { barrier.release(); }, Qt::QueuedConnection);
    session.reset();
}

/// Lets one thread do all background work that somebody waits for, in the order in which it is started.
class OneWorker {
public:
    /// Waits for the end of what is being done.
    OneWorker() {
        platform::userInitiatedPool().waitForDone();
        platform::userInitiatedPool().setMaxThreadCount(1);
    }

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
