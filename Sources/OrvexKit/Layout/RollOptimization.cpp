#include "Layout/RollOptimization.h"

#include "Layout/FreePlaces.h"
#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/NumberText.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "ParallelLoop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace orvex {

namespace RollOptimization {

using RollPacking::Direction;
using RollPacking::Order;

namespace {

constexpr double tolerance = PrintUnits::toleranceInches;

/// One artwork put down, and the one before it.
struct Placement {
    const Placement* previous;
    const Variant* variant;
    Point position;
};

/// What partial solutions are ranked by, before their placements.
struct Sums {
    double length = 0.0;
    double y = 0.0;
    double x = 0.0;
    qint64 turns = 0;

    [[nodiscard]] Sums with(const Variant& variant, const Point& position) const {
        return {.length = std::max(length, position.y + variant.frame.height),
                .y = y + position.y,
                .x = x + position.x,
                .turns = turns + (variant.isTurned ? 1 : 0)};
    }
};

/// Less than 0, 0 or greater than 0, as the first difference decides.
template <typename Values>
int compared(const Values& a, const Values& b) {
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin());
    return inA == a.end() ? 0 : *inA < *inB ? -1 : 1;
}

int compared(const Sums& a, const Sums& b, bool preferLowPlacement) {
    const auto keys = [&](const Sums& sums) {
        return preferLowPlacement ? std::array{sums.y, sums.length, sums.x} : std::array{sums.length, sums.y, sums.x};
    };
    const int byKeys = compared(keys(a), keys(b));
    return byKeys != 0 ? byKeys : compared(std::array{a.turns}, std::array{b.turns});
}

int compared(const Placement& a, const Placement& b) {
    const int byPosition = compared(std::array{a.position.y, a.position.x}, std::array{b.position.y, b.position.x});
    return byPosition != 0 ? byPosition
                           : compared(std::array{a.variant->artwork.rotationQuarterTurns},
                                      std::array{b.variant->artwork.rotationQuarterTurns});
}

/// The earliest difference of two equally long sequences decides. They end where they are the same one.
int comparedFromTheStart(const Placement* a, const Placement* b) {
    int earliest = 0;
    for (; a != b; a = a->previous, b = b->previous) {
        const int here = compared(*a, *b);
        earliest = here != 0 ? here : earliest;
    }
    return earliest;
}

/// A side that no frame falls short of, whichever way it lies.
double smallestSide(const Variants& variants) {
    double side = std::numeric_limits<double>::infinity();
    for (const auto& each : variants) {
        for (const Variant& variant : each) {
            side = std::min({side, variant.frame.width, variant.frame.height});
        }
    }
    return side;
}

/// One beam search.
class RotatingSearch {
public:
    RotatingSearch(const Variants& variants, const SearchRules& rules)
        : variants_(variants),
          rules_(rules),
          beam_(rules.beamWidth, startOf(variants, rules)),
          nextBeam_(beam_) {
        placements_.reserve(variants.size() * rules.beamWidth);
    }

    std::vector<QList<RollArtwork>> run(const Order& order) {
        for (const qsizetype index : order) {
            expand(index);
            rank();
            keepBest(index);
        }
        std::vector<QList<RollArtwork>> arrangements;
        for (std::size_t i = 0; i < beamSize_; ++i) {
            QList<RollArtwork> items = arranged(beam_[i], order);
            if (RollLayout::hasSpacing(items, rules_.gap)) {
                arrangements.push_back(std::move(items));
            }
        }
        return arrangements;
    }

private:
    /// A partial solution in the beam.
    struct RotatingPackingState {
        FreePlaces places;
        const Placement* last = nullptr;
        Sums sums = {};
    };

    /// A partial solution that may come into the beam: one of it, and the next placement.
    struct Branch {
        std::size_t state;
        Placement placement;
        Sums sums;
    };

    static RotatingPackingState startOf(const Variants& variants, const SearchRules& rules) {
        const double smallest = smallestSide(variants);
        return {.places = FreePlaces(rules.gap, rules.rollWidth, {smallest, smallest})};
    }

    /// Collects every way to place the next artwork.
    void expand(qsizetype index) {
        branches_.clear();
        for (std::size_t i = 0; i < beamSize_; ++i) {
            const RotatingPackingState& state = beam_[i];
            for (const Variant& variant : variants_[static_cast<std::size_t>(index)]) {
                const auto position = state.places.vacancy(variant.frame);
                if (position && isValid(variant, *position)) {
                    branches_.push_back({.state = i,
                                         .placement = {state.last, &variant, *position},
                                         .sums = state.sums.with(variant, *position)});
                }
            }
        }
    }

