#pragma once

#include "Failure.h"

namespace orvex::platform {

/// A PDF that cannot be read or written. The message is ready to show.
class PdfError : public Failure {
public:
    explicit PdfError(const QString& message) : Failure(message) {}
};

} // namespace orvex::platform
