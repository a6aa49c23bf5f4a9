#include "Layout/PackingBox.h"

#include "LayoutFixtures.h"
#include "RandomLayouts.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using RollPacking::Occupied;
using test::Case;
using test::randomCase;

RollArtwork frameAt(double x, double y, double width, double height, unsigned number) {
    return test::artworkAt(x, y, width - 5.0, height - 5.0, number);
}

TEST(SortedBoxes, areOrderedByYThenXThenIndex) {
    const auto boxes = RollPacking::sortedBoxes(
        {frameAt(5, 9, 10, 10, 1), frameAt(5, 0, 10, 10, 2), frameAt(1, 9, 10, 10, 3), frameAt(5, 9, 20, 30, 4)});
    EXPECT_EQ(boxes, (Occupied{{1, 5, 0, 10, 10}, {2, 1, 9, 10, 10}, {0, 5, 9, 10, 10}, {3, 5, 9, 20, 30}}));
}

TEST(InsertedBoxes, keepTheOrderAndTellTheirPositions) {
    Occupied boxes;
    std::vector<std::size_t> positions;
    for (const PackingBox& box : {PackingBox{0, 5, 9, 10, 10}, PackingBox{1, 5, 0, 10, 10}, PackingBox{3, 5, 9, 20, 30},
                                  PackingBox{2, 1, 9, 10, 10}}) {
        positions.push_back(RollPacking::insert(box, boxes));
    }
    EXPECT_EQ(positions, (std::vector<std::size_t>{0, 0, 2, 1}));
    EXPECT_EQ(boxes, (Occupied{{1, 5, 0, 10, 10}, {2, 1, 9, 10, 10}, {0, 5, 9, 10, 10}, {3, 5, 9, 20, 30}}));
}

TEST(PackingBoxes, sortAndInsertKeepTheSameOrder) {
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
