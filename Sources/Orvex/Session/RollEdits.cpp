// Finished edits of the canvas: each is one step of undo and one autosave, and nothing at all if it changes nothing.

#include "BoardZoom.h"
#include "Layout/InchLayout.h"
#include "Layout/RollInteraction.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"

#include <algorithm>
#include <cmath>

namespace orvex {

/// Tries a change on a copy; a refusal is told in an alert, and the canvas stays as it was.
void OrvexModel::edit(const std::function<void(RollLayout&)>& change) {
    RollLayout edited = rollLayout();
    if (const auto failure = failureMessageOf([&] { change(edited); })) {
        errorMessage.set(failure);
        return;
    }
    applyEdit(edited);
}

void OrvexModel::applyEdit(const RollLayout& edited) {
    if (edited == rollLayout()) {
        return;
    }
    recordRollUndo();
    rollLayout.set(edited);
    syncSelectedArtwork();
    persistRollLayout();
}

/// Selects an artwork of the canvas, or the first one in its place.
void OrvexModel::selectKnown(const std::optional<QUuid>& id) {
    const QList<RollArtwork>& items = rollLayout().items;
    if (artwork(id)) {
        selectedArtworkID.set(id);
        return;
    }
    selectedArtworkID.set(items.isEmpty() ? std::nullopt : std::optional(items.first().id));
}

void OrvexModel::syncSelectedArtwork() {
    const auto selected = selectedArtwork();
    if (!selected) {
        image.set(nullptr);
        return;
    }
    image.set(metadataFor(*selected));
    const bool isTurned = selected->rotationQuarterTurns % 2 != 0;
    presetForm.update([&](PresetForm& form) {
        form.settings =
            BorderedArtworkLayout::draft(PageWidthInches{selected->widthInches + PrintUnits::bothBordersInches},
                                         isTurned ? selected->pixelHeight : selected->pixelWidth,
                                         isTurned ? selected->pixelWidth : selected->pixelHeight, form.settings);
    });
}

void OrvexModel::selectArtwork(const QUuid& id) {
    if (busy() || !artwork(id)) {
        return;
    }
    endKeyboardNudge();
    if (selectedArtworkID() != id) {
        selectedArtworkID.set(id);
        syncSelectedArtwork();
        persistRollLayout(); // the selection is part of what is saved
    }
    requestKeyboardFocus();
}

// Sizes

/// The nearest width of which both sides are quarter inches. Raises OrvexError.
double OrvexModel::quarterInchWidth(const RollArtwork& artwork, double inches,
                                    QuarterInchArtworkSizing::Dimension dimension) const {
    return QuarterInchArtworkSizing::size(artwork, inches, dimension, rollLayout().widthInches,
                                          QuarterInchArtworkSizing::Strategy::bothDimensions)
        .widthInches;
}

void OrvexModel::resizeArtwork(const QUuid& id, double inches, QuarterInchArtworkSizing::Dimension dimension) {
    const auto item = artwork(id);
    if (!item || busy()) {
        return;
    }
    endKeyboardNudge();
    edit([&](RollLayout& layout) { layout.resize(id, quarterInchWidth(*item, inches, dimension)); });
}

void OrvexModel::scaleArtwork(const QUuid& id, double percent) {
    if (const auto item = artwork(id)) {
        resizeArtwork(id, percent * item->naturalWidthInches() / 100.0, QuarterInchArtworkSizing::Dimension::width);
    }
}

void OrvexModel::fitSelectedArtwork() {
    if (const auto selected = selectedArtwork()) {
        resizeArtwork(selected->id, rollLayout().widthInches - PrintUnits::bothBordersInches,
                      QuarterInchArtworkSizing::Dimension::width);
    }
}

void OrvexModel::restoreSelectedNaturalSize() {
    if (const auto selected = selectedArtwork()) {
        resizeArtwork(
            selected->id,
            std::min(selected->naturalWidthInches(), rollLayout().widthInches - PrintUnits::bothBordersInches),
            QuarterInchArtworkSizing::Dimension::width);
    }
}

// Positions

void OrvexModel::moveArtwork(const QUuid& id, const std::optional<double>& x, const std::optional<double>& y) {
    const auto item = artwork(id);
    if (!item) {
        return;
    }
    const double newX = x.value_or(item->xInches);
    const double requestedY = y.value_or(item->yInches);
    if (!std::isfinite(newX) || !std::isfinite(requestedY)) {
        errorMessage.set(spt("位置必须是有效数值（英寸）。", "Position must be a valid value in inches."));
        return;
    }
    const double newY =
        RollInteraction::constrainedMoveY(requestedY, item->trimRectInches().height, rollLayout().lengthInches());
    if (busy()) {
        return;
    }
    endKeyboardNudge();
    edit([&](RollLayout& layout) { layout.move(id, newX, newY); });
}

void OrvexModel::rotateSelectedArtwork() {
    const auto selected = selectedArtwork();
    if (!selected || busy()) {
        return;
    }
    endKeyboardNudge();
    edit([&](RollLayout& layout) { layout.rotate(selected->id); });
}

// The whole canvas

void OrvexModel::setRollGap(double inches) {
    if (!std::isfinite(inches) || inches < 0.0) {
        errorMessage.set(spt("排版间距必须是大于或等于零的有效数值（英寸）。",
                             "The layout gap must be a valid value of zero or greater, in inches."));
        return;
    }
    arrangementGap.set(inches);
    persistRollLayout();
}

bool OrvexModel::canArrangeRoll() const {
    return !busy() && !rollLayout().items.isEmpty();
}

void OrvexModel::arrangeRoll(bool tight) {
    const double gapInches = tight ? 0.0 : arrangementGap();
    if (!busy()) {
        endKeyboardNudge();
        edit([gapInches](RollLayout& layout) { layout.autoArrange(gapInches); });
    }
    if (!tight) {
        return;
    }
    arrangementGap.set(0.0);
    persistRollLayout();
    message.set(spt("已按当前尺寸紧凑排列，优先填补空位。每幅作品四周保留 2.5 英寸白边，末尾不留多余空白画布。",
                    "Packed at the current sizes, prioritizing empty spaces. Each artwork keeps a 2.5-inch border on "
                    "every side, with no extra blank canvas at the bottom."));
}

std::optional<QString> OrvexModel::applyBatchArrangement(const RollLayout& layout, const RollLayout& basedOn) {
    if (busy()) {
        return spt("请等待当前操作完成后再应用。", "Wait for the current operation to finish before applying.");
    }
    if (!(rollLayout() == basedOn)) {
        return spt("排版已发生变化。请重新打开批量尺寸，以免覆盖最新的编辑。",
                   "The layout has changed. Reopen Batch Sizes to avoid overwriting your latest edits.");
    }
    if (layout.widthInches != basedOn.widthInches) {
        return spt("画布宽度已发生变化。请重新打开批量尺寸。", "The canvas width has changed. Reopen Batch Sizes.");
    }
    if (!std::ranges::equal(layout.items, basedOn.items, {}, &RollArtwork::id, &RollArtwork::id)) {
        return spt("作品列表已发生变化，未应用批量排版。",
                   "The artwork list has changed. The batch layout was not applied.");
    }
    if (auto issue = layout.exportValidationError()) {
        return issue;
    }
    applyEdit(layout);
    message.set(spt("已应用批量尺寸和省布排版：%1 × %2 英寸，共 %3 幅作品。每幅作品四周保留 2.5 英寸白边，可一步撤销。",
                    "Applied batch sizes and optimized layout: %1 × %2 in, %3 artworks. Each retains a 2.5-inch border "
                    "on every side. Undo in one step.")
                    .arg(rollWidthLabel(), rollLengthLabel(), QString::number(layout.items.size())));
    return std::nullopt;
}

// The board's view

void OrvexModel::zoomIn() {
    rollZoom.set(BoardZoom::zoomedIn(rollZoom()));
}

void OrvexModel::zoomOut() {
    rollZoom.set(BoardZoom::zoomedOut(rollZoom()));
}

void OrvexModel::fitWidth() {
    rollZoom.set(BoardZoom::fit);
}

void OrvexModel::setRollSnapToQuarter(bool value) {
    rollSnapToQuarter.set(value);
}

} // namespace orvex
