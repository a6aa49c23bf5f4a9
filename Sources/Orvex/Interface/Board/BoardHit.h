#pragma once

#include "Board/BoardGeometry.h"

#include <QUuid>

#include <optional>

namespace orvex {

class OrvexModel;

/// A part of an artwork on the board that the mouse can take.
struct BoardHit {
    enum class Part { frame, handle };

    QUuid id;
    Part part = Part::frame;

    bool operator==(const BoardHit&) const = default;

    /// What lies at a place of the viewport, the topmost first. The handle of the selected artwork lies above all.
    [[nodiscard]] static std::optional<BoardHit> at(const QPointF& position, const OrvexModel& session,
                                                    const BoardGeometry& geometry);
};

} // namespace orvex
