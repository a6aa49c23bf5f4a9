#pragma once

#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <random>

namespace orvex::test {

/// Random layouts that repeat: the standard fixes the numbers of this engine, and only it is used.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    unsigned upTo(unsigned largest) { return static_cast<unsigned>(engine_() % (largest + 1U)); }

    bool oneIn(unsigned count) { return upTo(count - 1U) == 0; }

    double fraction() { return static_cast<double>(engine_() >> 11U) * 0x1p-53; }

    template <typename T>
    T pick(std::initializer_list<T> values) {
        return *(values.begin() + upTo(static_cast<unsigned>(values.size()) - 1U));
    }

private:
    std::mt19937_64 engine_;
};

enum class Sizes { equal, squares, quarters, any, tiny, mixed };

inline Size imageSize(Dice& dice, Sizes sizes, double usable) {
    const auto kind =
        sizes == Sizes::mixed ? dice.pick({Sizes::equal, Sizes::squares, Sizes::quarters, Sizes::any}) : sizes;
    const double side = usable * (0.02 + 0.98 * dice.fraction());
    switch (kind) {
    case Sizes::equal:
        return {usable / 3.0, usable / 4.0};
    case Sizes::squares:
        return {side, side};
    case Sizes::quarters:
        return {0.25 * (1.0 + dice.upTo(static_cast<unsigned>(usable * 2.0))), 0.25 * (1.0 + dice.upTo(100))};
    case Sizes::tiny:
        return {usable * (0.001 + 0.05 * dice.fraction()), 0.1 + dice.fraction()};
    case Sizes::any:
    case Sizes::mixed:
        break;
    }
    return {side, 0.1 + 60.0 * dice.fraction() * dice.fraction()};
}

inline RollArtwork randomArtwork(Dice& dice, Sizes sizes, double rollWidth, unsigned number) {
    const double usable = rollWidth - 5.0;
    const Size size = imageSize(dice, sizes, usable);
    const auto pixelWidth = std::max<qint64>(1, std::llround(size.width * 300.0));
    const auto pixelHeight = std::max<qint64>(1, std::llround(size.height * 300.0));
    RollArtwork artwork = RollArtwork::make({.id = id(number),
                                             .sourceURL = QUrl(QStringLiteral("file:///a.png")),
                                             .pixelWidth = pixelWidth,
                                             .pixelHeight = pixelHeight,
                                             .rotationQuarterTurns = dice.upTo(3)});
    artwork.widthInches = std::min(size.width, usable);
    if (dice.oneIn(4)) { // Sizes that differ in the last bit only.
        artwork.widthInches = std::nextafter(artwork.widthInches, dice.oneIn(2) ? 0.0 : 100.0);
    }
    return artwork;
}

struct Case {
    RollLayout layout;
    double gap = 0.0;
};

inline Case randomCase(std::uint64_t seed, unsigned count) {
    Dice dice(seed);
    Case random;
    random.gap = dice.pick({0.0, 0.0, 0.25, 0.5, 1.0 / 3.0, 2.0, 1e-9, 1e-10, dice.fraction(), 40.0});
    const double width =
        dice.pick({60.0, 60.0, 6.0, 24.0, 42.0, 36.5, 6.0 + 54.0 * dice.fraction(), 6.0 + 54.0 * dice.fraction()});
    random.layout = RollLayout({}, width);
    const auto sizes =
        dice.pick({Sizes::equal, Sizes::squares, Sizes::quarters, Sizes::any, Sizes::tiny, Sizes::mixed});
    const double spread = dice.pick({0.0, 10.0, 500.0, 1e6, 1e12, 1e15});
    for (unsigned number = 0; number < count; ++number) {
        RollArtwork artwork = randomArtwork(dice, sizes, width, number);
        artwork.xInches = dice.fraction() * std::max(width - 5.0 - artwork.widthInches, 0.0);
        artwork.yInches = dice.fraction() * spread;
        random.layout.items.append(artwork);
    }
    return random;
}

} // namespace orvex::test
