#pragma once

#include <QString>

#include <optional>

namespace orvex {

/// When an error message is worth an alert. The refresh of the printers fails anew every half minute as long as its
/// reason lasts; who has dismissed the alert knows, and sees it in the sidebar. Main thread.
class AlertRules {
public:
    /// What the last reading of the printers failed with, if it did; to be told whenever that may have changed.
    void refreshed(const std::optional<QString>& lastRefreshError);

    [[nodiscard]] bool isWorthAlert(const QString& message) const { return message != seenRefreshFailure_; }

    /// The user has seen this message.
    void dismissed(const QString& message, const std::optional<QString>& lastRefreshError);

private:
    std::optional<QString> seenRefreshFailure_;
};

} // namespace orvex
