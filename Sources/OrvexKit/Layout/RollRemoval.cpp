#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>

namespace orvex {

void RollLayout::remove(const QUuid& id) {
    items.removeIf([&](const RollArtwork& item) { return item.id == id; });
}

bool RollLayout::removeAndOptimize(const QUuid& id, bool allowQuarterTurns, double gapInches) {
    const bool isKnown =
        std::any_of(items.cbegin(), items.cend(), [&](const RollArtwork& item) { return item.id == id; });
    if (!isKnown) {
        return false;
    }
    if (!hasDistinctIDs()) {
        throw OrvexError::invalid(spt("作品 ID 重复。未移除任何作品，排版未改动。",
                                      "Duplicate artwork IDs. No artwork was removed and the layout was not changed."));
    }
    RollLayout remaining = *this;
    remaining.remove(id);
    remaining.optimizeArrangement(allowQuarterTurns, gapInches);
    *this = remaining;
    return true;
}

} // namespace orvex
