#include "PrinterAnswers.h"

namespace orvex {

QJsonObject readinessJson(const NativePrintReadinessAssessment& assessment) {
    return {{QStringLiteral("state"), rawText(assessment.state)},
            {QStringLiteral("blockingReason"),
             assessment.blockingReason ? QJsonValue(*assessment.blockingReason) : QJsonValue()}};
}

} // namespace orvex
