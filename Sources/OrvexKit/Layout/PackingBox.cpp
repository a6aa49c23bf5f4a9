#include "Layout/PackingBox.h"

#include <algorithm>
#include <tuple>

namespace orvex::RollPacking {

namespace {

bool isBefore(const PackingBox& a, const PackingBox& b) {
    return std::tie(a.y, a.x, a.index) < std::tie(b.y, b.x, b.index);
}

} // namespace

PackingBox box(const RollArtwork& artwork, qsizetype index) {
    const Rect frame = artwork.trimRectInches();
    return {.index = index, .x = frame.x, .y = frame.y, .width = frame.width, .height = frame.height};
}

Occupied sortedBoxes(const QList<RollArtwork>& items) {
    Occupied boxes;
    boxes.reserve(static_cast<std::size_t>(items.size()));
    for (qsizetype index = 0; index < items.size(); ++index) {
        boxes.push_back(box(items.at(index), index));
    }
    std::stable_sort(boxes.begin(), boxes.end(), isBefore);
    return boxes;
}

std::size_t insert(const PackingBox& box, Occupied& occupied) {
    const auto place = std::lower_bound(occupied.begin(), occupied.end(), box, isBefore);
    const auto position = static_cast<std::size_t>(place - occupied.begin());
    occupied.insert(place, box);
    return position;
}

} // namespace orvex::RollPacking
