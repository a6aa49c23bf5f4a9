#include "RollBoardView.h"

#include "Board/BoardAccessibility.h"
#include "Board/BoardEmptyState.h"
#include "Board/BoardPainter.h"
#include "BoardScale.h"
#include "BoardTexts.h"
#include "Controls/Controls.h"
#include "Controls/InchFieldView.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvex {

namespace {

/// Around the canvas; with the ruler it makes up what the scale leaves free beside the canvas.
constexpr double canvasMargin = (BoardScale::surroundings - BoardRuler::thickness) / 2.0;

constexpr int scrollStep = 24; // of an arrow of the scroll bars, in points
constexpr int leastBoardHeight = 100;

/// Where the roll's start is while nothing is scrolled, and what stays where it is when the board changes its size.
constexpr QPointF boardStart{canvasMargin, canvasMargin};

} // namespace

RollBoardView::RollBoardView(OrvexModel& session, BoardPictures& pictures, QWidget* parent)
    : QAbstractScrollArea(parent),
      session_(session),
      pictures_(pictures),
      gestures_(session),
      geometry_{.origin = boardStart},
      edgeScrolling_(*this),
      shownZoom_(session.rollZoom()) {
    BoardAccessibility::install();
    build();
    connectSignals();
    takeGeometry(scaleNow());
    syncFromSession();
}

/// The keyboard's handlers use this board.
RollBoardView::~RollBoardView() {
    keyboard_->stop();
}

void RollBoardView::build() {
    setObjectName(QStringLiteral("rollBoardView"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the scale must not depend on the length
    setViewportMargins(BoardRuler::thickness, BoardRuler::thickness, 0, 0);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    horizontalRuler_ = new BoardRuler(Qt::Horizontal, this);
    verticalRuler_ = new BoardRuler(Qt::Vertical, this);
    emptyState_ = new BoardEmptyState(session_, viewport());
    keyboard_ = new RollKeyboardResponderView(viewport());
    keyboard_->setObjectName(QStringLiteral("rollKeyboard"));
    keyboard_->lower();
    setFocusProxy(keyboard_);
}

void RollBoardView::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &RollBoardView::syncFromSession);
    connect(&pictures_, &BoardPictures::pictureReady, this,
            [this](const ImageMetadata* metadata) { viewport()->update(drawn_.placesOf(metadata, geometry_)); });
    connect(keyboard_, &RollKeyboardResponderView::focusChanged, viewport(), qOverload<>(&QWidget::update));
    connect(&edgeScrolling_, &EdgeScrolling::scrolled, this, &RollBoardView::dragOn);
}

void RollBoardView::syncFromSession() {
    updateBoard(session_.rollZoom() != shownZoom_ ? zoomAnchor() : boardStart);
    updateArtworks();
    emptyState_->syncFromSession();
    const bool isEmpty = session_.rollLayout().items.isEmpty();
    emptyState_->setVisible(isEmpty);
    setMinimumHeight(isEmpty ? std::max(leastBoardHeight, heightForEmptyState()) : leastBoardHeight);
    updateKeyboard();
}

// Geometry

double RollBoardView::scaleNow() const {
    const double containerWidth = contentsRect().width() - verticalScrollBar()->sizeHint().width();
    return BoardScale::pointsPerInch(containerWidth, session_.rollLayout().widthInches, session_.rollZoom());
}

QSizeF RollBoardView::contentSize(double scale) const {
    const RollLayout& layout = session_.rollLayout();
    const double length = BoardScale::shownLengthInches(layout.lengthInches(), session_.rollGestureFrameLength());
    return {layout.widthInches * scale + 2.0 * canvasMargin,
            length * scale + 2.0 * canvasMargin + BoardPainter::rollEndHeight};
}

/// Where the roll begins when nothing is scrolled; a canvas narrower than the board stands in its middle.
QPointF RollBoardView::basePoint(double scale) const {
    const double spare = viewport()->width() - contentSize(scale).width();
    return {canvasMargin + std::max(std::floor(spare / 2.0), 0.0), canvasMargin};
}

/// Brings scale, length and scroll bars up to date; what lies at `anchor` stays there.
void RollBoardView::updateBoard(const QPointF& anchor) {
    const QPointF inches = geometry_.inchesAt(anchor);
    const double scale = scaleNow();
    const QScopedValueRollback rescaling(isRescaling_, scale != geometry_.pointsPerInch);
    setScrollRanges(scale);
    if (isRescaling_) {
        const QPointF scrolled = basePoint(scale) + inches * scale - anchor;
        horizontalScrollBar()->setValue(qRound(scrolled.x()));
        verticalScrollBar()->setValue(qRound(scrolled.y()));
    }
    shownZoom_ = session_.rollZoom();
    takeGeometry(scale);
}

