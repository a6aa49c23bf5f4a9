#include "Layout/RollLayout.h"

namespace orvex {

void RollLayout::remove(const QUuid& id) {
    items.removeIf([&](const RollArtwork& item) { return item.id == id; });
}

} // namespace orvex
