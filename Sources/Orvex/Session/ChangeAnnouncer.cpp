#include "ChangeAnnouncer.h"

#include <QMetaObject>

namespace orvex {

void ChangeAnnouncer::announce() {
    if (isPending_) {
        return;
    }
    isPending_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isPending_ = false; // first, so that what a listener changes is announced again
            Q_EMIT changed();
        },
        Qt::QueuedConnection);
}

} // namespace orvex
