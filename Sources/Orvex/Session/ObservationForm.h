#pragma once

#include "Stores/PrintJournal.h"

#include <QString>

namespace orvex {

/// The form of the journal of physical prints. Plain value.
struct ObservationForm {
    PrintObservationResult result = PrintObservationResult::purple;
    qint64 sequence = 1;
    QString note = {};

    bool operator==(const ObservationForm&) const = default;
};

} // namespace orvex
