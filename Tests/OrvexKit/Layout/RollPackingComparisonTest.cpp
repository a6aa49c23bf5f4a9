#include "Layout/RollLayout.h"
#include "Layout/RollPacking.h"
#include "LayoutFixtures.h"
#include "PlainPacking.h"
#include "RandomLayouts.h"

#include <gtest/gtest.h>

#include <bit>

// The real packing and the plain one must agree to the last bit, on layouts that no one would think of.

namespace orvex {
namespace {

using test::Case;
using test::randomCase;

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

} // namespace
} // namespace orvex
