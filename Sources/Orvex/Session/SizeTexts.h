#pragma once

#include <QString>

namespace orvex {

/// Numbers as the window shows them: current locale, no digit grouping, no unit. Any thread.

/// At most six fraction digits.
[[nodiscard]] QString batchNumber(double value);

/// The size of an artwork in inches: exactly two fraction digits for a whole number of quarter inches, at most six for
/// any other.
[[nodiscard]] QString artworkSizeText(double inches);

/// A width, length or distance on the roll in inches: at most three fraction digits.
[[nodiscard]] QString inchesText(double inches);

} // namespace orvex
