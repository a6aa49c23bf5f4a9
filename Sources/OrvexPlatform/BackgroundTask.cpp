#include "BackgroundTask.h"

#include <QThread>

#include <algorithm>

namespace orvex::platform {

namespace {

constexpr int fewestThreads = 4;

class UtilityPool : public QThreadPool {
public:
    UtilityPool() {
        setMaxThreadCount(std::max(fewestThreads, QThread::idealThreadCount()));
        setThreadPriority(QThread::LowPriority);
    }
};

} // namespace

QThreadPool& utilityPool() {
    static UtilityPool pool;
    return pool;
}

} // namespace orvex::platform
