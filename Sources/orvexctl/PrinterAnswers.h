#pragma once

#include "ReadinessPolicies.h"

#include <QJsonObject>

namespace orvex {

/// `state` and `blockingReason`, which is null for a queue that is ready.
[[nodiscard]] QJsonObject readinessJson(const NativePrintReadinessAssessment& assessment);

} // namespace orvex
