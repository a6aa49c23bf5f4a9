#include "Layout/InchLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/RollPDFRenderer.h"

#include <QSet>

namespace orvex::RollPDFRenderer {

namespace {

using PrintUnits::pointsPerInch;
constexpr double borderPoints = PrintUnits::whiteBorderInches * pointsPerInch;
constexpr double tolerancePoints = 1e-5;    // rounding of inches to points
constexpr double aspectTolerance = 1e-6;    // relative
constexpr double largestPageSide = 14400.0; // units: 200 inches, the format's limit of a page side

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) && std::isfinite(rect.height);
}

bool hasArea(const Rect& rect) {
    return rect.width > 0 && rect.height > 0;
}

bool liesWithin(const Rect& rect, const Rect& page) {
    return rect.minX() >= page.minX() - tolerancePoints && rect.minY() >= page.minY() - tolerancePoints &&
           rect.maxX() <= page.maxX() + tolerancePoints && rect.maxY() <= page.maxY() + tolerancePoints;
}

bool isWholeBorder(double points) {
    return std::abs(points - borderPoints) < tolerancePoints;
}

bool hasWholeBorders(const Rect& outer, const Rect& inner) {
    return isWholeBorder(inner.minX() - outer.minX()) && isWholeBorder(inner.minY() - outer.minY()) &&
           isWholeBorder(outer.maxX() - inner.maxX()) && isWholeBorder(outer.maxY() - inner.maxY());
}

bool isUndistorted(const RollArtwork& item, const Rect& inner) {
    const auto width = static_cast<double>(item.pixelWidth);
    const auto height = static_cast<double>(item.pixelHeight);
    const double expected = item.rotationQuarterTurns % 2 != 0 ? height / width : width / height;
    return std::abs((inner.width / inner.height) / expected - 1) < aspectTolerance;
}

bool overlaps(const Rect& first, const Rect& second) {
    const double width = std::min(first.maxX(), second.maxX()) - std::max(first.minX(), second.minX());
    const double height = std::min(first.maxY(), second.maxY()) - std::max(first.minY(), second.minY());
    return width > tolerancePoints && height > tolerancePoints;
}

} // namespace

Size pageSizePoints(const RollLayout& layout) {
    return {.width = layout.widthInches * pointsPerInch, .height = layout.lengthInches() * pointsPerInch};
}

double userUnit(double widthPoints, double lengthPoints) {
    return std::max(std::max(widthPoints, lengthPoints) / largestPageSide, 1.0);
}

Rect pageRect(const Rect& rollInches, double lengthPoints) {
    return {.x = rollInches.minX() * pointsPerInch,
            .y = lengthPoints - rollInches.maxY() * pointsPerInch,
            .width = rollInches.width * pointsPerInch,
            .height = rollInches.height * pointsPerInch};
}

void validateFrames(const RollLayout& layout, const Rect& pagePoints) {
    QSet<QUuid> seen;
    QList<Rect> accepted;
    for (const RollArtwork& item : layout.items) {
        const Rect outer = pageRect(item.trimRectInches(), pagePoints.height);
        const Rect inner = pageRect(item.artworkRectInches(), pagePoints.height);
        const bool isSound = isFinite(outer) && isFinite(inner) && !seen.contains(item.id) && hasArea(outer) &&
                             hasArea(inner) && item.pixelWidth >= 1 && item.pixelHeight >= 1 &&
                             item.rotationQuarterTurns >= 0 && item.rotationQuarterTurns <= 3 &&
                             liesWithin(outer, pagePoints) && hasWholeBorders(outer, inner);
        if (!isSound) {
            throw OrvexError::invalid(
                spt("作品超出卷布范围、尺寸无效，或四边未完整保留 2.5 英寸白边。",
                    "The artwork lies outside the roll, has invalid dimensions, or does not retain a 2.5-inch white "
                    "border on every side."));
        }
        seen.insert(item.id);
        if (!isUndistorted(item, inner)) {
            throw OrvexError::invalid(spt("“%1”的排版宽高比与原图不符。为避免变形，已停止导出。",
                                          "The layout aspect ratio of “%1” does not match its source. Export was "
                                          "stopped to avoid distortion.")
                                          .arg(item.title));
        }
        for (const Rect& earlier : accepted) {
            if (overlaps(earlier, outer)) {
                throw OrvexError::invalid(spt("作品画面或其白边相互重叠。请先调整卷布排版。",
                                              "Artwork images or their white borders overlap. Adjust the roll layout "
                                              "first."));
            }
        }
        accepted.append(outer);
    }
}

} // namespace orvex::RollPDFRenderer
