#pragma once

#include "Layout/RollArtwork.h"
#include "Layout/RollPacking.h"

#include <QList>

#include <vector>

namespace orvex {

/// The search for a shorter roll by quarter turns of artworks: a beam search over the sequence in which artworks are
/// placed. Inches. All pure, any thread.
///
/// It is the plain beam search in other clothes, with the same results to the last bit. A partial solution is a place,
/// a turn and the solution it grew from; a new one is first only a place and the sums that its rank depends on, and the
/// boxes of the roll are kept for those alone that stay in the beam. Two solutions of one level differ in nothing but
/// their placements, so the walk along the whole order that ranks equal sums may go along the placements alone, from
/// where the two part. Each search depends on nothing but its order and its preference, so all can run at once; their
/// results are taken in the fixed order afterwards.
namespace RollOptimization {

/// How many partial solutions a search of that many artworks keeps.
[[nodiscard]] std::size_t beamWidth(qsizetype artworkCount);

/// A way in which an artwork may lie: as it does, or turned by a quarter. Its position does not count.
struct Variant {
    RollArtwork artwork;
    Size frame; ///< the trim frame
    bool isTurned = false;
};

/// For each artwork the ways that fit the roll: as it lies, then turned, which a square never is.
using Variants = std::vector<std::vector<Variant>>;

[[nodiscard]] Variants variants(const QList<RollArtwork>& items, double rollWidth);

/// The orders of automatic packing, then by the longer and by the shorter side of the frame, without repetition.
[[nodiscard]] std::vector<RollPacking::Order> optimizedPackingOrders(const QList<RollArtwork>& items);

/// What one search goes by.
struct SearchRules {
    double gap = 0.0;
    double rollWidth = 0.0;
    std::size_t beamWidth = 1;
    bool preferLowPlacement = false; ///< rank by the sum of y before the length
};

/// The arrangements that a search ends with, the best first; empty if some artwork finds no place. `order` names every
/// artwork once.
[[nodiscard]] std::vector<QList<RollArtwork>>
rotatingArrangements(const Variants& variants, const RollPacking::Order& order, const SearchRules& rules);

/// Whether an arrangement replaces the best so far: a shorter roll, by more than the tolerance; else one as short that
/// turns fewer artworks of the original; else one that is more compact.
[[nodiscard]] bool prefersOptimized(const QList<RollArtwork>& candidate, const QList<RollArtwork>& over,
                                    const QList<RollArtwork>& original);

} // namespace RollOptimization

} // namespace orvex
