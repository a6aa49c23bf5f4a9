// What moves an artwork while a mouse button or a key is held: nothing is recorded or saved until it is released.

#include "Layout/RollInteraction.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "SizeTexts.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr double stepsPerInch = 4.0;

double snapped(double inches) {
    return std::round(inches * stepsPerInch) * (1.0 / stepsPerInch);
}

} // namespace

/// What must not happen while the mouse moves an artwork or the batch panel is open.
bool OrvexModel::isGestureLocked() const {
    return busy() || batchSizingPresented() || arrangingGesture();
}

bool OrvexModel::beginArrangeGesture() {
    if (busy() || arrangingGesture()) {
        return arrangingGesture();
    }
    endKeyboardNudge();
    rollGestureInitialLayout.begin(rollLayout());
    rollGestureFrameLength.set(rollLayout().lengthInches());
    arrangingGesture.set(true);
    return true;
}

void OrvexModel::dragArtwork(const QUuid& id, double x, double y) {
    if (busy()) {
        return;
    }
    const auto item = artwork(id);
    if (!item) {
        return;
    }
    if (rollSnapToQuarter()) {
        x = snapped(x);
        y = snapped(y);
    }
    // The canvas must not grow below the pointer.
    const double canvasLength = rollGestureInitialLayout.initialLayout().value_or(rollLayout()).lengthInches();
    y = RollInteraction::constrainedMoveY(y, item->trimRectInches().height, canvasLength);
    RollLayout moved = rollLayout();
    if (const auto failure = failureMessageOf([&] { moved.move(id, x, y); })) {
        rollSaveMessage.set(*failure);
        return;
    }
    rollLayout.set(moved);
    selectedArtworkID.set(id);
    syncSelectedArtwork();
}

void OrvexModel::resizeArtworkGesture(const QUuid& id, double width) {
    if (busy()) {
        return;
    }
    const auto item = artwork(id);
    if (!item) {
        return;
    }
    RollLayout resized = rollLayout();
    const auto resize = [&] { resized.resize(id, quarterInchWidth(*item, width)); };
    if (const auto failure = failureMessageOf(resize)) {
        rollSaveMessage.set(*failure);
        return;
    }
    rollGestureFrameLength.set(std::max(rollGestureFrameLength().value_or(0.0), resized.lengthInches()));
    rollLayout.set(resized);
    syncSelectedArtwork();
}

void OrvexModel::endArrangeGesture() {
    if (!arrangingGesture()) {
        return;
    }
    if (const auto step = rollGestureInitialLayout.end(rollLayout())) {
        recordRollUndo(step);
    }
    rollGestureFrameLength.set(std::nullopt);
    arrangingGesture.set(false);
    persistRollLayout();
}

bool OrvexModel::canNudgeArtwork() const {
    return !isGestureLocked() && selectedArtworkID();
}

void OrvexModel::nudgeSelectedArtwork(RollNudgeDirection direction, bool accelerated) {
    const auto selected = selectedArtwork();
    if (isGestureLocked() || tab() != 0 || !selected) {
        return;
    }
    rollKeyboardInitialLayout.begin(rollLayout());
    const double canvasLength = rollKeyboardInitialLayout.initialLayout()->lengthInches();
    RollLayout nudged = rollLayout();
    bool isChanged = false;
    const auto nudge = [&] { isChanged = nudged.nudge(selected->id, direction, accelerated, canvasLength); };
    if (const auto failure = failureMessageOf(nudge)) {
        rollSaveMessage.set(*failure);
        return;
    }
    if (!isChanged) {
        return;
    }
    rollLayout.set(nudged);
    syncSelectedArtwork();
    const RollArtwork& moved = nudged.items[nudged.index(selected->id)];
    message.set(spt("键盘微调：距卷布左侧 %1 英寸，距卷布起点 %2 英寸。",
                    "Keyboard adjustment: %1 in from the roll left, %2 in from the roll start.")
                    .arg(inchesText(moved.xInches), inchesText(moved.yInches)));
}

void OrvexModel::endKeyboardNudge() {
    recordStep(rollKeyboardInitialLayout.end(rollLayout()));
}

void OrvexModel::requestKeyboardFocus() {
    rollKeyboardFocusRequest.set(rollKeyboardFocusRequest() + 1);
}

} // namespace orvex
