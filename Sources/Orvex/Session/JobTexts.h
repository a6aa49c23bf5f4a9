#pragma once

#include "Stores/LocalQueue.h"

#include <QStringList>

namespace orvex {

/// What a job of the local queue is shown with, in the current language. Any thread.
namespace JobTexts {

/// All that is shown below the title, in its order. What the version that made the record did not keep is said in
/// words; no line is empty.
[[nodiscard]] QStringList lines(const StagedJob& job);

} // namespace JobTexts

} // namespace orvex
