#pragma once

namespace orvex {

/// A point; the unit is that of the function that gives it. x runs to the right.
struct Point {
    double x = 0.0;
    double y = 0.0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0.0;
    double height = 0.0;

    bool operator==(const Size&) const = default;
};

/// A rectangle by its corner of least coordinates and its size; the unit is that of the function that gives it.
struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    [[nodiscard]] constexpr double minX() const { return x; }

    [[nodiscard]] constexpr double maxX() const { return x + width; }

    [[nodiscard]] constexpr double minY() const { return y; }

    [[nodiscard]] constexpr double maxY() const { return y + height; }

    [[nodiscard]] constexpr double midX() const { return x + width / 2.0; }

    [[nodiscard]] constexpr double midY() const { return y + height / 2.0; }

    bool operator==(const Rect&) const = default;
};

} // namespace orvex
