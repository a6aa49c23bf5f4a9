#include "FocusKeeper.h"

#include <QApplication>
#include <QEvent>

namespace orvex {

FocusKeeper::FocusKeeper(QWidget& window) : QObject(&window), window_(window) {
    connect(qApp, &QApplication::focusChanged, this, &FocusKeeper::noteFocus);
}

/// A control that is disabled hands the keyboard on to the next one, which may be disabled at once, too.
void FocusKeeper::noteFocus(QWidget* before, QWidget* now) {
    const bool isAway = now != nullptr ? now->window() != &window_ : !window_.isActiveWindow();
    if (isAway) {
        return; // in another window; this one keeps the place of its keyboard
    }
    const bool wasDisabled = before != nullptr && before->window() == &window_ && !before->isEnabled();
    if (wasDisabled && (lost_ == nullptr || before == holder_)) {
        remember(lost_ != nullptr ? lost_.data() : before);
        holder_ = now;
    } else if (now != holder_) {
        forget();
    }
}

void FocusKeeper::remember(QWidget* lost) {
    if (lost == lost_) {
        return;
    }
    forget();
    lost_ = lost;
    lost_->installEventFilter(this);
}

void FocusKeeper::forget() {
    if (lost_) {
        lost_->removeEventFilter(this);
    }
    lost_.clear();
    holder_.clear();
}

bool FocusKeeper::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lost_ && event->type() == QEvent::EnabledChange && lost_->isEnabled()) {
        // Others are enabled in the same turn, and may be disabled again.
        QMetaObject::invokeMethod(this, &FocusKeeper::giveBack, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void FocusKeeper::giveBack() {
    if (lost_ == nullptr || !lost_->isEnabled()) {
        return;
    }
    QWidget* lost = lost_;
    const bool isUntouched = window_.focusWidget() == holder_;
    forget();
    if (isUntouched && lost->isVisible()) {
        lost->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace orvex
