#include "Layout/InchLayout.h"
#include "Layout/RollLayout.h"
#include "LayoutFixtures.h"
#include "RandomLayouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

// What holds for every operation on every layout, however wild: a refused one changes nothing; any other keeps the ids,
// their order and the proportions, and, unless it is there to change it, the print scale.

namespace orvex {
namespace {

using test::Case;
using test::Dice;
using test::Snapshot;

double wildNumber(Dice& dice) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return dice.pick({0.0, -0.0, 1.0, 5.0, 5.000001, 24.0, 55.0, 55.0 + 5e-10, 60.0, 60.0 + 1e-9, -1.0, 1e-300, 1e16,
                      1e300, std::numeric_limits<double>::max(), nan, infinity, -infinity, 60.0 * dice.fraction()});
}

/// Damages a layout in one place, most of the time not at all.
void damage(RollLayout& layout, Dice& dice) {
    if (layout.items.isEmpty() || !dice.oneIn(3)) {
        return;
    }
    RollArtwork& item = layout.items[dice.upTo(static_cast<unsigned>(layout.items.size()) - 1U)];
    switch (dice.upTo(9)) {
    case 0:
        item.widthInches = wildNumber(dice);
        break;
    case 1:
        item.xInches = wildNumber(dice);
        break;
    case 2:
        item.yInches = wildNumber(dice);
        break;
    case 3:
        item.originalWidthInches = wildNumber(dice);
        break;
    case 4:
        item.rotationQuarterTurns = dice.pick({-1, 4, 7, 1, 3});
        break;
    case 5:
        item.id = layout.items.first().id;
        break;
    case 6:
        item.pixelHeight = dice.pick<qint64>({0, -5, 1, std::numeric_limits<qint64>::max()});
        break;
    case 7:
        layout.schemaVersion = dice.pick<qint64>({0, 2, 1});
        break;
    case 8:
        layout.widthInches = wildNumber(dice);
        break;
    default:
        item.sourceURL = QUrl(QStringLiteral("https://example.org/a.png"));
    }
}

QUuid anyId(const RollLayout& layout, Dice& dice) {
    const bool isKnown = !layout.items.isEmpty() && !dice.oneIn(8);
    return isKnown ? layout.items.at(dice.upTo(static_cast<unsigned>(layout.items.size()) - 1U)).id : test::id(999);
}

std::optional<double> wildWish(Dice& dice) {
    return dice.oneIn(3) ? std::nullopt : std::optional(wildNumber(dice));
}

enum class Operation {
    arrange,
    optimize,
    changeWidth,
    removeAndOptimize,
    size,
    move,
    resize,
    rotate,
    nudge,
    last = nudge
};

/// Runs an operation with wild arguments. Whether it was refused.
bool isRefused(RollLayout& layout, Operation operation, Dice& dice) {
    const QUuid id = anyId(layout, dice);
    const bool allowQuarterTurns = dice.oneIn(2);
    const double first = wildNumber(dice);
    const double second = wildNumber(dice);
    const double gap = dice.oneIn(2) ? 0.25 : first;
    const std::string refusal = test::refusalOf([&] {
        switch (operation) {
        case Operation::arrange:
            return layout.autoArrange(gap);
        case Operation::optimize:
            return layout.optimizeArrangement(allowQuarterTurns, gap);
        case Operation::changeWidth:
            return layout.changeRollWidth(first, allowQuarterTurns);
        case Operation::removeAndOptimize:
            layout.removeAndOptimize(id, allowQuarterTurns, gap);
            return;
        case Operation::size:
            layout = layout.sizingArtworks({{id, wildWish(dice), wildWish(dice)}}, allowQuarterTurns);
            return;
        case Operation::move:
            return layout.move(id, first, second);
        case Operation::resize:
            return layout.resize(id, first);
        case Operation::rotate:
            return layout.rotate(id);
        case Operation::nudge:
            layout.nudge(id, RollNudgeDirection::down, dice.oneIn(2), first);
            return;
        }
    });
    return refusal != "(none)";
}

bool changesSizes(Operation operation) {
    return operation == Operation::size || operation == Operation::resize;
}

void expectKept(const RollArtwork& before, const RollArtwork& after, Operation operation) {
    EXPECT_EQ(after.id, before.id);
    EXPECT_EQ(after.sourceURL, before.sourceURL);
    EXPECT_EQ(after.originalWidthInches, before.originalWidthInches);
    EXPECT_EQ(after.pixelHeight, before.pixelHeight);
    if (changesSizes(operation)) {
        return;
    }
    if (PrintUnits::isPositive(
            before.scale())) { // the damaged one of a layout that is not looked at as a whole may have none
        EXPECT_NEAR(after.scale() / before.scale(), 1.0, 1e-12);
    }
    if ((after.rotationQuarterTurns - before.rotationQuarterTurns) % 2 != 0) {
        EXPECT_EQ(after.widthInches, before.heightInches());
    }
}

/// The artworks that must be left: all, or all but the removed one.
QList<RollArtwork> expectedItems(const RollLayout& before, const RollLayout& after, Operation operation) {
    QList<RollArtwork> items = before.items;
    if (operation == Operation::removeAndOptimize && after.items.size() < items.size()) {
        const auto isLeft = [&](const RollArtwork& item) {
            return std::any_of(after.items.begin(), after.items.end(),
                               [&](const RollArtwork& other) { return other.id == item.id; });
        };
        items.removeIf([&](const RollArtwork& item) { return !isLeft(item); });
    }
    return items;
}

class RollOperations : public ::testing::TestWithParam<int> {};

TEST_P(RollOperations, changeNothingWhenRefusedAndKeepScalesIdsAndOrderOtherwise) {
    const auto operation = static_cast<Operation>(GetParam());
    int done = 0;
    int refused = 0;
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        RollLayout layout = test::randomCase(seed, static_cast<unsigned>(seed % 9U)).layout;
        damage(layout, dice);
        const RollLayout before = layout;
        if (isRefused(layout, operation, dice)) {
            EXPECT_EQ(Snapshot(layout), Snapshot(before));
            ++refused;
            continue;
        }
        ++done;
        const QList<RollArtwork> expected = expectedItems(before, layout, operation);
        ASSERT_EQ(layout.items.size(), expected.size());
        for (qsizetype index = 0; index < expected.size(); ++index) {
            expectKept(expected.at(index), layout.items.at(index), operation);
        }
    }
    EXPECT_GT(done, 20);
    EXPECT_GT(refused, 20);
}

INSTANTIATE_TEST_SUITE_P(All, RollOperations, ::testing::Range(0, static_cast<int>(Operation::last) + 1));

} // namespace
} // namespace orvex
