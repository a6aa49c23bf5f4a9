#pragma once

#include "CanvasPreference.h"
#include "Stores/PresetStore.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace orvex {

/// Carries the preset that is bound to a printer, and no other, forward to pages in inches with white borders, once for
/// the folder of `defaultsURL`: a marker there says that it was done. The preset's file as it was is kept beside the
/// marker, in "layout-backup-before-inches", from the first attempt on.
///
/// `presets` is what the store holds, then as before; it is read again once the preset is saved. Raises OrvexError and
/// FileSystemError before the marker is written, so that the next start tries again. Main thread.
void migrateDefaultCanvasToInches(const PresetStore& store, const QUrl& defaultsURL,
                                  const std::optional<CanvasPreference>& preference, QList<PrintPreset>& presets);

} // namespace orvex
