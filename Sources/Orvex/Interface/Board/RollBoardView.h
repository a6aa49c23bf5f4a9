#pragma once

#include "Board/BoardGeometry.h"
#include "Board/BoardGestures.h"
#include "Board/BoardPictures.h"
#include "Board/BoardRuler.h"
#include "Board/BoardSnapshot.h"
#include "Board/EdgeScrolling.h"
#include "Board/RollKeyboardInput.h"
#include "OrvexModel.h"

#include <QAbstractScrollArea>

#include <optional>

namespace orvex {

class BoardEmptyState;

/// The canvas on which artworks are dragged and scaled with the mouse and moved with the arrow keys. It scrolls both
/// ways and keeps the point under the mouse when it is zoomed. Main thread.
class RollBoardView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// `pictures` must outlive the view.
    RollBoardView(OrvexModel& session, BoardPictures& pictures, QWidget* parent = nullptr);
    ~RollBoardView() override;

    void syncFromSession();

    [[nodiscard]] const OrvexModel& session() const { return session_; }

    /// Where the roll lies in the viewport.
    [[nodiscard]] const BoardGeometry& geometryOfBoard() const { return geometry_; }

    /// What lies at a place of the viewport, the topmost first.
    [[nodiscard]] std::optional<BoardHit> hitAt(const QPointF& position) const;

    /// Where the trim frame of an artwork is in the viewport; empty for an unknown one.
    [[nodiscard]] QRectF frameOf(const QUuid& id) const;

    /// What a tap on an artwork does.
    void tap(const QUuid& id);

    [[nodiscard]] bool hasKeyboard() const { return keyboard_->hasFocus(); }

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void build();
    void connectSignals();
    void placeParts();

    // Geometry
    [[nodiscard]] double scaleNow() const;
    [[nodiscard]] QSizeF contentSize(double scale) const;
    [[nodiscard]] QPointF basePoint(double scale) const;
    void updateBoard(const QPointF& anchor);
    void setScrollRanges(double scale);
    void takeGeometry(double scale);
    void updateViewport(BoardGeometry before);
    [[nodiscard]] QPointF zoomAnchor() const;

    // What changed
    void updateArtworks();
    void updateRollEnd();
    [[nodiscard]] int heightForEmptyState() const;
    void updateKeyboard();
    void announceToAssistants();

    // The mouse
    void startPress(const BoardHit& hit, const QPointF& position);
    void dragTo(const QPointF& position);
    void zoomAt(const QPointF& position, bool isIn);
    void dragOn();
    void updateCursor(const QPointF& position);
    bool showToolTip(const QPoint& position, const QPoint& globalPosition);

    OrvexModel& session_;
    BoardPictures& pictures_;
    BoardGestures gestures_;
    BoardGeometry geometry_;
    QPointF lastMouse_;
    QPointF scrolledSincePress_;
    bool isRescaling_ = false; ///< the scroll bars follow the scale, which is no movement of the canvas
    int wheelTurn_ = 0;        ///< what has come of the next step, in eighths of a degree
    EdgeScrolling edgeScrolling_;

    // As last drawn
    BoardSnapshot drawn_;
    QString shownRollEnd_;
    double shownZoom_ = 0.0;

    BoardRuler* horizontalRuler_ = nullptr;
    BoardRuler* verticalRuler_ = nullptr;
    BoardEmptyState* emptyState_ = nullptr;
    RollKeyboardResponderView* keyboard_ = nullptr;
};

} // namespace orvex
