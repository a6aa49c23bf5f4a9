#include "Layout/RollPacking.h"

#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <tuple>

namespace orvex {

namespace RollPacking {

namespace {

constexpr double tolerance = PrintUnits::toleranceInches;

auto sortKey(const PackingBox& box) {
    return std::tie(box.y, box.x, box.index);
}

bool before(const PackingBox& a, const PackingBox& b) {
    return sortKey(a) < sortKey(b);
}

/// What `vacancy` asks of a box for every candidate position, computed once. The order of each sum is fixed.
struct Obstacle {
    double leftLimit;
    double rightLimit;
    double topLimit;
    double bottomLimit;
    double exitLimit;
    double next;
};

std::vector<Obstacle> obstacles(const Occupied& occupied, double gap) {
    std::vector<Obstacle> result;
    result.reserve(occupied.size());
    for (const PackingBox& box : occupied) {
        const double next = gap + (box.y + box.height);
        result.push_back({.leftLimit = (box.x - gap) + tolerance,
                          .rightLimit = (gap + (box.x + box.width)) - tolerance,
                          .topLimit = (box.y - gap) + tolerance,
                          .bottomLimit = next - tolerance,
                          .exitLimit = box.y + tolerance,
                          .next = next});
    }
    return result;
}

/// The x positions worth trying, ascending: the edges of the roll and of every box.
std::vector<double> candidateXs(double width, const Occupied& occupied, double gap, double maxX) {
    std::vector<double> xs{0.0, maxX};
    xs.reserve(2 * occupied.size() + 2);
    const auto add = [&](double x) {
        if (std::isfinite(x) && -tolerance <= x && x <= maxX + tolerance) {
            xs.push_back(std::min(std::max(0.0, x), maxX));
        }
    };
    for (const PackingBox& box : occupied) {
        add(gap + (box.width + box.x));
        add((box.x - width) - gap);
    }
    std::sort(xs.begin(), xs.end());
    xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    return xs;
}

/// Walks frames of one size down the boxes of a roll, at ascending x, to where they are free.
///
/// At each box the frame meets, it moves to below that box. What a run of boxes makes of the y it is entered with does
/// not change from one x to the next unless a box of the run begins or ceases to overlap the frame across the roll. So
/// each run remembers its last answer and for how long it holds; most runs then cost one comparison.
class FrameWalk {
public:
    FrameWalk(double width, double height, const Occupied& occupied, double gap)
        : width_(width),
          height_(height),
          gap_(gap),
          boxes_(obstacles(occupied, gap)) {
        for (std::size_t first = 0; first < boxes_.size(); first += runLength) {
            runs_.push_back({.boxes = std::span(boxes_).subspan(first, std::min(runLength, boxes_.size() - first))});
        }
    }

    FrameWalk(const FrameWalk&) = delete;
    FrameWalk& operator=(const FrameWalk&) = delete;

    /// The smallest free y at this x, which is no less than that of the call before. Absent if that y is not below the
    /// limit: it only ever grows on the way.
    std::optional<double> lowestY(double x, double yLimit) {
        double y = 0.0;
        for (Run& run : runs_) {
            if (endsAbove(run.boxes.front(), y)) {
                break;
            }
            if (!run.holds(x, x + width_, y)) {
                walk(run, x, y);
            }
            y = run.leaving;
            if (!(y < yLimit)) {
                return std::nullopt;
            }
        }
        return std::isfinite(height_ + y) ? std::optional(y) : std::nullopt;
    }

private:
    static constexpr std::size_t runLength = 16;
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    struct Run {
        std::span<const Obstacle> boxes;
        double entering = -1.0; // No y yet.
        double leaving = 0.0;
        double firstRightLimit = infinity; // The first box that overlaps now to be passed ...
        double firstLeftLimit = infinity;  // ... and the first that does not yet to be met.

        [[nodiscard]] bool holds(double left, double right, double y) const {
            return entering == y && left < firstRightLimit && !(firstLeftLimit < right);
        }
    };

    /// Whether the frame at y ends above a box, and so above all later ones: they begin no higher.
    [[nodiscard]] bool endsAbove(const Obstacle& box, double y) const { return gap_ + (height_ + y) <= box.exitLimit; }