    [[nodiscard]] bool isValid(const Variant& variant, const Point& position) const {
        RollArtwork placed = variant.artwork;
        placed.xInches = position.x;
        placed.yInches = position.y;
        return !placed.positionValidationError(rules_.rollWidth);
    }

    void rank() {
        std::stable_sort(branches_.begin(), branches_.end(), [this](const Branch& a, const Branch& b) {
            int difference = compared(a.sums, b.sums, rules_.preferLowPlacement);
            if (difference == 0) {
                difference = comparedFromTheStart(a.placement.previous, b.placement.previous);
            }
            return difference != 0 ? difference < 0 : compared(a.placement, b.placement) < 0;
        });
        branches_.resize(std::min(branches_.size(), rules_.beamWidth));
    }

    /// Makes the branches the beam. The boxes of a state are copied for each of its branches but the last.
    void keepBest(qsizetype index) {
        for (std::size_t i = 0; i < branches_.size(); ++i) {
            const Branch& branch = branches_[i];
            RotatingPackingState& next = nextBeam_[i];
            const bool isLastOfItsState =
                std::none_of(branches_.begin() + static_cast<std::ptrdiff_t>(i) + 1, branches_.end(),
                             [&](const Branch& later) { return later.state == branch.state; });
            if (isLastOfItsState) {
                std::swap(next.places, beam_[branch.state].places);
            } else {
                next.places = beam_[branch.state].places;
            }
            next.places.add({.index = index,
                             .x = branch.placement.position.x,
                             .y = branch.placement.position.y,
                             .width = branch.placement.variant->frame.width,
                             .height = branch.placement.variant->frame.height});
            placements_.push_back(branch.placement);
            next.last = &placements_.back();
            next.sums = branch.sums;
        }
        beamSize_ = branches_.size();
        std::swap(beam_, nextBeam_);
    }

    [[nodiscard]] QList<RollArtwork> arranged(const RotatingPackingState& state, const Order& order) const {
        QList<RollArtwork> items(static_cast<qsizetype>(order.size()));
        const Placement* placement = state.last;
        for (auto index = order.rbegin(); index != order.rend(); ++index, placement = placement->previous) {
            RollArtwork& item = items[*index];
            item = placement->variant->artwork;
            item.xInches = placement->position.x;
            item.yInches = placement->position.y;
        }
        return items;
    }

    const Variants& variants_;
    const SearchRules& rules_;
    std::size_t beamSize_ = 1;
    std::vector<RotatingPackingState> beam_; // the first `beamSize_` count; the others keep their memory for later ones
    std::vector<RotatingPackingState> nextBeam_;
    std::vector<Branch> branches_;
    std::vector<Placement> placements_; // never grows beyond what is reserved, so that none of them moves
};

} // namespace

std::size_t beamWidth(qsizetype artworkCount) {
    if (artworkCount <= 50) {
        return 6;
    }
    return artworkCount <= 100 ? 2 : 1;
}

Variants variants(const QList<RollArtwork>& items, double rollWidth) {
    Variants result;
    for (const RollArtwork& item : items) {
        std::vector<Variant>& ways = result.emplace_back();
        const auto addIfFitting = [&](const RollArtwork& artwork, bool isTurned) {
            if (!artwork.sizeValidationError(rollWidth)) {
                const Rect frame = artwork.trimRectInches();
                ways.push_back({.artwork = artwork, .frame = {frame.width, frame.height}, .isTurned = isTurned});
            }
        };
        addIfFitting(item, false);
        if (std::abs(item.widthInches - item.heightInches()) > tolerance) {
            addIfFitting(item.turned(), true);
        }
    }
    return result;
}

std::vector<Order> optimizedPackingOrders(const QList<RollArtwork>& items) {
    std::vector<double> longer;
    std::vector<double> shorter;
    for (const RollArtwork& item : items) {
        const Rect frame = item.trimRectInches();
        longer.push_back(std::max(frame.width, frame.height));
        shorter.push_back(std::min(frame.width, frame.height));
    }
    std::vector<Order> orders = RollPacking::packingOrders(items);
    // A key of its own tells no tie apart, so ties go by index.
    orders.push_back(RollPacking::ordered(longer, longer, Direction::descending));
    orders.push_back(RollPacking::ordered(shorter, shorter, Direction::descending));
    return RollPacking::withoutRepetition(std::move(orders));
}

std::vector<QList<RollArtwork>> rotatingArrangements(const Variants& variants, const Order& order,
                                                     const SearchRules& rules) {
    return RotatingSearch(variants, rules).run(order);
}

