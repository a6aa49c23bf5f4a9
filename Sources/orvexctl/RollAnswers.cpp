#include "RollAnswers.h"

#include "CommandFiles.h"
#include "OrvexLanguage.h"

namespace orvex {

QString rollTitle(const std::string& argument) {
    return argument.empty() ? spt("orvex · 卷布排版", "orvex · Roll Layout") : argumentText(argument);
}

QJsonArray toJson(const QList<RollSourceAudit>& audits) {
    QJsonArray array;
    for (const RollSourceAudit& audit : audits) {
        array.append(audit.toJson());
    }
    return array;
}

} // namespace orvex
