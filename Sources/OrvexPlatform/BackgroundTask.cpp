#include "BackgroundTask.h"

#include <QThread>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace orvex::platform {

namespace {

constexpr int fewestThreads = 4;

class UtilityPool : public QThreadPool {
public:
    UtilityPool() { setMaxThreadCount(std::max(fewestThreads, QThread::idealThreadCount())); }
};

} // namespace

void lowerThreadPriority() {
    constexpr int utilityNiceness = 5; // Qt's own thread priorities mean nothing to Linux's usual scheduler
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), utilityNiceness);
}

QThreadPool& utilityPool() {
    static UtilityPool pool;
    return pool;
}

} // namespace orvex::platform
