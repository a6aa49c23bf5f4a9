#include "Layout/InchLayout.h"
#include "Layout/RollInteraction.h"
#include "Layout/RollLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <cmath>

namespace orvex {

namespace {

constexpr double stepInches = 0.01;
constexpr double acceleratedStepInches = 0.1;

Point stepped(const RollArtwork& artwork, RollNudgeDirection direction, double step) {
    switch (direction) {
    case RollNudgeDirection::left:
        return {artwork.xInches - step, artwork.yInches};
    case RollNudgeDirection::right:
        return {artwork.xInches + step, artwork.yInches};
    case RollNudgeDirection::up:
        return {artwork.xInches, artwork.yInches - step};
    case RollNudgeDirection::down:
        break;
    }
    return {artwork.xInches, artwork.yInches + step};
}

/// The whole layout must be sound and lie within the canvas before one artwork of it moves.
void validateForNudge(const RollLayout& layout, double canvasLength) {
    refuse(layout.versionValidationError());
    refuse(layout.widthValidationError());
    if (!std::isfinite(canvasLength) || canvasLength < 0.0) {
        throw OrvexError::invalid(spt("键盘微调的画布长度必须是有效的非负数值（英寸）。",
                                      "The canvas length for keyboard nudging must be a valid nonnegative value in "
                                      "inches."));
    }
    refuse(layout.structureValidationError());
    const double length = layout.lengthInches();
    if (!std::isfinite(length) || length > canvasLength + PrintUnits::toleranceInches) {
        throw OrvexError::invalid(spt("作品超出了本次键盘微调所记录的画布范围。",
                                      "The artwork lies outside the canvas bounds captured for this keyboard nudge."));
    }
}

} // namespace

bool RollLayout::nudge(const QUuid& id, RollNudgeDirection direction, bool accelerated, double canvasLength) {
    validateForNudge(*this, canvasLength);
    const RollArtwork artwork = items.at(index(id));
    const Point requested = stepped(artwork, direction, accelerated ? acceleratedStepInches : stepInches);
    const double y = RollInteraction::constrainedMoveY(requested.y, artwork.trimRectInches().height, canvasLength);
    RollLayout nudged = *this;
    nudged.move(id, requested.x, y);
    if (nudged.items == items && nudged.widthInches == widthInches) {
        return false;
    }
    *this = nudged;
    return true;
}

} // namespace orvex
