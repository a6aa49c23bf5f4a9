// Undo and redo.

#include "OrvexModel.h"

namespace orvex {

void OrvexModel::recordRollUndo(const std::optional<RollLayout>& layout) {
    rollHistory.record(layout.value_or(rollLayout()));
    rollUndoAvailable.set(!rollHistory.rollUndo().isEmpty());
    rollRedoAvailable.set(!rollHistory.rollRedo().isEmpty());
}

/// Records the layout that a series of changes began with, and saves what became of it.
void OrvexModel::recordStep(const std::optional<RollLayout>& step) {
    if (step) {
        recordRollUndo(step);
        persistRollLayout();
    }
}

void OrvexModel::undoRollEdit() {
    goThroughHistory(&RollHistory::undo);
}

void OrvexModel::redoRollEdit() {
    goThroughHistory(&RollHistory::redo);
}

bool OrvexModel::canUndoRollEdit() const {
    return rollUndoAvailable() && !busy();
}

bool OrvexModel::canRedoRollEdit() const {
    return rollRedoAvailable() && !busy();
}

/// Takes the layout that a step of undo or redo leads to, if there is one.
void OrvexModel::goThroughHistory(HistoryStep step) {
    endKeyboardNudge();
    endArrangeGesture(); // the step goes through the drag, too
    if (busy()) {
        return;
    }
    if (const auto layout = (rollHistory.*step)(rollLayout())) {
        applyHistoryStep(*layout);
    }
}

void OrvexModel::applyHistoryStep(const RollLayout& layout) {
    rollLayout.set(layout);
    selectKnown(selectedArtworkID());
    clearColorConfirmation();
    syncSelectedArtwork();
    rollUndoAvailable.set(!rollHistory.rollUndo().isEmpty());
    rollRedoAvailable.set(!rollHistory.rollRedo().isEmpty());
    persistRollLayout();
    // The layout may hold artworks whose sources are no longer known.
    later([this] { restoreRollPreviews(true); });
}

} // namespace orvex
