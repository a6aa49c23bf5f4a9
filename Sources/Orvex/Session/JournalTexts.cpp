#include "JournalTexts.h"

#include "OrvexLanguage.h"
#include "PanelTexts.h"

namespace orvex {

QString JournalTexts::text(const PrintObservation& observation) {
    const QString line = spt("%1 · 第 %2 次 · %3", "%1 · Print %2 · %3")
                             .arg(orvexDateTime(observation.createdAt), QString::number(observation.sequenceNumber),
                                  label(observation.result));
    return observation.note.trimmed().isEmpty() ? line : line + u'\n' + observation.note;
}

} // namespace orvex
