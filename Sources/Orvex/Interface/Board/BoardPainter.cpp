#include "BoardPainter.h"

#include "OrvexLanguage.h"
#include "Theme/OrvexIcons.h"
#include "Theme/OrvexTheme.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr QColor frameColor{0x73, 0x73, 0x73};       // as the trim dashes are printed
constexpr QColor selectionColor{0x1b, 0x6f, 0xc2};   // the accent, dark enough for the white canvas
constexpr QColor placeholderText{0x4a, 0x50, 0x58};  // on the tint over white
constexpr QColor placeholderAlarm{0xa8, 0x1c, 0x12}; // the same for a warning
constexpr double placeholderOpacity = 0.15;
constexpr double handleOpacity = 0.7;

/// The dashes of the PDF, 6 and 4 points long; on the screen they do not grow with the zoom.
constexpr double dashLength = 6.0;
constexpr double dashPeriod = 10.0;

QPen pen(const QColor& color, double width) {
    QPen pen(color, width);
    pen.setJoinStyle(Qt::MiterJoin);
    return pen;
}

/// A rectangle with edges on whole device pixels, so that thin lines are sharp.
QRectF sharp(const QRectF& rect, double ratio) {
    const auto snap = [ratio](double value) { return std::round(value * ratio) / ratio; };
    return {QPointF(snap(rect.left()), snap(rect.top())), QPointF(snap(rect.right()), snap(rect.bottom()))};
}

/// The dashes of an edge that lie in `area`. A pen would let them begin anew where the drawn part begins, and they
/// would not meet what is drawn already.
QList<QRectF> dashesOf(const QRectF& edge, const QRectF& area) {
    const bool isAcross = edge.width() > edge.height();
    const double length = isAcross ? edge.width() : edge.height();
    const double from = isAcross ? area.left() - edge.left() : area.top() - edge.top();
    const double to = isAcross ? area.right() - edge.left() : area.bottom() - edge.top();
    QList<QRectF> dashes;
    for (double at = std::max(std::floor(from / dashPeriod), 0.0) * dashPeriod; at < std::min(to, length);
         at += dashPeriod) {
        const double dash = std::min(dashLength, length - at);
        dashes.append(isAcross ? QRectF(edge.left() + at, edge.top(), dash, edge.height())
                               : QRectF(edge.left(), edge.top() + at, edge.width(), dash));
    }
    return dashes;
}

} // namespace

BoardPainter::BoardPainter(QPainter& painter, const OrvexModel& session, BoardPictures& pictures,
                           const BoardGeometry& geometry, bool hasKeyboard)
    : painter_(painter),
      session_(session),
      pictures_(pictures),
      geometry_(geometry),
      hasKeyboard_(hasKeyboard) {}

void BoardPainter::paint(const QRectF& area) {
    painter_.fillRect(area, OrvexTheme::background);
    painter_.fillRect(geometry_.canvas() & area, OrvexTheme::canvas);
    paintArtworks(area);
    if (const auto selected = session_.selectedArtwork()) {
        paintSelection(*selected);
    }
    paintRollEnd();
}

/// All frames lie above all pictures, as in print.
void BoardPainter::paintArtworks(const QRectF& area) {
    QList<RollArtwork> shown = session_.rollLayout().items;
    shown.removeIf([&](const RollArtwork& item) {
        return !geometry_.rectOf(item.trimRectInches()).adjusted(-1, -1, 1, 1).intersects(area);
    });
    for (const RollArtwork& item : shown) {
        paintPicture(item, geometry_.rectOf(item.artworkRectInches()));
    }
    for (const RollArtwork& item : shown) {
        paintFrame(geometry_.rectOf(item.trimRectInches()), area);
    }
}

void BoardPainter::paintPicture(const RollArtwork& item, const QRectF& place) {
    const double ratio = painter_.device()->devicePixelRatioF();
    const QRectF target = sharp(place, ratio);
    const QSize pixels = (target.size() * ratio).toSize().expandedTo({1, 1});
    const auto sharpness =
        session_.arrangingGesture() ? BoardPictures::Sharpness::quick : BoardPictures::Sharpness::exact;
    const QPixmap pixmap = pictures_.placed(item, session_.metadataFor(item), pixels, sharpness);
    if (pixmap.isNull()) {
        paintPlaceholder(item, target);
        return;
    }
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, pixmap.size() != pixels);
    painter_.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
}

