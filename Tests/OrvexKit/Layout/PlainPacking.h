#pragma once

#include "Layout/Geometry.h"
#include "Layout/RollArtwork.h"

#include <QList>

#include <optional>
#include <vector>

/// Automatic packing once more, as plain and slow as its rules read, to compare the real one with.
namespace orvex::plain {

struct Box {
    long index = 0;
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

using Items = QList<RollArtwork>;

Box boxOf(const RollArtwork& item, long index);

bool comesBefore(const Box& a, const Box& b);

bool hasSpacing(const Items& items, double gap);

bool isMoreCompact(const Items& a, const Items& b);

std::vector<Box> sortedBoxes(const Items& items);

std::optional<Point> vacancy(double width, double height, const std::vector<Box>& occupied, double gap,
                             double rollWidth);

std::optional<Items> shelfArrangement(const Items& items, double gap, double rollWidth);

std::vector<std::vector<long>> packingOrders(const Items& items);

std::optional<Items> compactArrangement(const Items& items, const std::vector<long>& order, double gap,
                                        double rollWidth);

/// The winner for items that are all valid but for their positions; absent if no candidate is left.
std::optional<Items> autoArrange(const Items& items, double gap, double rollWidth);

} // namespace orvex::plain
