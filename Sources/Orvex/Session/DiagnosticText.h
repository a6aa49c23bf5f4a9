#pragma once

#include "Timestamp.h"

#include <QString>

namespace orvex {

class OrvexModel;

/// The report on a session, line by line; it holds device addresses and paths. Main thread.
[[nodiscard]] QString diagnosticText(const OrvexModel& session, platform::Timestamp now);

} // namespace orvex
