#pragma once

#include "Layout/RollLayout.h"

namespace orvex {

/// How the artworks come to lie in their new sizes. Texts are in the current language and locale.
struct BatchArrangementPreview {
    RollLayout layout;               ///< arranged to save canvas
    double conventionalLength = 0.0; ///< inches, of the same sizes arranged in the plain way

    /// Both arrangements of a layout, without a gap between trim frames. Raises OrvexError for a layout that cannot be
    /// arranged. Takes its time; any thread.
    [[nodiscard]] static BatchArrangementPreview make(const RollLayout& sized, bool allowQuarterTurns);

    bool operator==(const BatchArrangementPreview&) const = default;

    /// How much of the canvas the trim frames cover, in percent, 0 to 100.
    [[nodiscard]] double utilization() const;

    /// The same of the images without their borders.
    [[nodiscard]] double imageUtilization() const;

    /// The canvas saved in inches; 0 where the plain arrangement is the shorter.
    [[nodiscard]] double savedLength() const;

    /// What the drawing of the layout is called for those who hear the screen.
    [[nodiscard]] QString accessibilityLabel() const;

    [[nodiscard]] QString headline() const;

    /// Four lines that compare the arrangements.
    [[nodiscard]] QString comparison() const;
};

} // namespace orvex
