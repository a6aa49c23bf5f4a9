#include "BoardHit.h"

#include "OrvexModel.h"

namespace orvex {

std::optional<BoardHit> BoardHit::at(const QPointF& position, const OrvexModel& session,
                                     const BoardGeometry& geometry) {
    const auto selected = session.selectedArtwork();
    if (selected && BoardGeometry::handleOf(geometry.rectOf(selected->trimRectInches())).contains(position)) {
        return BoardHit{.id = selected->id, .part = Part::handle};
    }
    const QList<RollArtwork>& items = session.rollLayout().items;
    for (auto item = items.crbegin(); item != items.crend(); ++item) {
        if (geometry.rectOf(item->trimRectInches()).contains(position)) {
            return BoardHit{.id = item->id, .part = Part::frame};
        }
    }
    return std::nullopt;
}

} // namespace orvex
