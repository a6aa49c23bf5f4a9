#include "Layout/QuarterInchArtworkSizing.h"

#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>

namespace orvex::QuarterInchArtworkSizing {

namespace {

constexpr double quarterInch = 0.25;
constexpr double quartersPerInch = 4.0;

/// What the search needs to know of the artwork and the roll.
struct Frame {
    double naturalWidth;
    double ratio; ///< height over width, as the artwork lies
    double usable;
};

void validateTarget(double target, double rollWidthInches) {
    if (!PrintUnits::isPositive(target)) {
        throw OrvexError::invalid(
            spt("画面尺寸必须是有效的正数（英寸）。", "Image dimensions must be valid positive values in inches."));
    }
    if (rollWidthValidationError(rollWidthInches)) {
        throw OrvexError::invalid(spt("卷布宽度必须大于 5 且不超过 60 英寸，四边才能各留 2.5 英寸白边。",
                                      "Roll width must be greater than 5 and no more than 60 inches to retain a "
                                      "2.5-inch white border on every side."));
    }
}

void validateArtwork(const RollArtwork& artwork) {
    const bool sound = artwork.pixelWidth >= 1 && artwork.pixelHeight >= 1 &&
                       PrintUnits::isPositive(artwork.originalWidthInches) &&
                       PrintUnits::isPositive(artwork.originalHeightInches) && artwork.rotationQuarterTurns >= 0 &&
                       artwork.rotationQuarterTurns <= 3;
    if (!sound) {
        throw OrvexError::invalid(spt("作品的原图尺寸或旋转数据无效，无法在不变形的情况下调整尺寸。",
                                      "The original artwork dimensions or rotation data are invalid. It cannot be "
                                      "resized without distortion."));
    }
    if (!artwork.matchesPixels()) {
        throw OrvexError::invalid(LayoutTexts::aspectMismatch());
    }
}

Frame validatedFrame(const RollArtwork& artwork, double target, Dimension dimension, double rollWidthInches) {
    const double naturalWidth = artwork.naturalWidthInches();
    const double ratio = artwork.naturalHeightInches() / naturalWidth;
    const double usable = rollWidthInches - PrintUnits::bothBordersInches;
    const double impliedWidth = dimension == Dimension::width ? target : target / ratio;
    if (!PrintUnits::isPositive(ratio) || !PrintUnits::isPositive(impliedWidth) || impliedWidth > usable) {
        throw OrvexError::invalid(
            spt("请求的画面宽度超出卷布可用宽度，或尺寸无效。请输入更小的尺寸。四边各 2.5 英寸的白边都会保留。",
                "The requested image width exceeds the usable roll width or the dimensions are "
                "invalid. Enter a smaller size. Each 2.5-inch border is retained."));
    }
    return {naturalWidth, ratio, usable};
}

/// Whether doubles of this magnitude still tell the borders apart.
bool keepsBorders(double height) {
    const double withBorder = height + PrintUnits::whiteBorderInches;
    const double withBorders = height + PrintUnits::bothBordersInches;
    return std::isfinite(withBorders) && height < withBorder && withBorder < withBorders;
}

/// The result of that width and height if both can be printed on the roll.
std::optional<Result> printable(double width, double height, const Frame& frame) {
    const double scale = width / frame.naturalWidth;
    const bool valid = PrintUnits::isPositive(width) && width <= frame.usable && PrintUnits::isPositive(height) &&
                       PrintUnits::isPositive(scale) && keepsBorders(height);
    return valid ? std::optional(Result{width, height, scale}) : std::nullopt;
}

/// To the nearest whole number; an exact half goes down.
double roundedHalfDown(double value) {
    const double base = std::floor(value);
    return value - base > 0.5 ? base + 1.0 : base;
}

Result sizeOfEditedDimension(double target, Dimension dimension, const Frame& frame) {
    const double scaled = target * quartersPerInch;
    if (!std::isfinite(scaled)) {
        throw OrvexError::invalid(spt("画面尺寸超出可表示的范围。作品未改动。",
                                      "The image dimensions exceed the representable range. The artwork was not "
                                      "changed."));
    }
    const double edited = roundedHalfDown(scaled) * quarterInch;
    const double width = dimension == Dimension::width ? edited : edited / frame.ratio;
    const auto result = printable(width, frame.ratio * width, frame);
    if (!result) {
        throw OrvexError::invalid(spt("取整后的画面尺寸无效，或超出卷布可用宽度。作品未自动缩小。请手动修改尺寸。",
                                      "The rounded image dimensions are invalid or exceed the usable roll width. The "
                                      "artwork was not shrunk automatically. Change its size explicitly."));
    }
    return *result;
}

bool isQuarterInchMultiple(double height) {
    const double scaled = height * quartersPerInch;
    const double quarters = std::round(scaled);
    return std::isfinite(scaled) && quarters >= 1.0 &&
           std::abs(height - quarters * quarterInch) <= PrintUnits::toleranceInches;
}

/// Whether a value is nearer to the target than the best so far; of equally near ones the smaller.
bool isBetter(double value, double best, double target) {
    const double distance = std::abs(value - target);
    const double bestDistance = std::abs(best - target);
    return distance < bestDistance - PrintUnits::toleranceInches ||
           (std::abs(distance - bestDistance) <= PrintUnits::toleranceInches && value < best);
}

Result sizeOfBothDimensions(double target, Dimension dimension, const Frame& frame) {
    const auto value = [&](const Result& size) {
        return dimension == Dimension::width ? size.widthInches : size.heightInches;
    };
    std::optional<Result> best;
    const int steps = static_cast<int>(std::floor(frame.usable * quartersPerInch));
    for (int k = 1; k <= steps; ++k) {
        const double width = k * quarterInch;
        const double height = frame.ratio * width;
        const auto candidate = isQuarterInchMultiple(height) ? printable(width, height, frame) : std::nullopt;
        if (candidate && (!best || isBetter(value(*candidate), value(*best), target))) {
            best = candidate;
        }
    }
    if (!best) {
        throw OrvexError::invalid(
            spt("此卷布上没有宽高均为 1/4 英寸整数倍且比例精确的尺寸。作品未改动、未拉伸，也未以较低精度取整。",
                "No exact-aspect-ratio size with both dimensions in 1/4-inch increments fits this "
                "roll. The artwork was not changed, stretched or rounded at lower precision."));
    }
    return *best;
}

} // namespace

Result size(const RollArtwork& artwork, double target, Dimension dimension, double rollWidthInches, Strategy strategy) {
    validateTarget(target, rollWidthInches);
    validateArtwork(artwork);
    const Frame frame = validatedFrame(artwork, target, dimension, rollWidthInches);
    return strategy == Strategy::editedDimension ? sizeOfEditedDimension(target, dimension, frame)
                                                 : sizeOfBothDimensions(target, dimension, frame);
}

} // namespace orvex::QuarterInchArtworkSizing