/// What stands where there is no picture; a source that could not be confirmed says why.
void BoardPainter::paintPlaceholder(const RollArtwork& item, const QRectF& place) {
    constexpr double symbolSide = 28.0;
    constexpr double inset = 6.0;
    QColor tint = frameColor;
    tint.setAlphaF(static_cast<float>(placeholderOpacity));
    painter_.fillRect(place, tint);
    const bool isMissing = !session_.metadataFor(item); // else its picture is being made
    const double side = std::min({symbolSide, place.width(), place.height()});
    const QRectF symbol(place.center() - QPointF(side, side) / 2.0, QSizeF(side, side));
    if (isMissing) {
        OrvexIcons::icon(OrvexIcons::Symbol::missingPicture, placeholderText).paint(&painter_, symbol.toRect());
    }

    const QString warning = session_.rollLoadWarnings().value(item.id);
    const QRectF room = place.adjusted(inset, inset, -inset, -inset);
    const QRectF below(room.left(), symbol.bottom() + inset, room.width(), room.bottom() - symbol.bottom() - inset);
    const QString text = warning.isEmpty() ? item.title : warning;
    painter_.setPen(warning.isEmpty() ? placeholderText : placeholderAlarm);
    if (below.height() >= painter_.fontMetrics().height()) {
        painter_.drawText(below, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text);
    }
}

void BoardPainter::paintFrame(const QRectF& frame, const QRectF& area) {
    const QRectF place = sharp(frame, painter_.device()->devicePixelRatioF());
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(frameColor);
    painter_.drawRects(dashesOf({place.topLeft(), QSizeF(place.width(), 1.0)}, area));
    painter_.drawRects(dashesOf({place.bottomLeft() - QPointF(0.0, 1.0), QSizeF(place.width(), 1.0)}, area));
    painter_.drawRects(dashesOf({place.topLeft(), QSizeF(1.0, place.height())}, area));
    painter_.drawRects(dashesOf({place.topRight() - QPointF(1.0, 0.0), QSizeF(1.0, place.height())}, area));
}

void BoardPainter::paintSelection(const RollArtwork& item) {
    constexpr double outline = 2.0;
    const QRectF frame = geometry_.rectOf(item.trimRectInches());
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(pen(selectionColor, hasKeyboard_ ? 2.0 * outline : outline));
    painter_.drawRect(frame);

    const QRectF handle = BoardGeometry::handleOf(frame);
    QColor mark = Qt::black;
    mark.setAlphaF(static_cast<float>(handleOpacity));
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(mark);
    painter_.drawRoundedRect(handle, 4.0, 4.0);
    painter_.setRenderHint(QPainter::Antialiasing, false);
    OrvexIcons::icon(OrvexIcons::Symbol::resizeHandle, Qt::white)
        .paint(&painter_, handle.adjusted(4, 4, -4, -4).toRect());
}

QString BoardPainter::rollEndText(const OrvexModel& session) {
    return spt("卷布末端 · %1 英寸 · 最下方作品保留 2.5 英寸底部白边",
               "Roll end · %1 in · Lowest artwork has a 2.5-inch bottom border")
        .arg(session.rollLengthLabel());
}

QRectF BoardPainter::rollEndArea(const BoardGeometry& geometry, const QRectF& viewport) {
    const QRectF canvas = geometry.canvas();
    return {viewport.left(), canvas.bottom(), viewport.width(), rollEndHeight};
}

void BoardPainter::paintRollEnd() {
    if (session_.rollLayout().items.isEmpty()) {
        return;
    }
    const QRectF line = rollEndArea(geometry_, painter_.viewport());
    painter_.setPen(OrvexTheme::muted);
    painter_.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap, rollEndText(session_));
}

} // namespace orvex
