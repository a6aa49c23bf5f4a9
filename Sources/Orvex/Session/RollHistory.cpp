#include "RollHistory.h"

namespace orvex {

namespace {

/// Goes from the current layout to the newest of one list; the current one goes on the other.
std::optional<RollLayout> step(QList<RollLayout>& from, QList<RollLayout>& onto, const RollLayout& current) {
    if (from.isEmpty()) {
        return std::nullopt;
    }
    onto.append(current);
    return from.takeLast();
}

} // namespace

void RollHistory::record(const RollLayout& layout) {
    if (rollUndo_.size() >= mostSteps) {
        rollUndo_.removeFirst();
    }
    rollUndo_.append(layout);
    rollRedo_.clear();
}

std::optional<RollLayout> RollHistory::undo(const RollLayout& current) {
    return step(rollUndo_, rollRedo_, current);
}

std::optional<RollLayout> RollHistory::redo(const RollLayout& current) {
    return step(rollRedo_, rollUndo_, current);
}

QSet<QUuid> RollHistory::heldIDs(const QSet<QUuid>& ids) const {
    QSet<QUuid> held;
    if (ids.isEmpty()) {
        return held;
    }
    for (const QList<RollLayout>* steps : {&rollUndo_, &rollRedo_}) {
        for (const RollLayout& layout : *steps) {
            for (const RollArtwork& item : layout.items) {
                if (ids.contains(item.id)) {
                    held.insert(item.id);
                }
            }
        }
    }
    return held;
}

} // namespace orvex
