#pragma once

#include "SessionProgress.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace orvex {

class OrvexModel;

/// Work that holds the session: it is busy for as long as one of these lives. Main thread.
class SessionOperation {
public:
    /// Whether `OrvexModel::cancelOperation` asks the work to stop; closing the session always does.
    enum class Cancelling { impossible, possible };

    /// Finishes a run of keyboard nudges first.
    explicit SessionOperation(OrvexModel& session, Cancelling cancelling = Cancelling::impossible);
    ~SessionOperation();

    SessionOperation(const SessionOperation&) = delete;
    SessionOperation& operator=(const SessionOperation&) = delete;

    [[nodiscard]] bool isCancellable() const { return cancelling_ == Cancelling::possible; }

    [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }

    /// The progress, from then on, says that it cannot be cancelled: that is done.
    void requestStop();

    /// Shows how far the work has come.
    void show(SessionProgress progress);

    /// Shows it no longer; what is left to do depends on the user.
    void hideProgress();

    /// The same as `show` from any thread, for as long as this lives; what comes faster than the event loop turns is
    /// passed over.
    [[nodiscard]] std::function<void(const SessionProgress&)> report();

private:
    class Relay;

    OrvexModel& session_;
    Cancelling cancelling_;
    std::stop_source stop_;
    std::optional<SessionProgress> shown_;
    std::shared_ptr<Relay> relay_;
};

} // namespace orvex
