#include "Output/PageTransform.h"

#include <gtest/gtest.h>

#include <array>

namespace orvex {
namespace {

Point mapped(const PageTransform& map, Point point) {
    return {.x = map.a * point.x + map.c * point.y + map.e, .y = map.b * point.x + map.d * point.y + map.f};
}

constexpr Point topLeft{0, 1};
constexpr Point topRight{1, 1};
constexpr Point bottomLeft{0, 0};
constexpr Point bottomRight{1, 0};

struct Orientation {
    int orientation;
    Point storedTopLeft;  ///< where the first pixel of the first row belongs
    Point storedTopRight; ///< where the last pixel of the first row belongs
};

class UprightTransform : public ::testing::TestWithParam<Orientation> {};

TEST_P(UprightTransform, putsTheStoredCornersWhereTheOrientationSays) {
    const PageTransform map = uprightTransform(GetParam().orientation);
    EXPECT_EQ(mapped(map, topLeft), GetParam().storedTopLeft);
    EXPECT_EQ(mapped(map, topRight), GetParam().storedTopRight);
}

INSTANTIATE_TEST_SUITE_P(AllEight, UprightTransform,
                         ::testing::Values(Orientation{1, topLeft, topRight}, Orientation{2, topRight, topLeft},
                                           Orientation{3, bottomRight, bottomLeft},
                                           Orientation{4, bottomLeft, bottomRight}, Orientation{5, topLeft, bottomLeft},
                                           Orientation{6, topRight, bottomRight}, Orientation{7, bottomRight, topRight},
                                           Orientation{8, bottomLeft, topLeft}));

TEST(UprightTransform, takesAnUnknownOrientationAsUpright) {
    EXPECT_EQ(uprightTransform(0), PageTransform{});
    EXPECT_EQ(uprightTransform(9), PageTransform{});
}

TEST(PlacementTransform, fillsTheRectangleUnturned) {
    const PageTransform map = placementTransform({10, 20, 200, 100}, 0);
    EXPECT_EQ(mapped(map, bottomLeft), (Point{10, 20}));
    EXPECT_EQ(mapped(map, topRight), (Point{210, 120}));
}

TEST(PlacementTransform, turnsAQuarterClockwise) {
    // The picture's own top edge becomes the right edge of the rectangle.
    const PageTransform map = placementTransform({10, 20, 200, 100}, 1);
    EXPECT_EQ(mapped(map, topLeft), (Point{210, 120}));
    EXPECT_EQ(mapped(map, topRight), (Point{210, 20}));
    EXPECT_EQ(mapped(map, bottomLeft), (Point{10, 120}));
}

TEST(PlacementTransform, turnsHalfAndThreeQuarters) {
    const Rect rect{10, 20, 200, 100};
    EXPECT_EQ(mapped(placementTransform(rect, 2), topLeft), (Point{210, 20}));
    EXPECT_EQ(mapped(placementTransform(rect, 2), topRight), (Point{10, 20}));
    EXPECT_EQ(mapped(placementTransform(rect, 3), topLeft), (Point{10, 20}));
    EXPECT_EQ(mapped(placementTransform(rect, 3), topRight), (Point{10, 120}));
}

TEST(PageTransform, appliesTheFirstMapFirst) {
    const PageTransform doubled{2, 0, 0, 2, 0, 0};
    const PageTransform shifted{1, 0, 0, 1, 5, 7};
    EXPECT_EQ(mapped(doubled.then(shifted), {1, 1}), (Point{7, 9}));
    EXPECT_EQ(mapped(shifted.then(doubled), {1, 1}), (Point{12, 16}));
}

} // namespace
} // namespace orvex
