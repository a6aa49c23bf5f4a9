#include "BackgroundTask.h"

#include <QCoreApplication>
#include <QThread>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace orvex::platform {

namespace {

constexpr int fewestUtilityThreads = 4;
constexpr int fewestUserInitiatedThreads = 2;

/// As many threads as the processor has, but no fewer than that. They end with the application object, before libraries
/// take down what they keep for each thread.
class Pool : public QThreadPool {
public:
    Pool(int fewestThreads, QtCleanUpFunction endThreads) {
        setMaxThreadCount(std::max(fewestThreads, QThread::idealThreadCount()));
        qAddPostRoutine(endThreads);
    }
};

} // namespace

void lowerThreadPriority() {
    constexpr int utilityNiceness = 5; // Qt's own thread priorities mean nothing to Linux's usual scheduler
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), utilityNiceness);
}

QThreadPool& utilityPool() {
    static Pool pool(fewestUtilityThreads, [] { utilityPool().waitForDone(); });
    return pool;
}

QThreadPool& userInitiatedPool() {
    static Pool pool(fewestUserInitiatedThreads, [] { userInitiatedPool().waitForDone(); });
    return pool;
}

} // namespace orvex::platform
