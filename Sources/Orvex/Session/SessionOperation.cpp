#include "SessionOperation.h"

#include "OrvexModel.h"

#include <mutex>

namespace orvex {

/// Hands the latest progress over to the main thread.
class SessionOperation::Relay : public std::enable_shared_from_this<Relay> {
public:
    Relay(OrvexModel& session, SessionOperation& operation) : session_(session), operation_(&operation) {}

    /// On the main thread; nothing is shown any more.
    void close() { operation_ = nullptr; }

    void post(const SessionProgress& progress) {
        const std::scoped_lock lock(mutex_);
        latest_ = progress;
        if (isPosted_) {
            return;
        }
        isPosted_ = true;
        QMetaObject::invokeMethod(
            &session_, [self = shared_from_this()] { self->deliver(); }, Qt::QueuedConnection);
    }

private:
    void deliver() {
        const SessionProgress progress = take();
        if (operation_ != nullptr) {
            operation_->show(progress);
        }
    }

    SessionProgress take() {
        const std::scoped_lock lock(mutex_);
        isPosted_ = false;
        return latest_;
    }

    OrvexModel& session_; // outlives the work, whose end it awaits
    SessionOperation* operation_;
    std::mutex mutex_;
    SessionProgress latest_;
    bool isPosted_ = false;
};

SessionOperation::SessionOperation(OrvexModel& session, Cancelling cancelling)
    : session_(session),
      cancelling_(cancelling),
      relay_(std::make_shared<Relay>(session, *this)) {
    session_.endKeyboardNudge();
    session_.operations_.append(this);
    session_.busy.set(true);
    if (session_.closing_.stop_requested()) {
        stop_.request_stop();
    }
}

SessionOperation::~SessionOperation() {
    relay_->close();
    session_.operations_.removeOne(this);
    const bool isLast = session_.operations_.isEmpty();
    session_.progress.set(isLast ? std::nullopt : session_.operations_.last()->shown_);
    session_.busy.set(!isLast);
}

void SessionOperation::requestStop() {
    stop_.request_stop();
    if (shown_) {
        show(*shown_);
    }
}

void SessionOperation::show(SessionProgress progress) {
    progress.isCancellable = isCancellable() && !stop_.stop_requested();
    shown_ = progress;
    session_.progress.set(shown_);
}

void SessionOperation::hideProgress() {
    shown_.reset();
    session_.progress.set(std::nullopt);
}

std::function<void(const SessionProgress&)> SessionOperation::report() {
    return [relay = relay_](const SessionProgress& progress) { relay->post(progress); };
}

} // namespace orvex
