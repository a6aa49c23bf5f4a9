#pragma once

#include "Failure.h"

namespace orvex {

/// The one error of the kit: a refusal whose message is ready to show, in the language current when it was built.
class OrvexError : public Failure {
public:
    [[nodiscard]] static OrvexError invalid(const QString& message) { return OrvexError(message); }

    bool operator==(const OrvexError& other) const { return message() == other.message(); }

private:
    explicit OrvexError(const QString& message) : Failure(message) {}
};

} // namespace orvex
