#pragma once

#include "Stores/PrintJournal.h"

#include <QString>

namespace orvex {

/// The form of the journal of physical prints. Plain value.
struct ObservationForm {
    PrintObservationResult observationResult = PrintObservationResult::purple;
    qint64 observationSequence = 1;
    QString observationNote = {};

    bool operator==(const ObservationForm&) const = default;
};

} // namespace orvex
