#pragma once

#include "Layout/RollArtwork.h"

namespace orvex {

/// Brings a requested print size to quarter inches without ever distorting the image. Image sizes in inches, border
/// excluded. Pure; any thread.
namespace QuarterInchArtworkSizing {

/// Which dimension the target speaks of.
enum class Dimension { width, height };

/// Whether both dimensions must be whole quarter inches, or only the edited one, which the other follows.
enum class Strategy { bothDimensions, editedDimension };

struct Result {
    double widthInches = 0.0;
    double heightInches = 0.0;
    double scale = 0.0; ///< width over the natural width

    bool operator==(const Result&) const = default;
};

/// The size nearest to the target. Of the artwork only the pixels, the original size and the turns count. Raises
/// OrvexError if the target cannot be met on the roll; nothing is shrunk to fit.
[[nodiscard]] Result size(const RollArtwork& artwork, double target, Dimension dimension, double rollWidthInches,
                          Strategy strategy);

} // namespace QuarterInchArtworkSizing

} // namespace orvex
