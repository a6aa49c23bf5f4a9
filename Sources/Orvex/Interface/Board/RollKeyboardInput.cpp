#include "RollKeyboardInput.h"

#include "Controls/LinkLabel.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTextEdit>
#include <QTimer>

namespace orvex {

namespace {

constexpr Qt::KeyboardModifiers otherCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

std::optional<RollNudgeDirection> directionOf(int key) {
    switch (key) {
    case Qt::Key_Left:
        return RollNudgeDirection::left;
    case Qt::Key_Right:
        return RollNudgeDirection::right;
    case Qt::Key_Up:
        return RollNudgeDirection::up;
    case Qt::Key_Down:
        return RollNudgeDirection::down;
    default:
        return std::nullopt;
    }
}

/// The key itself, so that two keys with the same arrow are two.
quint32 keyOf(const QKeyEvent& event) {
    return event.nativeScanCode() != 0 ? event.nativeScanCode() : static_cast<quint32>(event.key());
}

/// Keys that only change what others mean.
bool isHarmlessModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_CapsLock || key == Qt::Key_NumLock || key == Qt::Key_ScrollLock;
}

/// Whether someone types or chooses there.
bool isControl(const QWidget* widget) {
    return qobject_cast<const QLineEdit*>(widget) != nullptr || qobject_cast<const QTextEdit*>(widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
           qobject_cast<const QComboBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractButton*>(widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(widget) != nullptr || qobject_cast<const QTabBar*>(widget) != nullptr ||
           qobject_cast<const LinkLabel*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

} // namespace

RollKeyboardResponderView::RollKeyboardResponderView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    observeWindow();
}

RollKeyboardResponderView::~RollKeyboardResponderView() {
    stop();
}

void RollKeyboardResponderView::take(const RollKeyboardInput& input) {
    moveHandler_ = input.onMove;
    endHandler_ = input.onEnd;
    setInputEnabled(input.isEnabled);
    takeFocusRequest(input.focusRequest);
    if (pendingFocusRequest_ && inputEnabled_) {
        scheduleFocusRequest();
    }
}

void RollKeyboardResponderView::setInputEnabled(bool enabled) {
    const bool isSwitchedOff = inputEnabled_ && !enabled;
    inputEnabled_ = enabled;
    setFocusPolicy(enabled ? Qt::TabFocus : Qt::NoFocus);
    if (isSwitchedOff) {
        finishNudge();
    }
}

void RollKeyboardResponderView::takeFocusRequest(int request) {
    if (request == lastFocusRequest_) {
        return;
    }
    lastFocusRequest_ = request;
    if (request < 1) {
        pendingFocusRequest_.reset();
        return;
    }
    pendingFocusRequest_ = request;
    pendingFocusWasDeferred_ = !inputEnabled_;
}

void RollKeyboardResponderView::stop() {
    pendingFocusRequest_.reset();
    inputEnabled_ = false;
    finishNudge();
    if (observedWindow_) {
        observedWindow_->removeEventFilter(this);
        observedWindow_.clear();
    }
}

/// The keyboard is never taken in the middle of an update.
void RollKeyboardResponderView::scheduleFocusRequest() {
    QMetaObject::invokeMethod(this, &RollKeyboardResponderView::applyPendingFocusRequest, Qt::QueuedConnection);
}

void RollKeyboardResponderView::applyPendingFocusRequest() {
    if (!inputEnabled_ || !pendingFocusRequest_ || !isWindowActive()) {
        return;
    }
    const QWidget* responder = window()->focusWidget();
    pendingFocusRequest_.reset();
    const bool isDeferred = std::exchange(pendingFocusWasDeferred_, false);
    if (isDeferred && responder != this && isControl(responder)) {
        return; // the request must not take the keyboard from a field that is being typed in
    }
    if (responder != this && isVisible()) {
        setFocus(Qt::OtherFocusReason);
    }
}

bool RollKeyboardResponderView::isWindowActive() const {
    return window() == QApplication::activeWindow() && QApplication::activeModalWidget() == nullptr &&
           QApplication::activePopupWidget() == nullptr;
}

bool RollKeyboardResponderView::canHandleKeyboard() const {
    return inputEnabled_ && hasFocus() && isWindowActive();
}

void RollKeyboardResponderView::keyPressEvent(QKeyEvent* event) {
    const auto direction = directionOf(event->key());
    if (canHandleKeyboard() && direction && !(event->modifiers() & otherCommands)) {
        press(keyOf(*event));
        moveHandler_(*direction, event->modifiers().testFlag(Qt::ShiftModifier));
        event->accept();
        return;
    }
    if (!isHarmlessModifier(event->key())) {
        finishNudge();
    }
    QWidget::keyPressEvent(event);
}

void RollKeyboardResponderView::keyReleaseEvent(QKeyEvent* event) {
    const quint32 key = keyOf(*event);
    if (!pressedArrowKeys_.contains(key)) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    event->accept();
    if (!event->isAutoRepeat()) {
        release(key);
    }
}

void RollKeyboardResponderView::press(quint32 key) {
    const bool isAllReleased = releases_.size() == pressedArrowKeys_.size();
    if (isAllReleased && !releases_.contains(key)) {
        finishNudge(); // no press of another key takes a release back
    }
    releases_.remove(key);
    pressedArrowKeys_.insert(key);
}

void RollKeyboardResponderView::release(quint32 key) {
    const int number = ++lastRelease_;
    releases_.insert(key, number);
    QTimer::singleShot(releaseGraceMilliseconds, this, [this, key, number] {
        if (releases_.value(key) == number) {
            finishRelease(key);
        }
    });
}

void RollKeyboardResponderView::finishRelease(quint32 key) {
    releases_.remove(key);
    pressedArrowKeys_.remove(key);
    if (pressedArrowKeys_.isEmpty()) {
        endHandler_();
    }
}

void RollKeyboardResponderView::finishNudge() {
    releases_.clear();
    if (pressedArrowKeys_.isEmpty()) {
        return;
    }
    pressedArrowKeys_.clear();
    endHandler_();
}

void RollKeyboardResponderView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    Q_EMIT focusChanged();
}

void RollKeyboardResponderView::focusOutEvent(QFocusEvent* event) {
    finishNudge();
    QWidget::focusOutEvent(event);
    Q_EMIT focusChanged();
}

// The window

bool RollKeyboardResponderView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ParentAboutToChange:
        finishNudge();
        break;
    case QEvent::ParentChange:
    case QEvent::Show:
        observeWindow();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

/// A key whose release can no longer arrive ends the run all the same.
bool RollKeyboardResponderView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == observedWindow_) {
        switch (event->type()) {
        case QEvent::WindowDeactivate:
        case QEvent::WindowBlocked:
        case QEvent::Close:
            finishNudge();
            break;
        case QEvent::WindowActivate:
            if (pendingFocusRequest_ && inputEnabled_) {
                scheduleFocusRequest();
            }
            break;
        default:
            break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void RollKeyboardResponderView::observeWindow() {
    if (observedWindow_ == window()) {
        return;
    }
    finishNudge();
    if (observedWindow_) {
        observedWindow_->removeEventFilter(this);
    }
    observedWindow_ = window();
    observedWindow_->installEventFilter(this);
    if (pendingFocusRequest_) {
        scheduleFocusRequest();
    }
}

} // namespace orvex
