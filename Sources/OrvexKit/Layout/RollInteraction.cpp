#include "Layout/RollInteraction.h"

#include "Layout/InchLayout.h"
#include "Layout/RollArtwork.h"

#include <algorithm>
#include <cmath>

namespace orvex::RollInteraction {

namespace {

/// What an inch of movement along each axis adds to the width, by projection on the diagonal.
struct Projection {
    double alongX = 0.0;
    double alongY = 0.0;
};

Projection diagonalProjection(double width, double height) {
    // Both sides relative to the larger, so that no square overflows.
    const double larger = std::max(width, height);
    const double u = width / larger;
    const double v = height / larger;
    const double d = u * u + v * v;
    return {u * u / d, u * v / d};
}

} // namespace

double resizedWidth(double startWidth, double startHeight, double translationX, double translationY, double originX,
                    double rollWidthInches) {
    if (rollWidthValidationError(rollWidthInches)) {
        return minimumWidthInches;
    }
    const double origin = std::isfinite(originX) && originX >= 0.0 ? originX : 0.0;
    const double maximum = std::max(rollWidthInches - PrintUnits::bothBordersInches - origin, minimumWidthInches);
    const double base = std::isfinite(startWidth) && startWidth > 0.0
                            ? std::min(std::max(startWidth, minimumWidthInches), maximum)
                            : minimumWidthInches;
    const bool usable = std::isfinite(startWidth) && std::isfinite(startHeight) && std::isfinite(originX) &&
                        std::isfinite(translationX) && std::isfinite(translationY) && startWidth > 0.0 &&
                        startHeight > 0.0;
    if (!usable) {
        return base;
    }
    const Projection share = diagonalProjection(startWidth, startHeight);
    const double width = translationY * share.alongY + (translationX * share.alongX + base);
    if (std::isnan(width)) {
        return base;
    }
    return std::min(std::max(width, minimumWidthInches), maximum);
}

double constrainedMoveY(double requestedY, double trimHeight, double canvasLength) {
    const bool usable = std::isfinite(requestedY) && std::isfinite(trimHeight) && std::isfinite(canvasLength) &&
                        trimHeight >= 0.0 && canvasLength >= 0.0;
    if (!usable) {
        return 0.0;
    }
    return std::min(std::max(0.0, requestedY), std::max(canvasLength - trimHeight, 0.0));
}

} // namespace orvex::RollInteraction
