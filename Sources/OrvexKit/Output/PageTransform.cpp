#include "Output/PageTransform.h"

#include <array>

namespace orvex {

PageTransform PageTransform::then(const PageTransform& next) const {
    return {.a = next.a * a + next.c * b,
            .b = next.b * a + next.d * b,
            .c = next.a * c + next.c * d,
            .d = next.b * c + next.d * d,
            .e = next.a * e + next.c * f + next.e,
            .f = next.b * e + next.d * f + next.f};
}

PageTransform uprightTransform(int orientation) {
    // EXIF 2.3, 4.6.4, tag 274: where the stored picture's first row and first column lie in the upright one.
    static constexpr std::array<PageTransform, 8> transforms{{
        {1, 0, 0, 1, 0, 0},   // top, left
        {-1, 0, 0, 1, 1, 0},  // top, right
        {-1, 0, 0, -1, 1, 1}, // bottom, right
        {1, 0, 0, -1, 0, 1},  // bottom, left
        {0, -1, -1, 0, 1, 1}, // left, top
        {0, -1, 1, 0, 0, 1},  // right, top
        {0, 1, 1, 0, 0, 0},   // right, bottom
        {0, 1, -1, 0, 1, 0},  // left, bottom
    }};
    const bool isKnown = orientation >= 1 && orientation <= 8;
    return transforms[isKnown ? static_cast<std::size_t>(orientation - 1) : 0];
}

PageTransform placementTransform(const Rect& rect, qint64 quarterTurns) {
    // Quarter turns have exact sines and cosines; computed ones would leave a hair of skew.
    static constexpr std::array<PageTransform, 4> turns{{
        {1, 0, 0, 1, 0, 0},
        {0, -1, 1, 0, 0, 0},
        {-1, 0, 0, -1, 0, 0},
        {0, 1, -1, 0, 0, 0},
    }};
    const bool isOdd = quarterTurns % 2 != 0;
    const double width = isOdd ? rect.height : rect.width;
    const double height = isOdd ? rect.width : rect.height;
    const PageTransform centred{width, 0, 0, height, -width / 2, -height / 2};
    const PageTransform toPlace{1, 0, 0, 1, rect.x + rect.width / 2, rect.y + rect.height / 2};
    return centred.then(turns[static_cast<std::size_t>(quarterTurns & 3)]).then(toPlace);
}

} // namespace orvex
