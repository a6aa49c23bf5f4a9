#pragma once

#include "PlainPacking.h"

#include <cstddef>

/// The search with quarter turns once more, as plain and slow as its rules read, to compare the real one with.
namespace orvex::plain {

std::vector<std::vector<long>> optimizedPackingOrders(const Items& items);

std::vector<Items> rotatingArrangements(const Items& items, const std::vector<long>& order, double gap,
                                        double rollWidth, std::size_t beamWidth, bool preferLowPlacement);

bool prefersOptimized(const Items& candidate, const Items& current, const Items& original);

/// The winner for items that are all valid but for their positions; absent if there is none.
std::optional<Items> optimizeArrangement(const Items& items, double gap, double rollWidth);

} // namespace orvex::plain
