#include "SessionServices.h"

#include <QCoroTimer>
#include <QMetaObject>
#include <QTimer>

namespace orvex {

QCoro::Task<> SessionServices::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(std::chrono::ceil<std::chrono::milliseconds>(duration));
    // Whichever thread asks for the stop, the timer belongs to this one.
    const std::stop_callback wake(stop, [&timer] {
        QMetaObject::invokeMethod(
            &timer, [&timer] { timer.start(0); }, Qt::QueuedConnection);
    });
    timer.start();
    if (!stop.stop_requested()) {
        co_await timer;
    }
}

} // namespace orvex
