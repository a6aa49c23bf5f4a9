#pragma once

#include "Output/RollPDFRenderer.h"

#include <QJsonArray>
#include <QString>

#include <string>

namespace orvex {

/// The title that was asked for, or the one that the window gives its rolls.
[[nodiscard]] QString rollTitle(const std::string& argument);

[[nodiscard]] QJsonArray toJson(const QList<RollSourceAudit>& audits);

} // namespace orvex