bool prefersOptimized(const QList<RollArtwork>& candidate, const QList<RollArtwork>& over,
                      const QList<RollArtwork>& original) {
    const double length = RollPacking::usedLength(candidate);
    const double lengthOver = RollPacking::usedLength(over);
    if (length > lengthOver) {
        return false;
    }
    if (length < lengthOver - tolerance) {
        return true;
    }
    const auto turnCount = [&](const QList<RollArtwork>& items) {
        return std::inner_product(items.begin(), items.end(), original.begin(), qsizetype{0}, std::plus<>(),
                                  [](const RollArtwork& item, const RollArtwork& before) {
                                      return item.rotationQuarterTurns != before.rotationQuarterTurns ? 1 : 0;
                                  });
    };
    const qsizetype turns = turnCount(candidate);
    const qsizetype turnsOver = turnCount(over);
    return turns != turnsOver ? turns < turnsOver : RollPacking::isMoreCompact(candidate, over);
}

} // namespace RollOptimization

namespace {

using namespace RollOptimization;

/// The results of all searches for a layout, in the order in which they are to be judged.
std::vector<QList<RollArtwork>> allArrangements(const RollLayout& layout, double gap) {
    const Variants ways = variants(layout.items, layout.widthInches);
    const std::vector<RollPacking::Order> orders = optimizedPackingOrders(layout.items);
    std::vector<std::vector<QList<RollArtwork>>> found(2 * orders.size());
    platform::parallelLoop(found.size(), [&](std::size_t number) {
        const SearchRules rules{.gap = gap,
                                .rollWidth = layout.widthInches,
                                .beamWidth = beamWidth(layout.items.size()),
                                .preferLowPlacement = number % 2 != 0};
        found[number] = rotatingArrangements(ways, orders[number / 2], rules);
    });
    std::vector<QList<RollArtwork>> all;
    for (auto& each : found) {
        std::move(each.begin(), each.end(), std::back_inserter(all));
    }
    return all;
}

void requirePacked(const RollLayout& layout, double gap) {
    const bool isPacked =
        std::none_of(layout.items.begin(), layout.items.end(),
                     [&](const RollArtwork& item) { return item.validationError(layout.widthInches).has_value(); }) &&
        RollLayout::hasSpacing(layout.items, gap);
    if (!isPacked) {
        throw OrvexError::invalid(spt("无法在有效的坐标范围内完成排版。画布未改动。",
                                      "Cannot pack the layout at valid finite coordinates. The canvas was not "
                                      "changed."));
    }
}

/// Turns every artwork that fits the roll's new width only so; refuses if some do not fit at all.
void turnToFit(RollLayout& layout, bool allowQuarterTurns) {
    const double limit = layout.widthInches + PrintUnits::toleranceInches;
    QStringList tooWide;
    for (RollArtwork& item : layout.items) {
        if (const auto issue = item.coreValidationError()) {
            throw OrvexError::invalid(LayoutTexts::titled(item.title, *issue));
        }
        const Rect frame = item.trimRectInches();
        if (!(limit < frame.width)) {
            continue;
        }
        if (allowQuarterTurns && frame.height <= limit) {
            item = item.turned();
        } else {
            tooWide.append(item.title);
        }
    }
    if (!tooWide.isEmpty()) {
        throw OrvexError::invalid(
            spt("以下作品按当前打印尺寸加四边各 2.5 英寸白边，无法放入 %1 "
                "英寸卷布：%2。请先修改其尺寸。卷布宽度和排版均未"
                "改动。",
                "These artworks cannot fit a %1-inch roll at their current print sizes with 2.5-inch borders on every "
                "side: %2. Change their sizes first. The roll width and layout were not changed.")
                .arg(formatNumber(layout.widthInches, 3), tooWide.join(spt("、", ", "))));
    }
}

} // namespace

void RollLayout::optimizeArrangement(bool allowQuarterTurns, double gapInches) {
    RollLayout optimized = *this;
    optimized.autoArrange(gapInches);
    if (allowQuarterTurns && !items.isEmpty()) {
        for (const auto& arrangement : allArrangements(*this, gapInches)) {
            if (prefersOptimized(arrangement, optimized.items, items)) {
                optimized.items = arrangement;
            }
        }
        requirePacked(optimized, gapInches);
    }
    *this = optimized;
}

void RollLayout::changeRollWidth(double to, bool allowQuarterTurns) {
    refuse(rollWidthValidationError(to));
    refuse(versionValidationError());
    refuse(widthValidationError());
    if (!hasDistinctIDs()) {
        throw OrvexError::invalid(LayoutTexts::duplicateIDs());
    }
    RollLayout changed = *this;
    changed.widthInches = to;
    turnToFit(changed, allowQuarterTurns);
    changed.optimizeArrangement(allowQuarterTurns, defaultGapInches);
    *this = changed;
}

} // namespace orvex
