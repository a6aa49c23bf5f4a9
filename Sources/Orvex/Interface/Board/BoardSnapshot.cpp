#include "BoardSnapshot.h"

#include "Board/BoardPainter.h"

#include <algorithm>

namespace orvex {

namespace {

QRegion placeOf(const RollArtwork& item, const BoardGeometry& geometry) {
    const double reach = BoardPainter::selectionReach;
    return geometry.rectOf(item.trimRectInches()).adjusted(-reach, -reach, reach, reach).toAlignedRect();
}

} // namespace

BoardSnapshot::Change BoardSnapshot::take(const OrvexModel& session, const BoardGeometry& geometry) {
    const RollLayout& layout = session.rollLayout();
    const bool isOther = isOtherList(layout);
    const bool isOtherSelection = session.selectedArtworkID() != selection_;
    Change change{.isEverywhere = isOther || isOtherSelection || layout.widthInches != layout_.widthInches ||
                                  session.arrangingGesture() != isGesture_ || session.artworkPreviews() != previews_ ||
                                  session.rollLoadWarnings() != warnings_,
                  .region = {},
                  .isNamedAnew = isOther || isOtherSelection,
                  .newPreviews = newPreviews(session)};
    if (!change.isEverywhere) {
        change.region = moved(layout, geometry);
    }
    layout_ = layout;
    selection_ = session.selectedArtworkID();
    isGesture_ = session.arrangingGesture();
    previews_ = session.artworkPreviews();
    warnings_ = session.rollLoadWarnings();
    return change;
}

bool BoardSnapshot::isOtherList(const RollLayout& layout) const {
    return !std::ranges::equal(layout.items, layout_.items, {}, &RollArtwork::id, &RollArtwork::id);
}

/// Where artworks were and are that have moved. The lists are the same.
QRegion BoardSnapshot::moved(const RollLayout& layout, const BoardGeometry& geometry) const {
    QRegion region;
    for (qsizetype index = 0; index < layout.items.size(); ++index) {
        if (layout.items[index] != layout_.items[index]) {
            region += placeOf(layout_.items[index], geometry);
            region += placeOf(layout.items[index], geometry);
        }
    }
    return region;
}

QList<SharedImageMetadata> BoardSnapshot::newPreviews(const OrvexModel& session) const {
    QList<SharedImageMetadata> previews;
    if (session.artworkPreviews() == previews_) {
        return previews; // as with every step of a drag
    }
    for (auto each = session.artworkPreviews().cbegin(); each != session.artworkPreviews().cend(); ++each) {
        if (previews_.value(each.key()) != each.value()) {
            previews.append(each.value());
        }
    }
    return previews;
}

QRegion BoardSnapshot::placesOf(const ImageMetadata* preview, const BoardGeometry& geometry) const {
    QRegion region;
    for (const RollArtwork& item : layout_.items) {
        if (previews_.value(item.id).get() == preview) {
            region += placeOf(item, geometry);
        }
    }
    return region;
}

} // namespace orvex
