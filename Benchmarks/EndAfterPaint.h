#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <cstdlib>

namespace orvex::benchmarks {

/// Ends the process, with everything as it is, once a first window has been painted.
class EndAfterPaint : public QObject {
public:
    explicit EndAfterPaint(QApplication& application) { application.installEventFilter(this); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
            QTimer::singleShot(0, [] { std::quick_exit(EXIT_SUCCESS); });
        }
        return false;
    }
};

} // namespace orvex::benchmarks
