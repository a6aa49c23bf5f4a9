#pragma once

namespace orvex {

/// The directions of a keyboard nudge; up is towards the start of the roll.
enum class RollNudgeDirection { left, right, up, down };

} // namespace orvex
