#pragma once

#include "Layout/RollArtwork.h"

#include <QList>

#include <cstddef>
#include <vector>

namespace orvex {

/// One occupied rectangle of a roll: the trim frame of the artwork at `index`. Inches.
struct PackingBox {
    qsizetype index = 0;
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    bool operator==(const PackingBox&) const = default;
};

namespace RollPacking {

/// Occupied boxes, always ascending by y, then x, then index.
using Occupied = std::vector<PackingBox>;

/// The box of an artwork's trim frame.
[[nodiscard]] PackingBox box(const RollArtwork& artwork, qsizetype index);

[[nodiscard]] Occupied sortedBoxes(const QList<RollArtwork>& items);

/// Puts the box where it belongs. Its position in the list.
std::size_t insert(const PackingBox& box, Occupied& occupied);

} // namespace RollPacking

} // namespace orvex
