#pragma once

#include "Layout/RollLayout.h"

#include <QList>
#include <QSet>

#include <optional>

namespace orvex {

/// The steps of undo and redo, each a whole layout; equal artworks of different steps share their data.
class RollHistory {
public:
    static constexpr qsizetype mostSteps = 80;

    /// The steps, the newest last.
    [[nodiscard]] const QList<RollLayout>& rollUndo() const { return rollUndo_; }

    [[nodiscard]] const QList<RollLayout>& rollRedo() const { return rollRedo_; }

    /// Adds a step; the oldest goes beyond `mostSteps`, and there is nothing to redo any more.
    void record(const RollLayout& layout);

    /// The layout to go back to from the current one, which can be redone then. Absent if there is none.
    [[nodiscard]] std::optional<RollLayout> undo(const RollLayout& current);

    /// The mirror of `undo`.
    [[nodiscard]] std::optional<RollLayout> redo(const RollLayout& current);

    /// Those of the ids that belong to an artwork of any step.
    [[nodiscard]] QSet<QUuid> heldIDs(const QSet<QUuid>& ids) const;

private:
    QList<RollLayout> rollUndo_;
    QList<RollLayout> rollRedo_;
};

} // namespace orvex
