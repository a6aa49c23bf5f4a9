#pragma once

#include <cstdint>

namespace orvex::samples {

/// 64 well-mixed bits for a place of a lattice; the same on every machine.
[[nodiscard]] std::uint64_t hashOf(std::uint64_t seed, std::int64_t x, std::int64_t y);

/// A uniform number from 0 to below 1 for a place of a lattice.
[[nodiscard]] float uniformAt(std::uint64_t seed, std::int64_t x, std::int64_t y);

/// A nearly normal number of mean 0 and deviation 1 for a place of a lattice.
[[nodiscard]] float normalAt(std::uint64_t seed, std::int64_t x, std::int64_t y);

/// Smooth noise of period about 1, from -1 to 1.
[[nodiscard]] float noise(std::uint64_t seed, float x, float y);

/// Octaves of smooth noise, each of twice the frequency and half the strength of the one before; about -1 to 1.
[[nodiscard]] float octaves(std::uint64_t seed, float x, float y, int count);

/// 0 below `low`, 1 above `high`, smooth in between.
[[nodiscard]] float smoothStep(float low, float high, float value);

/// From `a` at 0 to `b` at 1.
[[nodiscard]] inline float mix(float a, float b, float share) {
    return a + (b - a) * share;
}

} // namespace orvex::samples