    void walk(Run& run, double x, double y) const {
        run.entering = y;
        run.firstRightLimit = infinity;
        run.firstLeftLimit = infinity;
        for (const Obstacle& box : run.boxes) {
            if (endsAbove(box, y)) {
                break;
            }
            const bool along = y < box.bottomLimit && box.topLimit < height_ + y;
            if (!along) {
                continue; // Whether it overlaps across the roll makes no difference.
            }
            if (!(box.leftLimit < width_ + x)) {
                run.firstLeftLimit = std::min(run.firstLeftLimit, box.leftLimit);
            } else if (x < box.rightLimit) {
                run.firstRightLimit = std::min(run.firstRightLimit, box.rightLimit);
                y = box.next;
            }
        }
        run.leaving = y;
    }

    double width_;
    double height_;
    double gap_;
    std::vector<Obstacle> boxes_;
    std::vector<Run> runs_;
};

bool isUsableFrame(double width, double height, double rollWidth) {
    return std::isfinite(width) && width > 0.0 && std::isfinite(height) && height > 0.0 &&
           width <= rollWidth + tolerance;
}

/// A sum of both extents in place of their product, so that no area overflows.
double logArea(const Rect& frame) {
    return std::log(frame.width) + std::log(frame.height);
}

enum class Direction { ascending, descending };

/// The indices by `primary`; ties by `secondary`, always descending; then by index.
Order ordered(const std::vector<double>& primary, const std::vector<double>& secondary, Direction direction) {
    Order order(primary.size());
    std::iota(order.begin(), order.end(), qsizetype{0});
    const auto at = [](const std::vector<double>& list, qsizetype index) {
        return list[static_cast<std::size_t>(index)];
    };
    std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) {
        if (at(primary, a) != at(primary, b)) {
            return (at(primary, a) < at(primary, b)) == (direction == Direction::ascending);
        }
        return at(secondary, a) > at(secondary, b);
    });
    return order;
}

struct Score {
    double height = 0.0;
    double sumY = 0.0;
    double sumX = 0.0;
};

Score score(const QList<RollArtwork>& items) {
    Score score;
    for (const RollArtwork& item : items) {
        score.height = std::max(score.height, item.trimRectInches().maxY());
        score.sumY += item.yInches;
        score.sumX += item.xInches;
    }
    return score;
}

/// Whether a is smaller (true) or larger (false) by more than the tolerance; nothing if they are the same.
std::optional<bool> isSmaller(double a, double b) {
    if (a < b - tolerance) {
        return true;
    }
    if (b + tolerance < a) {
        return false;
    }
    return std::nullopt;
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
    std::stable_sort(boxes.begin(), boxes.end(), before);
    return boxes;
}

void insert(const PackingBox& box, Occupied& occupied) {
    occupied.insert(std::lower_bound(occupied.begin(), occupied.end(), box, before), box);
}

std::optional<Point> vacancy(double width, double height, const Occupied& occupied, double gap, double rollWidth) {
    if (!isUsableFrame(width, height, rollWidth)) {
        return std::nullopt;
    }
    const double maxX = std::max(rollWidth - width, 0.0);
    FrameWalk walk(width, height, occupied, gap);
    std::optional<Point> best;
    // x ascends, so a later place wins only by a smaller y: all others can be dropped at once.
    double yLimit = std::numeric_limits<double>::infinity();
    for (const double x : candidateXs(width, occupied, gap, maxX)) {
        if (!(0.0 < yLimit)) {
            break;
        }
        if (const auto y = walk.lowestY(x, yLimit)) {
            best = Point{x, *y};
            yLimit = *y - tolerance;
        }
    }
    return best;
}

std::optional<QList<RollArtwork>> shelfArrangement(const QList<RollArtwork>& items, double gap, double rollWidth) {
    QList<RollArtwork> arranged = items;
    double x = 0.0;
    double y = 0.0;
    double rowHeight = 0.0;
    for (RollArtwork& item : arranged) {
        const Rect frame = item.trimRectInches();
        if (x > 0.0 && rollWidth + tolerance < x + frame.width) {
            y = (gap + rowHeight) + y;
            x = 0.0;
            rowHeight = 0.0;
        }
        item.xInches = x;
        item.yInches = y;
        if (item.validationError(rollWidth)) {
            return std::nullopt;
        }
        x = x + (gap + frame.width);
        rowHeight = std::max(rowHeight, frame.height);
    }
    return RollLayout::hasSpacing(arranged, gap) ? std::optional(arranged) : std::nullopt;
}

std::vector<Order> withoutRepetition(std::vector<Order> orders) {
    std::vector<Order> distinct;
    for (Order& order : orders) {
        if (std::find(distinct.begin(), distinct.end(), order) == distinct.end()) {
            distinct.push_back(std::move(order));
        }
    }
    return distinct;
}

std::vector<Order> packingOrders(const QList<RollArtwork>& items) {
    std::vector<double> widths;
    std::vector<double> heights;
    std::vector<double> areas;
    for (const RollArtwork& item : items) {
        const Rect frame = item.trimRectInches();
        widths.push_back(frame.width);
        heights.push_back(frame.height);
        areas.push_back(logArea(frame));
    }
    Order identity(widths.size());
    std::iota(identity.begin(), identity.end(), qsizetype{0});
    return withoutRepetition(
        {identity, ordered(heights, widths, Direction::descending), ordered(widths, heights, Direction::descending),
         ordered(areas, heights, Direction::descending), ordered(heights, widths, Direction::ascending),
         ordered(areas, widths, Direction::ascending)});
}

std::optional<QList<RollArtwork>> compactArrangement(QList<RollArtwork> items, const Order& order, double gap,
                                                     double rollWidth) {
    Occupied occupied;
    occupied.reserve(order.size());
    for (const qsizetype index : order) {
        RollArtwork& item = items[index];
        const Rect frame = item.trimRectInches();
        const auto position = vacancy(frame.width, frame.height, occupied, gap, rollWidth);
        if (!position) {
            return std::nullopt;
        }
        item.xInches = position->x;
        item.yInches = position->y;
        if (item.validationError(rollWidth)) {
            return std::nullopt;
        }
        insert(box(item, index), occupied);
    }
    return RollLayout::hasSpacing(items, gap) ? std::optional(std::move(items)) : std::nullopt;
}

bool isMoreCompact(const QList<RollArtwork>& candidate, const QList<RollArtwork>& than) {
    const Score a = score(candidate);
    const Score b = score(than);
    if (a.height != b.height) {
        return a.height < b.height;
    }
    if (const auto decided = isSmaller(a.sumY, b.sumY)) {
        return *decided;
    }
    if (const auto decided = isSmaller(a.sumX, b.sumX)) {
        return *decided;
    }
    for (qsizetype index = 0; index < candidate.size(); ++index) {
        if (const auto decided = isSmaller(candidate.at(index).yInches, than.at(index).yInches)) {
            return *decided;
        }
        if (const auto decided = isSmaller(candidate.at(index).xInches, than.at(index).xInches)) {
            return *decided;
        }
    }
    return false;
}

} // namespace RollPacking

