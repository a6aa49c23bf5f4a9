#include "AlertRules.h"

namespace orvex {

void AlertRules::refreshed(const std::optional<QString>& lastRefreshError) {
    if (!lastRefreshError) {
        seenRefreshFailure_.reset(); // the next failure is a new one
    }
}

void AlertRules::dismissed(const QString& message, const std::optional<QString>& lastRefreshError) {
    if (lastRefreshError && !lastRefreshError->isEmpty() && message.endsWith(*lastRefreshError)) {
        seenRefreshFailure_ = message;
    }
}

} // namespace orvex
