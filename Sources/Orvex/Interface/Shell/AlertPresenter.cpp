#include "AlertPresenter.h"

#include "Board/RollKeyboardInput.h"

#include <QApplication>

namespace orvex {

namespace {

constexpr int retryMilliseconds = 100; // until what an alert has to wait for is over

} // namespace

AlertPresenter::AlertPresenter(OrvexModel& session, QWidget& window)
    : QObject(&window),
      session_(session),
      window_(window) {
    retry_.setSingleShot(true);
    retry_.setInterval(retryMilliseconds);
    connect(&session_, &OrvexModel::changed, this, &AlertPresenter::syncFromSession);
    connect(&retry_, &QTimer::timeout, this, &AlertPresenter::syncFromSession);
}

AlertPresenter::~AlertPresenter() {
    delete alert_;
}

void AlertPresenter::syncFromSession() {
    const std::optional<QString> message = session_.errorMessage();
    rules_.refreshed(session_.printerReadings().lastRefreshError);
    if (!message) {
        return; // an alert that is open stays until it was read
    }
    if (!rules_.isWorthAlert(*message)) {
        session_.dismissError();
    } else if (alert_) {
        alert_->setMessage(*message);
    } else if (mustWait()) {
        retry_.start();
    } else {
        show(*message);
    }
}

/// Whether the user is in the middle of something that an alert would break off or hide.
bool AlertPresenter::mustWait() const {
    const auto* keyboard = window_.findChild<RollKeyboardResponderView*>();
    const bool isMoving = session_.arrangingGesture() || (keyboard != nullptr && keyboard->isNudging());
    return !window_.isVisible() || isMoving || QApplication::activeModalWidget() != nullptr ||
           QApplication::activePopupWidget() != nullptr;
}

void AlertPresenter::show(const QString& text) {
    alert_ = new AlertView(text, &window_);
    alert_->setAttribute(Qt::WA_DeleteOnClose);
    connect(alert_, &QDialog::finished, this, &AlertPresenter::dismissed);
    alert_->open();
}

void AlertPresenter::dismissed() {
    const QString message = alert_->message();
    alert_ = nullptr;
    rules_.dismissed(message, session_.printerReadings().lastRefreshError);
    if (session_.errorMessage() == message) {
        session_.dismissError();
    }
    syncFromSession(); // another message may have come meanwhile
}

} // namespace orvex
