#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/RollLayout.h"
#include "Layout/RollPacking.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvex {

namespace {

/// The nearest position at which a frame of that width lies on the roll; the bottom has no limit.
Point clampedToRoll(double x, double y, double trimWidth, double rollWidth) {
    const double farthest = std::max(rollWidth - trimWidth, 0.0);
    return {std::min(std::max(0.0, x), farthest), std::max(0.0, y)};
}

void requireNumbers(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        throw OrvexError::invalid(LayoutTexts::positionsNotNumbers());
    }
}

std::vector<Rect> trimRects(const QList<RollArtwork>& items) {
    std::vector<Rect> rects;
    rects.reserve(static_cast<std::size_t>(items.size()));
    for (const RollArtwork& item : items) {
        rects.push_back(item.trimRectInches());
    }
    return rects;
}

/// Whether two frames are nearer than the gap, by more than the tolerance.
bool conflict(const Rect& a, const Rect& b, double gap) {
    constexpr double tolerance = PrintUnits::toleranceInches;
    return a.minX() < (gap + b.maxX()) - tolerance && (b.minX() - gap) + tolerance < a.maxX() &&
           a.minY() < (gap + b.maxY()) - tolerance && (b.minY() - gap) + tolerance < a.maxY();
}

/// The first pair in conflict, the outer index first.
std::optional<std::pair<std::size_t, std::size_t>> firstConflict(const std::vector<Rect>& frames, double gap) {
    for (std::size_t i = 0; i < frames.size(); ++i) {
        for (std::size_t j = i + 1; j < frames.size(); ++j) {
            if (conflict(frames[i], frames[j], gap)) {
                return std::pair(i, j);
            }
        }
    }
    return std::nullopt;
}

} // namespace

qsizetype RollLayout::index(const QUuid& of) const {
    refuse(versionValidationError());
    refuse(widthValidationError());
    const auto found =
        std::find_if(items.cbegin(), items.cend(), [&](const RollArtwork& item) { return item.id == of; });
    if (found == items.cend()) {
        throw OrvexError::invalid(LayoutTexts::artworkNotFound());
    }
    return found - items.cbegin();
}

void RollLayout::validateGap(double gapInches) {
    if (!std::isfinite(gapInches) || gapInches < 0.0) {
        throw OrvexError::invalid(spt("作品间距必须是有效的非负数值（英寸）。",
                                      "Artwork spacing must be a valid nonnegative value in inches."));
    }
}

void RollLayout::clampAndValidate(RollArtwork& artwork, double rollWidth) {
    refuse(artwork.sizeValidationError(rollWidth));
    requireNumbers(artwork.xInches, artwork.yInches);
    const Point position = clampedToRoll(artwork.xInches, artwork.yInches, artwork.trimRectInches().width, rollWidth);
    artwork.xInches = position.x;
    artwork.yInches = position.y;
    refuse(artwork.validationError(rollWidth));
}

void RollLayout::resize(const QUuid& id, double width) {
    const qsizetype position = index(id);
    RollArtwork artwork = items.at(position);
    artwork.widthInches = width;
    clampAndValidate(artwork, widthInches);
    items[position] = artwork;
}

void RollLayout::rotate(const QUuid& id) {
    const qsizetype position = index(id);
    RollArtwork artwork = items.at(position);
    refuse(artwork.validationError(widthInches));
    artwork.widthInches = artwork.heightInches();
    artwork.rotationQuarterTurns = (artwork.rotationQuarterTurns + 1) % 4;
    clampAndValidate(artwork, widthInches);
    items[position] = artwork;
}

void RollLayout::move(const QUuid& id, double x, double y) {
    const qsizetype position = index(id);
    requireNumbers(x, y);
    RollArtwork artwork = items.at(position);
    artwork.xInches = x;
    artwork.yInches = y;
    clampAndValidate(artwork, widthInches);
    items[position] = artwork;
}

QUuid RollLayout::append(const RollArtwork& artwork, double gapInches) {
    validateGap(gapInches);
    refuse(structureValidationError());
    const bool known =
        std::any_of(items.cbegin(), items.cend(), [&](const RollArtwork& item) { return item.id == artwork.id; });
    if (known) {
        throw OrvexError::invalid(LayoutTexts::duplicateIDs());
    }
    refuse(artwork.validationError(widthInches));
    const Rect frame = artwork.trimRectInches();
    const auto position =
        RollPacking::vacancy(frame.width, frame.height, RollPacking::sortedBoxes(items), gapInches, widthInches);
    if (!position) {
        throw OrvexError::invalid(spt("无法在有效的坐标范围内放置此作品。画布未改动。",
                                      "Cannot place this artwork at valid finite coordinates. The canvas was not "
                                      "changed."));
    }
    RollArtwork placed = artwork;
    placed.xInches = position->x;
    placed.yInches = position->y;
    refuse(placed.validationError(widthInches));
    items.append(placed);
    return placed.id;
}

bool RollLayout::hasSpacing(const QList<RollArtwork>& items, double gapInches) {
    return !firstConflict(trimRects(items), gapInches);
}

std::optional<QString> RollLayout::exportValidationError() const {
    if (auto issue = structureValidationError()) {
        return issue;
    }
    if (items.isEmpty()) {
        return spt("请先在卷布画板上添加作品。", "Add artwork to the roll canvas first.");
    }
    const double length = lengthInches();
    if (!std::isfinite(length) || length <= 0.0) {
        return spt("卷布长度无效。", "Invalid roll length.");
    }
    if (const auto pair = firstConflict(trimRects(items), defaultGapInches)) {
        return spt("手裁框重叠：%1 与 %2。请移动作品或自动排版。",
                   "Manual-trim frames overlap: %1 and %2. Move the artwork or arrange automatically.")
            .arg(items.at(static_cast<qsizetype>(pair->first)).title,
                 items.at(static_cast<qsizetype>(pair->second)).title);
    }
    return std::nullopt;
}

} // namespace orvex
