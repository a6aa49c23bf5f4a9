#pragma once

#include "Stores/PrintJournal.h"

namespace orvex {

/// What the journal of physical prints is shown with, in the current language. Any thread.
namespace JournalTexts {

/// When it was recorded, of which print, and its result, on one line; then the note, if there is one.
[[nodiscard]] QString text(const PrintObservation& observation);

} // namespace JournalTexts

} // namespace orvex
