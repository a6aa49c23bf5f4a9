#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace orvex {

/// The system's requests to end, from a closing desktop or a terminal, as an event. Main thread, once for the process.
class EndingSignals : public QObject {
    Q_OBJECT

public:
    /// Keeps the requests for an object of this class. Before any other thread starts.
    static void block();

    explicit EndingSignals(QObject* parent = nullptr);
    ~EndingSignals() override;

Q_SIGNALS:
    void endRequested();

private:
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace orvex