void RollBoardView::setScrollRanges(double scale) {
    const QSizeF content = contentSize(scale);
    const auto set = [](QScrollBar& bar, double contentLength, int page) {
        constexpr double longest = 1 << 30;
        constexpr double rounding = 1e-6; // what the product of scale and width may be too long by
        bar.setPageStep(page);
        bar.setSingleStep(scrollStep);
        bar.setRange(0, static_cast<int>(std::ceil(std::clamp(contentLength - page - rounding, 0.0, longest))));
    };
    set(*horizontalScrollBar(), content.width(), viewport()->width());
    set(*verticalScrollBar(), content.height(), viewport()->height());
}

void RollBoardView::takeGeometry(double scale) {
    const RollLayout& layout = session_.rollLayout();
    const BoardGeometry geometry{
        .pointsPerInch = scale,
        .widthInches = layout.widthInches,
        .lengthInches = BoardScale::shownLengthInches(layout.lengthInches(), session_.rollGestureFrameLength()),
        .origin = basePoint(scale) - QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value())};
    if (geometry == geometry_) {
        return;
    }
    const BoardGeometry before = std::exchange(geometry_, geometry);
    horizontalRuler_->setGeometryOfBoard(geometry_);
    verticalRuler_->setGeometryOfBoard(geometry_);
    pictures_.giveUpLargerPictures();
    updateViewport(before);
}

/// What is still seen after a movement of whole pixels is not drawn again.
void RollBoardView::updateViewport(BoardGeometry before) {
    const QPoint movement = (geometry_.origin - before.origin).toPoint();
    before.origin += movement;
    const double ratio = devicePixelRatioF();
    if (before == geometry_ && ratio == std::floor(ratio)) {
        viewport()->scroll(movement.x(), movement.y(), viewport()->rect());
    } else {
        viewport()->update();
    }
}

/// The place that stays where it is when the zoom changes: below the mouse, or else the middle.
QPointF RollBoardView::zoomAnchor() const {
    const QPoint mouse = viewport()->mapFromGlobal(QCursor::pos());
    return viewport()->underMouse() ? QPointF(mouse) : QRectF(viewport()->rect()).center();
}

void RollBoardView::placeParts() {
    const QRect inner = viewport()->geometry();
    horizontalRuler_->setGeometry(inner.left() - BoardRuler::thickness, inner.top() - BoardRuler::thickness,
                                  inner.width() + BoardRuler::thickness, BoardRuler::thickness);
    verticalRuler_->setGeometry(inner.left() - BoardRuler::thickness, inner.top(), BoardRuler::thickness,
                                inner.height());
    const int margin = qRound(canvasMargin);
    emptyState_->setGeometry(viewport()->rect().adjusted(margin, margin, -margin, -margin));
    keyboard_->setGeometry(viewport()->rect());
}

void RollBoardView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    placeParts();
    updateBoard(boardStart);
}

void RollBoardView::scrollContentsBy(int dx, int dy) {
    if (!isRescaling_) {
        scrolledSincePress_ -= QPointF(dx, dy);
    }
    takeGeometry(geometry_.pointsPerInch);
}

// What changed

void RollBoardView::updateArtworks() {
    const BoardSnapshot::Change change = drawn_.take(session_, geometry_);
    if (change.isEverywhere) {
        viewport()->update();
    } else if (!change.region.isEmpty()) {
        viewport()->update(change.region);
    }
    for (const SharedImageMetadata& preview : change.newPreviews) {
        pictures_.prepare(preview);
    }
    if (change.isNamedAnew) {
        announceToAssistants();
    }
    updateRollEnd();
}

/// During a gesture the canvas keeps its length, while the text below it tells the new one.
void RollBoardView::updateRollEnd() {
    const QString text = BoardPainter::rollEndText(session_);
    if (shownRollEnd_ != text) {
        shownRollEnd_ = text;
        viewport()->update(BoardPainter::rollEndArea(geometry_, viewport()->rect()).toAlignedRect());
    }
}

void RollBoardView::updateKeyboard() {
    keyboard_->take({.focusRequest = session_.rollKeyboardFocusRequest(),
                     .isEnabled = session_.canNudgeArtwork(),
                     .onMove = [this](RollNudgeDirection direction,
                                      bool isAccelerated) { session_.nudgeSelectedArtwork(direction, isAccelerated); },
                     .onEnd = [this] { session_.endKeyboardNudge(); }});
    const auto selected = session_.selectedArtwork();
    keyboard_->setAccessibleName(selected ? BoardTexts::accessibilityLabel(*selected)
                                          : BoardTexts::accessibilityLabel(session_.rollLayout()));
}

