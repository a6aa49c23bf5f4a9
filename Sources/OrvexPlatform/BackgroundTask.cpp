#include "BackgroundTask.h"

#include <QThread>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace orvex::platform {

namespace {

constexpr int fewestUtilityThreads = 4;
constexpr int fewestUserInitiatedThreads = 2;

/// As many threads as the processor has, but no fewer than that.
class Pool : public QThreadPool {
public:
    explicit Pool(int fewestThreads) { setMaxThreadCount(std::max(fewestThreads, QThread::idealThreadCount())); }
};

} // namespace

void lowerThreadPriority() {
    constexpr int utilityNiceness = 5; // Qt's own thread priorities mean nothing to Linux's usual scheduler
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), utilityNiceness);
}

QThreadPool& utilityPool() {
    static Pool pool(fewestUtilityThreads);
    return pool;
}

QThreadPool& userInitiatedPool() {
    static Pool pool(fewestUserInitiatedThreads);
    return pool;
}

} // namespace orvex::platform
