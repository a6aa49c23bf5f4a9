#include "BoardScale.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

QList<double> marks(double lastInches, double step) {
    QList<double> marks;
    for (int index = 0; index * step <= lastInches; ++index) {
        marks.append(index * step);
    }
    return marks;
}

} // namespace

double BoardScale::pointsPerInch(double containerWidth, double rollWidthInches, double zoom) {
    return std::max((containerWidth - surroundings) / rollWidthInches, leastPointsPerInch) * zoom;
}

double BoardScale::shownLengthInches(double lengthInches, const std::optional<double>& gestureFrameLength) {
    return std::max(lengthInches, gestureFrameLength.value_or(lengthInches));
}

QList<double> BoardScale::horizontalMarks(double rollWidthInches) {
    return marks(rollWidthInches, markInches);
}

QList<double> BoardScale::verticalMarks(double lengthInches) {
    if (!std::isfinite(lengthInches)) {
        return {};
    }
    const double decade = std::pow(10.0, std::floor(std::log10(std::max(lengthInches / 100.0, 1.0))));
    return marks(lengthInches, std::max(markInches, decade));
}

} // namespace orvex
