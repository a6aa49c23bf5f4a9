#pragma once

#include "PresetForm.h"
#include "Stores/LocalQueue.h"

#include <optional>

namespace orvex {

/// The record of a roll that is about to be staged, with a new id, as the choices are at this moment; what only the
/// rendering can tell is missing.
[[nodiscard]] StagedJob stagedJob(const RollLayout& layout, const PresetForm& form,
                                  const std::optional<PrintPreset>& preset, const QString& printerName);

/// Adds what the rendering told.
void finishStagedJob(StagedJob& job, const QList<RollSourceAudit>& audits, platform::Timestamp now);

} // namespace orvex
