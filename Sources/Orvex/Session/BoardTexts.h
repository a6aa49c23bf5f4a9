#pragma once

#include "Layout/RollLayout.h"

namespace orvex {

/// What the board and its artworks are called for those who hear the screen, in the current language. Any thread.
namespace BoardTexts {

[[nodiscard]] QString accessibilityLabel(const RollLayout& layout);
[[nodiscard]] QString accessibilityLabel(const RollArtwork& artwork);

} // namespace BoardTexts

} // namespace orvex
