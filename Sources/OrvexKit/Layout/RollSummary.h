#pragma once

#include "Layout/RollLayout.h"

#include <optional>

namespace orvex {

/// How much of the canvas the trim frames cover, in percent, 0 to 100; 0 for an empty roll.
[[nodiscard]] double utilizationPercent(const RollLayout& layout);

/// The same of the images without their borders.
[[nodiscard]] double imageUtilizationPercent(const RollLayout& layout);

/// A warning, which stops nothing, about a roll that is longer than the driver's known single page; absent otherwise.
[[nodiscard]] std::optional<QString> rollAdvisory(const RollLayout& layout);

} // namespace orvex
