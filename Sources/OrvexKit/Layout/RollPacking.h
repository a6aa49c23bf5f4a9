#pragma once

#include "Layout/Geometry.h"
#include "Layout/PackingBox.h"
#include "Layout/RollArtwork.h"

#include <QList>

#include <optional>
#include <vector>

namespace orvex {

/// The steps of automatic packing, on trim frames. The gap is the distance between frames; the edges of the roll have
/// none. An arrangement is the same list with other positions. All pure, any thread.
namespace RollPacking {

/// A sequence of list positions in which artworks are placed.
using Order = std::vector<qsizetype>;

/// Rows in list order. Absent if a position is not valid on the roll.
[[nodiscard]] std::optional<QList<RollArtwork>> shelfArrangement(const QList<RollArtwork>& items, double gap,
                                                                 double rollWidth);

/// Up to six orders to place artworks in, without repetition; the first is the list order.
[[nodiscard]] std::vector<Order> packingOrders(const QList<RollArtwork>& items);

/// The indices by `primary`; ties by `secondary`, always descending; then by index.
enum class Direction { ascending, descending };
[[nodiscard]] Order ordered(const std::vector<double>& primary, const std::vector<double>& secondary,
                            Direction direction);

/// `orders` without those that stand earlier in it already.
[[nodiscard]] std::vector<Order> withoutRepetition(std::vector<Order> orders);

/// Each artwork of the order in turn at the first vacancy. Absent if one finds none.
[[nodiscard]] std::optional<QList<RollArtwork>> compactArrangement(QList<RollArtwork> items, const Order& order,
                                                                   double gap, double rollWidth);

/// The free place for a frame with the smallest y, then the smallest x. Absent if the frame is too wide or no place has
/// finite coordinates.
[[nodiscard]] std::optional<Point> vacancy(double width, double height, const Occupied& occupied, double gap,
                                           double rollWidth);

/// The canvas that an arrangement uses: the largest bottom edge of any frame, 0 without artworks.
[[nodiscard]] double usedLength(const QList<RollArtwork>& items);

/// The total comparison of two arrangements of equally many artworks: the used length exactly, then the sums of y and
/// of x, then position by position, each with the tolerance.
[[nodiscard]] bool isMoreCompact(const QList<RollArtwork>& candidate, const QList<RollArtwork>& than);

} // namespace RollPacking

} // namespace orvex
