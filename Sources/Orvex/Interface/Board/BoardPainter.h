#pragma once

#include "Board/BoardGeometry.h"
#include "Board/BoardPictures.h"
#include "OrvexModel.h"

#include <QPainter>

namespace orvex {

/// Draws the roll and what lies on it into the board's viewport. Main thread.
class BoardPainter {
public:
    BoardPainter(QPainter& painter, const OrvexModel& session, BoardPictures& pictures, const BoardGeometry& geometry,
                 bool hasKeyboard);

    /// Draws what lies in `area`.
    void paint(const QRectF& area);

    /// The line under the canvas, and what it takes of the board's height.
    [[nodiscard]] static QString rollEndText(const OrvexModel& session);
    static constexpr int rollEndHeight = 40;

    /// Where that line stands in the viewport: as wide as that, so that a small canvas does not cut it.
    [[nodiscard]] static QRectF rollEndArea(const BoardGeometry& geometry, const QRectF& viewport);

    /// How far the marks of a selected artwork reach beyond its frame.
    static constexpr double selectionReach = 14.0;

private:
    void paintArtworks(const QRectF& area);
    void paintPicture(const RollArtwork& item, const QRectF& place);
    void paintPlaceholder(const RollArtwork& item, const QRectF& place);
    void paintFrame(const QRectF& frame, const QRectF& area);
    void paintSelection(const RollArtwork& item);
    void paintRollEnd();

    QPainter& painter_;
    const OrvexModel& session_;
    BoardPictures& pictures_;
    const BoardGeometry& geometry_;
    const bool hasKeyboard_;
};

} // namespace orvex
