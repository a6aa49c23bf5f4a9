#pragma once

#include <QString>

#include <optional>

namespace orvex {

/// What a tool left. A failure to start it is a result, too.
struct InspectionResult {
    /// What the tool wrote on both streams, in the order of arrival, up to the limit, with invalid UTF-8 replaced by
    /// U+FFFD; or why it could not be started.
    QString output;
    std::optional<qint32> status; ///< absent if the tool was not started, or still ran when it was given up
    bool timedOut = false;        ///< the tool was stopped, at the deadline or because the pass was cancelled
    bool truncated = false;       ///< the tool wrote more than the limit

    /// Whether the tool ended well and all of its output is there.
    [[nodiscard]] bool isClean() const { return status == 0 && !timedOut && !truncated; }

    /// For the user, what went wrong with a result that is not clean: `context`, what the program knows, and the first
    /// 1500 characters of the tool's own words, joined by blanks.
    [[nodiscard]] QString diagnostic(const QString& context) const;

    bool operator==(const InspectionResult&) const = default;
};

} // namespace orvex
