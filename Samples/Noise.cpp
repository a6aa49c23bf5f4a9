#include "Noise.h"

#include <algorithm>

namespace orvex::samples {

namespace {

// The three that make smooth noise quick: it is called some hundred million times.

int wholeBelow(float value) {
    const int cut = static_cast<int>(value);
    return cut - (static_cast<float>(cut) > value ? 1 : 0);
}

float faded(float share) {
    return share * share * (3 - 2 * share);
}

float corner(std::uint64_t seed, int x, int y) {
    std::uint32_t bits = static_cast<std::uint32_t>(x) * 0x9E3779B1U + static_cast<std::uint32_t>(y) * 0x85EBCA77U;
    bits ^= static_cast<std::uint32_t>(seed) * 0xC2B2AE3DU;
    bits = (bits ^ (bits >> 15)) * 0x2C1B3C6DU;
    bits = (bits ^ (bits >> 13)) * 0x297A2D39U;
    return static_cast<float>(static_cast<std::int32_t>(bits ^ (bits >> 16))) / 2147483648.0F;
}

} // namespace

std::uint64_t hashOf(std::uint64_t seed, std::int64_t x, std::int64_t y) {
    std::uint64_t bits = seed * 0x9E3779B97F4A7C15U;
    bits ^= static_cast<std::uint64_t>(x) * 0xBF58476D1CE4E5B9U;
    bits ^= static_cast<std::uint64_t>(y) * 0x94D049BB133111EBU;
    bits ^= bits >> 29;
    bits *= 0xBF58476D1CE4E5B9U;
    bits ^= bits >> 32;
    bits *= 0x94D049BB133111EBU;
    return bits ^ (bits >> 29);
}

float uniformAt(std::uint64_t seed, std::int64_t x, std::int64_t y) {
    return static_cast<float>(hashOf(seed, x, y) >> 40) / 16777216.0F;
}

float normalAt(std::uint64_t seed, std::int64_t x, std::int64_t y) {
    const std::uint64_t bits = hashOf(seed, x, y);
    const std::uint64_t sum = (bits & 0xFFFF) + ((bits >> 16) & 0xFFFF) + ((bits >> 32) & 0xFFFF) + (bits >> 48);
    return (static_cast<float>(sum) / 65536.0F - 2.0F) * 1.7320508F;
}

float noise(std::uint64_t seed, float x, float y) {
    const int column = wholeBelow(x);
    const int row = wholeBelow(y);
    const float u = faded(x - static_cast<float>(column));
    const float v = faded(y - static_cast<float>(row));
    const float above = mix(corner(seed, column, row), corner(seed, column + 1, row), u);
    const float below = mix(corner(seed, column, row + 1), corner(seed, column + 1, row + 1), u);
    return mix(above, below, v);
}

float octaves(std::uint64_t seed, float x, float y, int count) {
    float sum = 0;
    float strength = 0.5F;
    for (int octave = 0; octave < count; ++octave) {
        sum += strength * noise(seed + static_cast<std::uint64_t>(octave), x, y);
        strength *= 0.5F;
        // The turn keeps the lattices of the octaves from lying on each other.
        const float turned = 1.6F * x - 1.2F * y;
        y = 1.2F * x + 1.6F * y;
        x = turned;
    }
    return sum;
}

float smoothStep(float low, float high, float value) {
    return faded(std::clamp((value - low) / (high - low), 0.0F, 1.0F));
}

} // namespace orvex::samples
