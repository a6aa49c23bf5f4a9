#include "Layout/RollPacking.h"

#include "Layout/FreePlaces.h"
#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace orvex {

namespace RollPacking {

namespace {

constexpr double tolerance = PrintUnits::toleranceInches;

/// A sum of both extents in place of their product, so that no area overflows.
double logArea(const Rect& frame) {
    return std::log(frame.width) + std::log(frame.height);
}

/// A side that no frame falls short of, whichever way it lies.
double smallestSide(const QList<RollArtwork>& items) {
    double side = std::numeric_limits<double>::infinity();
    for (const RollArtwork& item : items) {
        const Rect frame = item.trimRectInches();
        side = std::min({side, frame.width, frame.height});
    }
    return side;
}

struct Score {
    double height = 0.0;
    double sumY = 0.0;
    double sumX = 0.0;
};

Score score(const QList<RollArtwork>& items) {
    Score score{.height = usedLength(items)};
    for (const RollArtwork& item : items) {
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

std::optional<Point> vacancy(double width, double height, const Occupied& occupied, double gap, double rollWidth) {
    const Size frame{width, height};
    FreePlaces places(gap, rollWidth, frame);
    for (const PackingBox& box : occupied) {
        places.add(box);
    }
    return places.vacancy(frame);
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
    const double smallest = smallestSide(items);
    FreePlaces places(gap, rollWidth, {smallest, smallest});
    for (const qsizetype index : order) {
        RollArtwork& item = items[index];
        const Rect frame = item.trimRectInches();
        const auto position = places.vacancy({frame.width, frame.height});
        if (!position) {
            return std::nullopt;
        }
        item.xInches = position->x;
        item.yInches = position->y;
        if (item.validationError(rollWidth)) {
            return std::nullopt;
        }
        places.add(box(item, index));
    }
    return RollLayout::hasSpacing(items, gap) ? std::optional(std::move(items)) : std::nullopt;
}

double usedLength(const QList<RollArtwork>& items) {
    double length = 0.0;
    for (const RollArtwork& item : items) {
        length = std::max(length, item.trimRectInches().maxY());
    }
    return length;
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
