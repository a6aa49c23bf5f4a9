#pragma once

#include "Board/BoardHit.h"
#include "OrvexModel.h"

#include <QMap>
#include <QPointF>
#include <QUuid>

#include <optional>

namespace orvex {

/// Where an artwork was when a drag of its frame began.
struct MoveOrigin {
    Point point;        ///< inches
    double scale = 1.0; ///< points per inch at that moment, which keeps the drag stable when the canvas rescales
};

/// What an artwork was when a drag of its handle began; inches.
struct ResizeOrigin {
    double width = 0.0;
    double height = 0.0;
    double x = 0.0;
    double scale = 1.0; ///< points per inch at that moment
};

/// Turns a press, its movement and its release into a tap, a move or a scaling of an artwork. Positions are those of
/// the canvas' content, so that scrolling under the mouse is movement, too. Main thread.
class BoardGestures {
public:
    /// How far the mouse goes before a press becomes a drag, in points.
    static constexpr double dragDistance = 4.0;

    explicit BoardGestures(OrvexModel& session) : session_(session) {}

    void press(const BoardHit& hit, const QPointF& position);

    /// `scale` gives the points per inch of the moment. A drag that the session has ended in the meantime goes on no
    /// more.
    void drag(const QPointF& position, double scale);
    void release();

    /// Ends what goes on without a release; a drag counts as far as it came.
    void cancel();

    [[nodiscard]] bool isPressed() const { return pressed_.has_value(); }

    [[nodiscard]] bool isDragging() const { return !moveOrigins_.isEmpty() || !resizeOrigins_.isEmpty(); }

private:
    void begin(const BoardHit& hit, double scale);
    void beginMove(const QUuid& id, double scale);
    void beginResize(const QUuid& id, double scale);
    void move(const QUuid& id, const QPointF& translation);
    void resize(const QUuid& id, const QPointF& translation);
    void endDrag();
    void forget();
    [[nodiscard]] std::optional<RollArtwork> artwork(const QUuid& id) const;

    OrvexModel& session_;
    std::optional<BoardHit> pressed_;
    QPointF pressPosition_;
    QMap<QUuid, MoveOrigin> moveOrigins_;
    QMap<QUuid, ResizeOrigin> resizeOrigins_;
};

} // namespace orvex
