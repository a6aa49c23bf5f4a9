#pragma once

#include "PrinterReadings.h"

#include <QString>

namespace orvex {

/// What the system's queues are shown with, in the current language. Any thread.
namespace QueueTexts {

/// The unfinished jobs of the selected printer, a line each and as the system gave them, or why there are none.
[[nodiscard]] QString systemJobs(const PrinterReadings& readings);

} // namespace QueueTexts

} // namespace orvex