void RollBoardView::announceToAssistants() {
    if (!QAccessible::isActive()) {
        return;
    }
    QAccessibleEvent reordered(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
    QAccessibleEvent selected(this, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&selected);
}

int RollBoardView::heightForEmptyState() const {
    return emptyState_->sizeHint().height() + BoardRuler::thickness + 2 * qRound(canvasMargin);
}

// What lies where

std::optional<BoardHit> RollBoardView::hitAt(const QPointF& position) const {
    return BoardHit::at(position, session_, geometry_);
}

QRectF RollBoardView::frameOf(const QUuid& id) const {
    const QList<RollArtwork>& items = session_.rollLayout().items;
    const auto found = std::ranges::find(items, id, &RollArtwork::id);
    return found != items.end() ? geometry_.rectOf(found->trimRectInches()) : QRectF();
}

void RollBoardView::tap(const QUuid& id) {
    session_.selectArtwork(id);
}

// Drawing

void RollBoardView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    BoardPainter(painter, session_, pictures_, geometry_, keyboard_->hasFocus()).paint(event->rect());
}

// The mouse

void RollBoardView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    // What is being typed belongs to the artwork as it is now, and may change what lies below the mouse.
    CommittingField::commitEditingIn(*window());
    syncFromSession();
    if (const auto hit = hitAt(event->position())) {
        startPress(*hit, event->position());
    }
}

/// The second press of two quick ones may begin a drag as well.
void RollBoardView::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void RollBoardView::startPress(const BoardHit& hit, const QPointF& position) {
    scrolledSincePress_ = {};
    lastMouse_ = position;
    edgeScrolling_.start(position);
    gestures_.press(hit, position);
}

void RollBoardView::mouseMoveEvent(QMouseEvent* event) {
    lastMouse_ = event->position();
    if (!gestures_.isPressed()) {
        updateCursor(event->position());
        return;
    }
    dragTo(event->position());
    if (gestures_.isDragging()) {
        edgeScrolling_.follow(lastMouse_);
    }
}

void RollBoardView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    edgeScrolling_.stop();
    gestures_.release();
    updateCursor(event->position());
}

void RollBoardView::dragTo(const QPointF& position) {
    gestures_.drag(position + scrolledSincePress_, geometry_.pointsPerInch);
}

/// The canvas has moved on below what is dragged.
void RollBoardView::dragOn() {
    if (!gestures_.isDragging()) {
        edgeScrolling_.stop();
        return;
    }
    dragTo(lastMouse_);
}

void RollBoardView::updateCursor(const QPointF& position) {
    const auto hit = session_.busy() ? std::nullopt : hitAt(position);
    if (!hit) {
        viewport()->unsetCursor();
        return;
    }
    viewport()->setCursor(hit->part == BoardHit::Part::handle ? Qt::SizeFDiagCursor : Qt::OpenHandCursor);
}

void RollBoardView::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        dragOn();
        return;
    }
    // A wheel without clicks, or a touchpad, turns by less than a step at a time.
    wheelTurn_ += event->angleDelta().y();
    for (; std::abs(wheelTurn_) >= QWheelEvent::DefaultDeltasPerStep;
         wheelTurn_ -= wheelTurn_ > 0 ? QWheelEvent::DefaultDeltasPerStep : -QWheelEvent::DefaultDeltasPerStep) {
        zoomAt(event->position(), wheelTurn_ > 0);
    }
    event->accept();
}

void RollBoardView::zoomAt(const QPointF& position, bool isIn) {
    if (isIn) {
        session_.zoomIn();
    } else {
        session_.zoomOut();
    }
    updateBoard(position);
}

bool RollBoardView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        return showToolTip(help->pos(), help->globalPos());
    }
    case QEvent::UngrabMouse:
        gestures_.cancel();
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

/// The whole name, and why a source could not be confirmed: on the board there is seldom room for that.
bool RollBoardView::showToolTip(const QPoint& position, const QPoint& globalPosition) {
    const auto hit = hitAt(position);
    if (!hit) {
        QToolTip::hideText();
        return true;
    }
    const QList<RollArtwork>& items = session_.rollLayout().items;
    const auto item = std::ranges::find(items, hit->id, &RollArtwork::id);
    const QString warning = session_.rollLoadWarnings().value(hit->id);
    QToolTip::showText(globalPosition,
                       controls::toolTip(warning.isEmpty() ? item->title : item->title + u'\n' + warning), viewport());
    return true;
}

// Ends of a gesture without a release

void RollBoardView::hideEvent(QHideEvent* event) {
    gestures_.cancel();
    QAbstractScrollArea::hideEvent(event);
}

bool RollBoardView::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate || event->type() == QEvent::WindowBlocked) {
        gestures_.cancel();
    }
    return QAbstractScrollArea::event(event);
}

/// Arrow keys that the artwork does not take are not for scrolling: they would move the canvas below the pointer.
void RollBoardView::keyPressEvent(QKeyEvent* event) {
    event->ignore();
}

} // namespace orvex