namespace {

std::vector<QList<RollArtwork>> arrangementCandidates(const RollLayout& layout, double gap) {
    std::vector<QList<RollArtwork>> candidates;
    if (auto shelf = RollPacking::shelfArrangement(layout.items, gap, layout.widthInches)) {
        candidates.push_back(std::move(*shelf));
    }
    if (!layout.structureValidationError() && RollLayout::hasSpacing(layout.items, gap)) {
        candidates.push_back(layout.items);
    }
    for (const auto& order : RollPacking::packingOrders(layout.items)) {
        if (auto compact = RollPacking::compactArrangement(layout.items, order, gap, layout.widthInches)) {
            candidates.push_back(std::move(*compact));
        }
    }
    return candidates;
}

} // namespace

void RollLayout::autoArrange(double gapInches) {
    validateGap(gapInches);
    refuse(versionValidationError());
    refuse(widthValidationError());
    if (!hasDistinctIDs()) {
        throw OrvexError::invalid(LayoutTexts::duplicateIDs());
    }
    for (const RollArtwork& item : std::as_const(items)) {
        refuse(item.sizeValidationError(widthInches));
    }
    if (items.isEmpty()) {
        return;
    }
    const auto candidates = arrangementCandidates(*this, gapInches);
    if (candidates.empty()) {
        throw OrvexError::invalid(spt("无法在有效的坐标范围内自动排版。画布未改动。",
                                      "Cannot arrange the layout at valid finite coordinates. The canvas was not "
                                      "changed."));
    }
    const QList<RollArtwork>* best = &candidates.front();
    for (const auto& candidate : candidates) {
        if (RollPacking::isMoreCompact(candidate, *best)) {
            best = &candidate;
        }
    }
    items = *best;
}

} // namespace orvex
