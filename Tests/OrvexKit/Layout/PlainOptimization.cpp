#include "PlainOptimization.h"

#include <algorithm>
#include <cmath>

namespace orvex::plain {

namespace {

struct State {
    Items arranged;
    std::vector<Box> occupied;
    double length = 0.0;
    double sumY = 0.0;
    double sumX = 0.0;
    long turns = 0;
};

double trimWidth(const RollArtwork& item) {
    return item.widthInches + 5.0;
}

double trimHeight(const RollArtwork& item) {
    return item.heightInches() + 5.0;
}

double lengthOf(const Items& items) {
    double length = 0.0;
    for (const RollArtwork& item : items) {
        length = std::max(length, item.yInches + trimHeight(item));
    }
    return length;
}

bool goesFirst(const State& a, const State& b, const std::vector<long>& order, bool preferLowPlacement) {
    const std::vector<double> keysA =
        preferLowPlacement ? std::vector{a.sumY, a.length, a.sumX} : std::vector{a.length, a.sumY, a.sumX};
    const std::vector<double> keysB =
        preferLowPlacement ? std::vector{b.sumY, b.length, b.sumX} : std::vector{b.length, b.sumY, b.sumX};
    for (std::size_t i = 0; i < keysA.size(); ++i) {
        if (keysA[i] != keysB[i]) {
            return keysA[i] < keysB[i];
        }
    }
    if (a.turns != b.turns) {
        return a.turns < b.turns;
    }
    for (const long index : order) {
        const RollArtwork& left = a.arranged[index];
        const RollArtwork& right = b.arranged[index];
        if (left.yInches != right.yInches) {
            return left.yInches < right.yInches;
        }
        if (left.xInches != right.xInches) {
            return left.xInches < right.xInches;
        }
        if (left.rotationQuarterTurns != right.rotationQuarterTurns) {
            return left.rotationQuarterTurns < right.rotationQuarterTurns;
        }
    }
    return false;
}

std::vector<RollArtwork> variantsOf(const RollArtwork& artwork, double rollWidth) {
    std::vector<RollArtwork> variants{artwork};
    if (std::abs(artwork.widthInches - artwork.heightInches()) > 1e-9) {
        RollArtwork turned = artwork;
        turned.widthInches = artwork.heightInches();
        turned.rotationQuarterTurns = artwork.rotationQuarterTurns ^ 1;
        if (!turned.sizeValidationError(rollWidth)) {
            variants.push_back(turned);
        }
    }
    return variants;
}

/// The longer or the shorter sides, descending; ties by index.
std::vector<long> orderBySide(const Items& items, bool isLonger) {
    std::vector<long> order;
    for (long i = 0; i < items.size(); ++i) {
        order.push_back(i);
    }
    const auto side = [&](long i) {
        return isLonger ? std::max(trimWidth(items[i]), trimHeight(items[i]))
                        : std::min(trimWidth(items[i]), trimHeight(items[i]));
    };
    std::sort(order.begin(), order.end(),
              [&](long a, long b) { return side(a) != side(b) ? side(a) > side(b) : a < b; });
    return order;
}

} // namespace

std::vector<std::vector<long>> optimizedPackingOrders(const Items& items) {
    std::vector<std::vector<long>> orders = packingOrders(items);
    for (const bool isLonger : {true, false}) {
        const std::vector<long> order = orderBySide(items, isLonger);
        if (std::count(orders.begin(), orders.end(), order) == 0) {
            orders.push_back(order);
        }
    }
    return orders;
}

std::vector<Items> rotatingArrangements(const Items& items, const std::vector<long>& order, double gap,
                                        double rollWidth, std::size_t beamWidth, bool preferLowPlacement) {
    std::vector<State> beam{State{.arranged = items, .occupied = {}}};
    for (const long index : order) {
        std::vector<State> next;
        for (const State& state : beam) {
            const std::vector<RollArtwork> variants = variantsOf(state.arranged[index], rollWidth);
            for (std::size_t number = 0; number < variants.size(); ++number) {
                RollArtwork variant = variants[number];
                const auto point = vacancy(trimWidth(variant), trimHeight(variant), state.occupied, gap, rollWidth);
                if (!point) {
                    continue;
                }
                variant.xInches = point->x;
                variant.yInches = point->y;
                if (variant.validationError(rollWidth)) {
                    continue;
                }
                State grown = state;
                grown.arranged[index] = variant;
                const Box box = boxOf(variant, index);
                grown.occupied.insert(std::lower_bound(grown.occupied.begin(), grown.occupied.end(), box, comesBefore),
                                      box);
                grown.length = std::max(state.length, variant.yInches + trimHeight(variant));
                grown.sumY = state.sumY + variant.yInches;
                grown.sumX = state.sumX + variant.xInches;
                grown.turns = state.turns + (number == 0 ? 0 : 1);
                next.push_back(grown);
            }
        }
        std::stable_sort(next.begin(), next.end(),
                         [&](const State& a, const State& b) { return goesFirst(a, b, order, preferLowPlacement); });
        if (next.size() > beamWidth) {
            next.erase(next.begin() + static_cast<std::ptrdiff_t>(beamWidth), next.end());
        }
        if (next.empty()) {
            return {};
        }
        beam = next;
    }
    std::vector<Items> result;
    for (const State& state : beam) {
        if (hasSpacing(state.arranged, gap)) {
            result.push_back(state.arranged);
        }
    }
    return result;
}

bool prefersOptimized(const Items& candidate, const Items& current, const Items& original) {
    const double lengthC = lengthOf(candidate);
    const double lengthB = lengthOf(current);
    if (lengthC > lengthB) {
        return false;
    }
    if (lengthC < lengthB - 1e-9) {
        return true;
    }
    long turnsC = 0;
    long turnsB = 0;
    for (long i = 0; i < original.size(); ++i) {
        turnsC += candidate[i].rotationQuarterTurns != original[i].rotationQuarterTurns ? 1 : 0;
        turnsB += current[i].rotationQuarterTurns != original[i].rotationQuarterTurns ? 1 : 0;
    }
    if (turnsC != turnsB) {
        return turnsC < turnsB;
    }
    return isMoreCompact(candidate, current);
}

std::optional<Items> optimizeArrangement(const Items& items, double gap, double rollWidth) {
    std::optional<Items> best = autoArrange(items, gap, rollWidth);
    if (!best || items.isEmpty()) {
        return best;
    }
    const std::size_t beamWidth = items.size() <= 50 ? 6 : items.size() <= 100 ? 2 : 1;
    for (const auto& order : optimizedPackingOrders(items)) {
        for (const bool preferLowPlacement : {false, true}) {
            for (const Items& arrangement :
                 rotatingArrangements(items, order, gap, rollWidth, beamWidth, preferLowPlacement)) {
                if (prefersOptimized(arrangement, *best, items)) {
                    best = arrangement;
                }
            }
        }
    }
    for (const RollArtwork& item : *best) {
        if (item.validationError(rollWidth)) {
            return std::nullopt;
        }
    }
    return hasSpacing(*best, gap) ? best : std::nullopt;
}

} // namespace orvex::plain
