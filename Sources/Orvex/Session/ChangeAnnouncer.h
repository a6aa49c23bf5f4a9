#pragma once

#include <QObject>

namespace orvex {

/// Collects the changes of one turn of the event loop into one signal. Main thread.
class ChangeAnnouncer : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Something has changed: `changed` follows from the event loop, once however often this is called until then.
    void announce();

Q_SIGNALS:
    void changed();

private:
    bool isPending_ = false;
};

} // namespace orvex
