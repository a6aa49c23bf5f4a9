#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <functional>
#include <stdexcept>
#include <string>

namespace orvex::test {

/// Asks again and again until the condition holds, and answers what other processes ask meanwhile. Throws
/// std::runtime_error that names what was awaited after a minute: far longer than anything takes on a busy
/// machine.
inline void eventually(const std::string& awaited, const std::function<bool()>& condition) {
    constexpr int patienceMilliseconds = 60'000;
    QElapsedTimer patience;
    patience.start();
    while (!condition()) {
        if (patience.elapsed() > patienceMilliseconds) {
            throw std::runtime_error("waited in vain until " + awaited);
        }
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
}

} // namespace orvex::test
