#include "Layout/FreePlaces.h"

#include "LayoutFixtures.h"
#include "PlainPacking.h"
#include "RandomLayouts.h"

#include <gtest/gtest.h>

#include <bit>

namespace orvex {
namespace {

using test::Dice;

std::optional<std::pair<std::uint64_t, std::uint64_t>> bits(const std::optional<Point>& point) {
    return point ? std::optional(
                       std::pair(std::bit_cast<std::uint64_t>(point->x), std::bit_cast<std::uint64_t>(point->y)))
                 : std::nullopt;
}

/// Boxes anywhere: over each other, beyond the roll, with sides that almost meet.
PackingBox anyBox(Dice& dice, qsizetype index, double farthestY) {
    const double nudge = dice.pick({0.0, 0.0, 1e-9, -1e-9, 5e-10, -5e-10, 1e-6, 1e-15});
    return {.index = index,
            .x = dice.pick({0.0, 10.0, 20.0 + nudge, 60.0 * dice.fraction(), 55.0}),
            .y = dice.pick({0.0, 10.0 + nudge, 30.0, farthestY * dice.fraction()}),
            .width = dice.pick({10.0, 20.0, 20.0 + nudge, 5.0 + 40.0 * dice.fraction()}),
            .height = dice.pick({10.0, 10.0 + nudge, 5.0 + 30.0 * dice.fraction()})};
}

Size anyFrame(Dice& dice, const Size& smallest) {
    return {dice.pick({smallest.width, 20.0, 20.0 + 5e-10, 60.0, 6.0 + 50.0 * dice.fraction()}),
            dice.pick({smallest.height, 10.0, 10.0 - 5e-10, 6.0 + 50.0 * dice.fraction()})};
}

TEST(FreePlaces, areThoseOfThePlainWalksAmongBoxesAnywhere) {
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const Size smallest{6.0, 6.0};
        const double gap = dice.pick({0.0, 0.0, 0.25, 1e-9, 1.0 / 3.0, 7.0});
        const double farthestY = dice.pick({40.0, 200.0, 1e6, 1e9, 1e14});
        FreePlaces places(gap, 60.0, smallest);
        std::vector<plain::Box> boxes;
        for (qsizetype index = 0; index < 30; ++index) {
            const PackingBox box = anyBox(dice, index, farthestY);
            places.add(box);
            boxes.push_back({static_cast<long>(index), box.x, box.y, box.width, box.height});
            std::sort(boxes.begin(), boxes.end(), plain::comesBefore);
            const Size frame = anyFrame(dice, smallest);
            ASSERT_EQ(bits(places.vacancy(frame)), bits(plain::vacancy(frame.width, frame.height, boxes, gap, 60.0)));
        }
    }
}

TEST(FreePlaces, ofACopyGoOnByThemselves) {
    FreePlaces places(0.0, 60.0, {5.0, 5.0});
    places.add({.index = 0, .x = 0.0, .y = 0.0, .width = 60.0, .height = 10.0});
    FreePlaces copy = places;
    copy.add({.index = 1, .x = 0.0, .y = 10.0, .width = 60.0, .height = 10.0});
    EXPECT_EQ(places.vacancy({30.0, 10.0}), (Point{0.0, 10.0}));
    EXPECT_EQ(copy.vacancy({30.0, 10.0}), (Point{0.0, 20.0}));
}

TEST(FreePlaces, letWalksEndBelowABoxOfNoExtent) {
    FreePlaces places(0.0, 60.0, {5.0, 5.0});
    places.add({.index = 0, .x = 0.0, .y = 0.0, .width = 10.0, .height = 5.0 + 0.7e-9});
    places.add({.index = 1, .x = 0.0, .y = 1.0, .width = 60.0, .height = 4.0});
    places.add({.index = 2, .x = 55.0, .y = 0.5, .width = 1e-6, .height = 4.5 - 0.5e-9});
    EXPECT_EQ(places.vacancy({10.0, 10.0}), (Point{50.0, 0.5 + (4.5 - 0.5e-9)}));
}

/// The vacancy in a hole of the width of 40 inches between boxes at `holeY` and `floorY`, whose other end is closed.
std::optional<Point> vacancyInHole(double holeY, double floorY, double height) {
    FreePlaces places(0.0, 60.0, {5.0, 5.0});
    places.add({.index = 0, .x = 0.0, .y = 0.0, .width = 60.0, .height = holeY});
    places.add({.index = 1, .x = 0.0, .y = holeY, .width = 20.0, .height = 8.0});
    places.add({.index = 2, .x = 0.0, .y = floorY, .width = 60.0, .height = 10.0});
    return places.vacancy({40.0, height});
}

TEST(FreePlaces, areFoundWhereCoordinatesAreTooLargeForTheSlack) {
    EXPECT_EQ(vacancyInHole(1e15, 1e15 + 7.25, 7.3), (Point{20.0, 1e15}));
}

TEST(FreePlaces, areFoundInHolesThatRoundingMakesTooLowByMoreThanTheTolerance) {
    constexpr double holeY = 0x1p26 - 100.0;
    constexpr double floorY = holeY + 7.3;
    EXPECT_EQ(vacancyInHole(holeY, floorY, floorY - holeY + 3.6e-9), (Point{20.0, holeY}));
}

TEST(FreePlaces, takeBoxesOfNoExtentAsTheWalkDoes) {
    FreePlaces places(0.0, 60.0, {5.0, 5.0});
    places.add({.index = 0, .x = 5.0, .y = 5.0, .width = 1e-7, .height = 1e-7});
    EXPECT_EQ(places.vacancy({10.0, 10.0}), plain::vacancy(10.0, 10.0, {{0, 5.0, 5.0, 1e-7, 1e-7}}, 0.0, 60.0));
}

} // namespace
} // namespace orvex
