#pragma once

#include "Failure.h"

namespace orvex {

/// The one error of a look at the local queues; the message is its whole description.
class CUPSInspectionError : public Failure {
public:
    [[nodiscard]] static CUPSInspectionError inspectionFailed(const QString& message) {
        return CUPSInspectionError(message);
    }

private:
    explicit CUPSInspectionError(const QString& message) : Failure(message) {}
};

} // namespace orvex
