#include "Layout/RollLayout.h"
#include "Layout/RollPacking.h"
#include "LayoutFixtures.h"
#include "PlainPacking.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>

// The real packing and the plain one must agree to the last bit, on layouts that no one would think of.

namespace orvex {
namespace {

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

Size imageSize(Dice& dice, Sizes sizes, double usable) {
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

RollArtwork randomArtwork(Dice& dice, Sizes sizes, double rollWidth, unsigned number) {
    const double usable = rollWidth - 5.0;
    const Size size = imageSize(dice, sizes, usable);
    const auto pixelWidth = std::max<qint64>(1, std::llround(size.width * 300.0));
    const auto pixelHeight = std::max<qint64>(1, std::llround(size.height * 300.0));
    RollArtwork artwork = RollArtwork::make({.id = test::id(number),
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

Case randomCase(std::uint64_t seed, unsigned count) {
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

std::vector<std::vector<long>> plainOrders(const std::vector<RollPacking::Order>& orders) {
    std::vector<std::vector<long>> result;
    for (const RollPacking::Order& order : orders) {
        result.emplace_back(order.begin(), order.end());
    }
    return result;
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> bits(const std::optional<Point>& point) {
    return point ? std::optional(
                       std::pair(std::bit_cast<std::uint64_t>(point->x), std::bit_cast<std::uint64_t>(point->y)))
                 : std::nullopt;
}

std::optional<test::Snapshot> bits(const std::optional<QList<RollArtwork>>& items) {
    return items ? std::optional(test::Snapshot(*items)) : std::nullopt;
}

/// The first vacancy of every item beside all others as they lie now, in whatever disorder.
void expectEqualVacancies(const Case& random) {
    const auto boxes = RollPacking::sortedBoxes(random.layout.items);
    const double width = random.layout.widthInches;
    for (const PackingBox& box : boxes) {
        EXPECT_EQ(
            bits(RollPacking::vacancy(box.width, box.height, boxes, random.gap, width)),
            bits(plain::vacancy(box.width, box.height, plain::sortedBoxes(random.layout.items), random.gap, width)));
    }
}

void expectEqualArrangements(const Case& random) {
    const auto& items = random.layout.items;
    const double width = random.layout.widthInches;
    const auto orders = RollPacking::packingOrders(items);
    ASSERT_EQ(plainOrders(orders), plain::packingOrders(items));
    EXPECT_EQ(bits(RollPacking::shelfArrangement(items, random.gap, width)),
              bits(plain::shelfArrangement(items, random.gap, width)));
    for (const auto& order : orders) {
        EXPECT_EQ(bits(RollPacking::compactArrangement(items, order, random.gap, width)),
                  bits(plain::compactArrangement(items, {order.begin(), order.end()}, random.gap, width)));
    }
    RollLayout arranged = random.layout;
    ASSERT_EQ(test::refusalOf([&] { arranged.autoArrange(random.gap); }), "(none)");
    EXPECT_EQ(bits(std::optional(arranged.items)), bits(plain::autoArrange(items, random.gap, width)));
}

class RollPackingComparison : public ::testing::TestWithParam<int> {};

TEST_P(RollPackingComparison, agreesWithThePlainImplementationToTheLastBit) {
    constexpr int layoutsPerTest = 125;
    for (int number = 0; number < layoutsPerTest; ++number) {
        const auto seed = static_cast<std::uint64_t>(GetParam() * layoutsPerTest + number);
        SCOPED_TRACE(seed);
        const Case random = randomCase(seed, static_cast<unsigned>(seed % 41U));
        expectEqualVacancies(random);
        expectEqualArrangements(random);
    }
}

TEST_P(RollPackingComparison, agreesOnLongerRolls) {
    const auto seed = static_cast<std::uint64_t>(100000 + GetParam());
    const Case random = randomCase(seed, 60U + static_cast<unsigned>(seed % 61U));
    expectEqualVacancies(random);
    expectEqualArrangements(random);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RollPackingComparison, ::testing::Range(0, 20));

TEST(RollPackingBoxes, sortAndInsertKeepTheSameOrder) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        Case random = randomCase(seed, 20);
        for (RollArtwork& item : random.layout.items) { // Many ties.
            item.xInches = std::floor(item.xInches / 20.0);
            item.yInches = std::fmod(std::floor(item.yInches), 3.0);
        }
        RollPacking::Occupied inserted;
        for (qsizetype index = 0; index < random.layout.items.size(); ++index) {
            RollPacking::insert(RollPacking::box(random.layout.items.at(index), index), inserted);
        }
        EXPECT_EQ(inserted, RollPacking::sortedBoxes(random.layout.items));
    }
}

} // namespace
} // namespace orvex
