#pragma once

#include "Failure.h"

#include <optional>

namespace orvex {

/// The one error of the kit: a refusal whose message is ready to show, in the language current when it was built.
class OrvexError : public Failure {
public:
    [[nodiscard]] static OrvexError invalid(const QString& message) { return OrvexError(message); }

    bool operator==(const OrvexError& other) const { return message() == other.message(); }

private:
    explicit OrvexError(const QString& message) : Failure(message) {}
};

/// Raises OrvexError with the message of a validator, if there is one.
inline void refuse(const std::optional<QString>& message) {
    if (message) {
        throw OrvexError::invalid(*message);
    }
}

} // namespace orvex
