#include "PlainPacking.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

namespace orvex::plain {

namespace {

double trimWidth(const RollArtwork& item) {
    return item.widthInches + 5.0;
}

double trimHeight(const RollArtwork& item) {
    return item.heightInches() + 5.0;
}

std::set<double> candidates(double width, const std::vector<Box>& occupied, double gap, double maxX) {
    std::set<double> xs;
    xs.insert(0.0);
    xs.insert(maxX);
    for (const Box& box : occupied) {
        const double right = gap + (box.width + box.x);
        const double left = (box.x - width) - gap;
        for (double value : {right, left}) {
            if (!std::isfinite(value) || value < -1e-9 || value > maxX + 1e-9) {
                continue;
            }
            if (value < 0.0) {
                value = 0.0;
            }
            if (value > maxX) {
                value = maxX;
            }
            xs.insert(value);
        }
    }
    return xs;
}

/// For one x: the y where the walk ends, or nothing if this x is dropped.
std::optional<double> walk(double x, double width, double height, const std::vector<Box>& occupied, double gap,
                           const std::optional<Point>& best) {
    double y = 0.0;
    for (const Box& box : occupied) {
        const bool overlapsAcross = x < (gap + (box.x + box.width)) - 1e-9 && (box.x - gap) + 1e-9 < width + x;
        if (!overlapsAcross) {
            continue;
        }
        if (gap + (height + y) <= box.y + 1e-9) {
            break;
        }
        const double next = gap + (box.y + box.height);
        const bool overlapsAlong = y < next - 1e-9 && (box.y - gap) + 1e-9 < height + y;
        if (!overlapsAlong) {
            continue;
        }
        if (!std::isfinite(next)) {
            return std::nullopt;
        }
        y = next;
        if (best && next > best->y + 1e-9) {
            return std::nullopt;
        }
    }
    if (!std::isfinite(y) || !std::isfinite(height + y)) {
        return std::nullopt;
    }
    return y;
}

std::vector<long> ordered(const std::vector<double>& primary, const std::vector<double>& secondary, bool ascending) {
    std::vector<long> order;
    for (std::size_t i = 0; i < primary.size(); ++i) {
        order.push_back(static_cast<long>(i));
    }
    // Insertion sort: slow, stable, and with nothing hidden in it.
    const auto goesFirst = [&](long a, long b) {
        const auto i = static_cast<std::size_t>(a);
        const auto j = static_cast<std::size_t>(b);
        if (primary[i] != primary[j]) {
            return ascending ? primary[i] < primary[j] : primary[i] > primary[j];
        }
        if (secondary[i] != secondary[j]) {
            return secondary[i] > secondary[j];
        }
        return a < b;
    };
    for (std::size_t i = 1; i < order.size(); ++i) {
        for (std::size_t j = i; j > 0 && goesFirst(order[j], order[j - 1]); --j) {
            std::swap(order[j], order[j - 1]);
        }
    }
    return order;
}

bool isValid(const Items& items, double rollWidth) {
    return std::none_of(items.begin(), items.end(),
                        [&](const RollArtwork& item) { return item.validationError(rollWidth).has_value(); });
}

} // namespace

bool comesBefore(const Box& a, const Box& b) {
    return std::make_tuple(a.y, a.x, a.index) < std::make_tuple(b.y, b.x, b.index);
}

Box boxOf(const RollArtwork& item, long index) {
    return {index, item.xInches, item.yInches, trimWidth(item), trimHeight(item)};
}

bool hasSpacing(const Items& items, double gap) {
    for (long i = 0; i < items.size(); ++i) {
        for (long j = i + 1; j < items.size(); ++j) {
            const Box a = boxOf(items[i], i);
            const Box b = boxOf(items[j], j);
            const double aRight = a.x + a.width;
            const double aBottom = a.y + a.height;
            const double bRight = b.x + b.width;
            const double bBottom = b.y + b.height;
            if (a.x < (gap + bRight) - 1e-9 && (b.x - gap) + 1e-9 < aRight && a.y < (gap + bBottom) - 1e-9 &&
                (b.y - gap) + 1e-9 < aBottom) {
                return false;
            }
        }
    }
    return true;
}

bool isMoreCompact(const Items& a, const Items& b) {
    double heightA = 0.0;
    double heightB = 0.0;
    double sumYA = 0.0;
    double sumYB = 0.0;
    double sumXA = 0.0;
    double sumXB = 0.0;
    for (long i = 0; i < a.size(); ++i) {
        heightA = std::max(heightA, a[i].yInches + trimHeight(a[i]));
        heightB = std::max(heightB, b[i].yInches + trimHeight(b[i]));
        sumYA += a[i].yInches;
        sumYB += b[i].yInches;
        sumXA += a[i].xInches;
        sumXB += b[i].xInches;
    }
    if (heightA != heightB) {
        return heightA < heightB;
    }
    std::vector<std::pair<double, double>> pairs{{sumYA, sumYB}, {sumXA, sumXB}};
    for (long i = 0; i < a.size(); ++i) {
        pairs.emplace_back(a[i].yInches, b[i].yInches);
        pairs.emplace_back(a[i].xInches, b[i].xInches);
    }
    for (const auto& [left, right] : pairs) {
        if (left < right - 1e-9) {
            return true;
        }
        if (right + 1e-9 < left) {
            return false;
        }
    }
    return false;
}

std::vector<Box> sortedBoxes(const Items& items) {
    std::vector<Box> boxes;
    for (long i = 0; i < items.size(); ++i) {
        boxes.push_back(boxOf(items[i], i));
    }
    std::stable_sort(boxes.begin(), boxes.end(), comesBefore);
    return boxes;
}

std::optional<Point> vacancy(double width, double height, const std::vector<Box>& occupied, double gap,
                             double rollWidth) {
    if (!std::isfinite(width) || width <= 0.0 || !std::isfinite(height) || height <= 0.0) {
        return std::nullopt;
    }
    if (width > rollWidth + 1e-9) {
        return std::nullopt;
    }
    const double maxX = std::max(rollWidth - width, 0.0);
    std::optional<Point> best;
    for (const double x : candidates(width, occupied, gap, maxX)) {
        const auto y = walk(x, width, height, occupied, gap, best);
        if (!y) {
            continue;
        }
        const bool lower = best && *y < best->y - 1e-9;
        const bool sameAndFurtherLeft = best && std::abs(*y - best->y) <= 1e-9 && x < best->x - 1e-9;
        if (!best || lower || sameAndFurtherLeft) {
            best = Point{x, *y};
        }
    }
    return best;
}

std::optional<Items> shelfArrangement(const Items& items, double gap, double rollWidth) {
    Items result = items;
    double x = 0.0;
    double y = 0.0;
    double rowHeight = 0.0;
    for (long i = 0; i < items.size(); ++i) {
        const double w = trimWidth(items[i]);
        const double h = trimHeight(items[i]);
        if (x > 0.0 && rollWidth + 1e-9 < x + w) {
            y = (gap + rowHeight) + y;
            x = 0.0;
            rowHeight = 0.0;
        }
        result[i].xInches = x;
        result[i].yInches = y;
        if (result[i].validationError(rollWidth)) {
            return std::nullopt;
        }
        x = x + (gap + w);
        rowHeight = std::max(rowHeight, h);
    }
    if (!hasSpacing(result, gap)) {
        return std::nullopt;
    }
    return result;
}

std::vector<std::vector<long>> packingOrders(const Items& items) {
    std::vector<double> widths;
    std::vector<double> heights;
    std::vector<double> areas;
    std::vector<long> listOrder;
    for (long i = 0; i < items.size(); ++i) {
        widths.push_back(trimWidth(items[i]));
        heights.push_back(trimHeight(items[i]));
        areas.push_back(std::log(trimWidth(items[i])) + std::log(trimHeight(items[i])));
        listOrder.push_back(i);
    }
    std::vector<std::vector<long>> orders;
    const auto addOnce = [&](const std::vector<long>& order) {
        if (std::count(orders.begin(), orders.end(), order) == 0) {
            orders.push_back(order);
        }
    };
    addOnce(listOrder);
    addOnce(ordered(heights, widths, false));
    addOnce(ordered(widths, heights, false));
    addOnce(ordered(areas, heights, false));
    addOnce(ordered(heights, widths, true));
    addOnce(ordered(areas, widths, true));
    return orders;
}

std::optional<Items> compactArrangement(const Items& items, const std::vector<long>& order, double gap,
                                        double rollWidth) {
    Items result = items;
    std::vector<Box> occupied;
    for (const long index : order) {
        const auto point = vacancy(trimWidth(items[index]), trimHeight(items[index]), occupied, gap, rollWidth);
        if (!point) {
            return std::nullopt;
        }
        result[index].xInches = point->x;
        result[index].yInches = point->y;
        if (result[index].validationError(rollWidth)) {
            return std::nullopt;
        }
        occupied.push_back(boxOf(result[index], index));
        std::stable_sort(occupied.begin(), occupied.end(), comesBefore);
    }
    if (!hasSpacing(result, gap)) {
        return std::nullopt;
    }
    return result;
}

std::optional<Items> autoArrange(const Items& items, double gap, double rollWidth) {
    if (items.isEmpty()) {
        return items;
    }
    std::vector<Items> arrangements;
    if (const auto shelf = shelfArrangement(items, gap, rollWidth)) {
        arrangements.push_back(*shelf);
    }
    if (isValid(items, rollWidth) && hasSpacing(items, gap)) {
        arrangements.push_back(items);
    }
    for (const auto& order : packingOrders(items)) {
        if (const auto compact = compactArrangement(items, order, gap, rollWidth)) {
            arrangements.push_back(*compact);
        }
    }
    if (arrangements.empty()) {
        return std::nullopt;
    }
    Items best = arrangements.front();
    for (const Items& arrangement : arrangements) {
        if (isMoreCompact(arrangement, best)) {
            best = arrangement;
        }
    }
    return best;
}

} // namespace orvex::plain
