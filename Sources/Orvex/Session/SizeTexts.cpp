#include "SizeTexts.h"

#include "Layout/NumberText.h"

#include <cmath>

namespace orvex {

namespace {

bool isQuarterInch(double inches) {
    constexpr double quartersTolerance = 4e-9; // of a number of quarters: 1e-9 inch
    const double quarters = inches * 4.0;
    return std::isfinite(inches) && std::abs(quarters - std::round(quarters)) <= quartersTolerance;
}

} // namespace

QString batchNumber(double value) {
    return formatNumber(value, 6);
}

QString artworkSizeText(double inches) {
    return isQuarterInch(inches) ? formatFixedNumber(inches, 2) : formatNumber(inches, 6);
}

QString inchesText(double inches) {
    return formatNumber(inches, 3);
}

} // namespace orvex
