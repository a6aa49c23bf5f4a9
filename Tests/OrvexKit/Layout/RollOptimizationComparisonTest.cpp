#include "Layout/RollLayout.h"
#include "Layout/RollOptimization.h"
#include "LayoutFixtures.h"
#include "PlainOptimization.h"
#include "RandomLayouts.h"

#include <gtest/gtest.h>

// The real search and the plain one must agree to the last bit, on layouts that no one would think of.

namespace orvex {
namespace {

using test::Case;
using test::randomCase;
using test::Snapshot;

std::vector<Snapshot> bits(const std::vector<QList<RollArtwork>>& arrangements) {
    return {arrangements.begin(), arrangements.end()};
}

std::vector<std::vector<long>> plainOrders(const std::vector<RollPacking::Order>& orders) {
    std::vector<std::vector<long>> result;
    for (const RollPacking::Order& order : orders) {
        result.emplace_back(order.begin(), order.end());
    }
    return result;
}

void expectEqualSearches(const Case& random, std::size_t beamWidth) {
    const auto& items = random.layout.items;
    const double width = random.layout.widthInches;
    const auto variants = RollOptimization::variants(items, width);
    const auto orders = RollOptimization::optimizedPackingOrders(items);
    ASSERT_EQ(plainOrders(orders), plain::optimizedPackingOrders(items));
    for (const auto& order : orders) {
        for (const bool preferLowPlacement : {false, true}) {
            EXPECT_EQ(bits(RollOptimization::rotatingArrangements(variants, order,
                                                                  {random.gap, width, beamWidth, preferLowPlacement})),
                      bits(plain::rotatingArrangements(items, {order.begin(), order.end()}, random.gap, width,
                                                       beamWidth, preferLowPlacement)));
        }
    }
}

void expectEqualOptimization(const Case& random) {
    RollLayout optimized = random.layout;
    ASSERT_EQ(test::refusalOf([&] { optimized.optimizeArrangement(true, random.gap); }), "(none)");
    const auto expected = plain::optimizeArrangement(random.layout.items, random.gap, random.layout.widthInches);
    ASSERT_TRUE(expected);
    EXPECT_EQ(Snapshot(optimized.items), Snapshot(*expected));
}

class RollOptimizationComparison : public ::testing::TestWithParam<int> {};

TEST_P(RollOptimizationComparison, agreesWithThePlainImplementationToTheLastBit) {
    constexpr int layoutsPerTest = 52;
    for (int number = 0; number < layoutsPerTest; ++number) {
        const auto seed = static_cast<std::uint64_t>(7'000'000 + GetParam() * layoutsPerTest + number);
        SCOPED_TRACE(seed);
        const Case random = randomCase(seed, static_cast<unsigned>(seed % 31U));
        expectEqualSearches(random, 1 + seed % 7U);
        expectEqualOptimization(random);
    }
}

TEST_P(RollOptimizationComparison, agreesOnLongerRollsWithNarrowerBeams) {
    const auto seed = static_cast<std::uint64_t>(8'000'000 + GetParam());
    SCOPED_TRACE(seed);
    expectEqualOptimization(randomCase(seed, GetParam() % 2 == 0 ? 60U : 110U));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RollOptimizationComparison, ::testing::Range(0, 20));

} // namespace
} // namespace orvex
