#pragma once

#include "CanvasPreference.h"
#include "Stores/PresetStore.h"

#include <QUrl>
#include <QUuid>

#include <optional>

namespace orvex {

/// Deletes a preset and, before it, the file `defaultsURL` if `preference`, which it holds, names the preset; then
/// `preference` is absent, even where the preset itself cannot be deleted. The preset's profile stays. Raises what
/// PresetStore::remove raises, and FileSystemError.
void deletePreset(const QUuid& id, const PresetStore& store, const std::optional<QUrl>& defaultsURL,
                  std::optional<CanvasPreference>& preference);

} // namespace orvex
