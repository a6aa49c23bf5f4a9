#include "Layout/RollInteraction.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

struct Drag {
    const char* name;
    double startWidth;
    double startHeight;
    double translationX;
    double translationY;
    double originX;
    double rollWidth;
    double expected;
};

void PrintTo(const Drag& drag, std::ostream* out) {
    *out << drag.name;
}

class ResizedWidth : public ::testing::TestWithParam<Drag> {};

TEST_P(ResizedWidth, followsTheDragAlongTheDiagonal) {
    const Drag& drag = GetParam();
    EXPECT_EQ(RollInteraction::resizedWidth(drag.startWidth, drag.startHeight, drag.translationX, drag.translationY,
                                            drag.originX, drag.rollWidth),
              drag.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Drags, ResizedWidth,
    ::testing::Values(Drag{"still", 30, 10, 0, 0, 0, 60, 30.0}, Drag{"across", 30, 10, 10, 0, 0, 60, 39.0},
                      Drag{"along", 30, 10, 0, 10, 0, 60, 33.0}, Drag{"both", 30, 10, 10, 10, 0, 60, 42.0},
                      Drag{"smaller", 30, 10, -10, 0, 0, 60, 21.0}, Drag{"square", 20, 20, 4, 0, 0, 60, 22.0},
                      Drag{"toTheSmallest", 30, 10, -100, 0, 0, 60, 0.1},
                      Drag{"toTheRightEdge", 30, 10, 100, 0, 0, 60, 55.0},
                      Drag{"toTheRightEdgeFromWithin", 30, 10, 100, 0, 12.5, 60, 42.5},
                      Drag{"noRoomToTheRight", 30, 10, 100, 0, 58, 60, 0.1},
                      Drag{"startsTooWide", 50, 10, 0, 0, 20, 60, 35.0},
                      Drag{"startsTooNarrow", 0.05, 0.05, 0, 0, 0, 60, 0.1},
                      Drag{"infiniteMovementEvensOut", 30, 10, infinity, 0, 0, 60, 30.0},
                      Drag{"oppositeMovementsThatSwallowTheWidth", 10, 10, -largest, largest, 0, 60, 0.1},
                      Drag{"movementOverflows", 1, 1, largest, largest, 0, 60, 55.0},
                      Drag{"movementOverflowsBackwards", 1, 1, -largest, -largest, 0, 60, 0.1},
                      Drag{"sidesWhoseSquaresOverflow", 1e300, 1e300, 0, 0, 0, 60, 55.0}),
    [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    BadNumbers, ResizedWidth,
    ::testing::Values(Drag{"rollNaN", 30, 10, 0, 0, 0, nan, 0.1}, Drag{"rollOfFive", 30, 10, 0, 0, 0, 5, 0.1},
                      Drag{"rollTooWide", 30, 10, 0, 0, 0, 60.0000001, 0.1},
                      Drag{"widthNaN", nan, 10, 5, 5, 0, 60, 0.1}, Drag{"widthZero", 0, 10, 5, 5, 0, 60, 0.1},
                      Drag{"heightZero", 30, 0, 5, 5, 0, 60, 30.0}, Drag{"heightNegative", 30, -1, 5, 5, 0, 60, 30.0},
                      Drag{"originNaN", 30, 10, 5, 5, nan, 60, 30.0},
                      Drag{"originNegative", 30, 10, 10, 0, -4, 60, 39.0},
                      Drag{"translationNaN", 30, 10, 5, nan, 0, 60, 30.0},
                      Drag{"tooWideAndBadHeight", 70, nan, 5, 5, 10, 60, 45.0}),
    [](const auto& test) { return std::string(test.param.name); });

struct Move {
    const char* name;
    double requestedY;
    double trimHeight;
    double canvasLength;
    double expected;
};

void PrintTo(const Move& move, std::ostream* out) {
    *out << move.name;
}

class ConstrainedMoveY : public ::testing::TestWithParam<Move> {};

TEST_P(ConstrainedMoveY, staysWithinTheCanvas) {
    const Move& move = GetParam();
    EXPECT_EQ(RollInteraction::constrainedMoveY(move.requestedY, move.trimHeight, move.canvasLength), move.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, ConstrainedMoveY,
    ::testing::Values(Move{"within", 7.5, 20, 50, 7.5}, Move{"atTheEnd", 30, 20, 50, 30.0},
                      Move{"beyondTheEnd", 31, 20, 50, 30.0}, Move{"beforeTheStart", -1, 20, 50, 0.0},
                      Move{"longerThanTheCanvas", 10, 60, 50, 0.0}, Move{"emptyCanvas", 1, 0, 0, 0.0},
                      Move{"requestedNaN", nan, 20, 50, 0.0}, Move{"requestedInfinite", infinity, 20, 50, 0.0},
                      Move{"heightNegative", 10, -1, 50, 0.0}, Move{"heightNaN", 10, nan, 50, 0.0},
                      Move{"canvasNegative", 10, 1, -50, 0.0}, Move{"canvasInfinite", 10, 1, infinity, 0.0}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace orvex
