#include "PressInks.h"

#include <algorithm>
#include <cmath>

namespace orvex::samples {

namespace {

using Light = std::array<double, 3>; ///< reflected light in three bands: long, middle, short waves

// The share of each band that a solid ink lets through.
constexpr std::array<Light, 4> solids{{{0.05, 0.30, 0.72}, {0.62, 0.05, 0.24}, {0.90, 0.72, 0.05}, {0.02, 0.02, 0.02}}};
// From the bands to XYZ of D50: the equal mixture of all three is the paper.
constexpr std::array<Light, 3> toXyz{
    {{0.4360747, 0.3850649, 0.1430804}, {0.2225045, 0.7168786, 0.0606169}, {0.0139322, 0.0971045, 0.7141733}}};
constexpr std::array<Light, 3> fromXyz{
    {{3.1338561, -1.6168667, -0.4906146}, {-0.9787684, 1.9161415, 0.0334540}, {0.0719453, -0.2289914, 1.4052427}}};
constexpr double dotGain = 1.7; ///< the exponent by which halftone dots print darker than their area

Light times(const std::array<Light, 3>& matrix, const Light& vector) {
    Light result{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            result[row] += matrix[row][column] * vector[column];
        }
    }
    return result;
}

/// The share of a band that the dots of one ink leave.
double left(double ink, double solid) {
    return std::pow(1 - ink * (1 - std::pow(solid, 1 / dotGain)), dotGain);
}

Light reflected(const Inks& inks) {
    Light light{1, 1, 1};
    for (std::size_t ink = 0; ink < inks.size(); ++ink) {
        for (std::size_t band = 0; band < light.size(); ++band) {
            light[band] *= left(inks[ink], solids[ink][band]);
        }
    }
    return light;
}

/// Black replaces the gray part of the darker half of the tones.
double blackFor(const Light& wanted) {
    const double lightness = std::cbrt(std::max({wanted[0], wanted[1], wanted[2], 0.0}));
    const double share = std::clamp((0.75 - lightness) / 0.75, 0.0, 1.0);
    return 0.95 * share * share;
}

/// How much of an ink leaves no more than `wanted` of a band.
double inkFor(double wanted, double solid) {
    const double root = std::pow(std::clamp(wanted, 0.0, 1.0), 1 / dotGain);
    return std::clamp((1 - root) / (1 - std::pow(solid, 1 / dotGain)), 0.0, 1.0);
}

} // namespace

Xyz printed(const Inks& inks) {
    return times(toXyz, reflected(inks));
}

Inks separated(const Xyz& color) {
    Light wanted = times(fromXyz, color);
    for (double& band : wanted) {
        band = std::clamp(band, 0.0004, 1.0);
    }
    Inks inks{0, 0, 0, blackFor(wanted)};
    // Each ink rules one band; what the others take from that band is found by going round.
    for (int pass = 0; pass < 24; ++pass) {
        for (std::size_t ink = 0; ink < 3; ++ink) {
            Inks others = inks;
            others[ink] = 0;
            inks[ink] = inkFor(wanted[ink] / reflected(others)[ink], solids[ink][ink]);
        }
    }
    return inks;
}

} // namespace orvex::samples
