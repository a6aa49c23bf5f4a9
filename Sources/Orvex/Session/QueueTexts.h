#pragma once

#include "PrinterReadings.h"

#include <QString>

namespace orvex {

/// What the queues are shown with, in the current language. Any thread.
namespace QueueTexts {

/// The unfinished jobs of the selected printer, a line each and as the system gave them, or why there are none.
[[nodiscard]] QString systemJobs(const PrinterReadings& readings);

/// What is to be known while the queue of local jobs cannot be read or written.
[[nodiscard]] QString localQueueUnavailable();

} // namespace QueueTexts

} // namespace orvex
