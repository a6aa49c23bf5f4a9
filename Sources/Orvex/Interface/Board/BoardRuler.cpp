#include "BoardRuler.h"

#include "BoardScale.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "SizeTexts.h"
#include "Theme/OrvexTheme.h"

#include <QPainter>

#include <algorithm>

namespace orvex {

namespace {

constexpr int tick = 6;
constexpr int gap = 3; // between a mark's line and its number

} // namespace

BoardRuler::BoardRuler(Qt::Orientation orientation, QWidget* parent) : QWidget(parent), orientation_(orientation) {
    setFont(controls::resized(font(), 0.85));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(orientation == Qt::Horizontal ? spt("横向标尺", "Ruler across the roll")
                                                    : spt("纵向标尺", "Ruler along the roll"));
}

void BoardRuler::setGeometryOfBoard(const BoardGeometry& geometry) {
    if (geometry_ == geometry) {
        return;
    }
    geometry_ = geometry;
    update();
}

void BoardRuler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), OrvexTheme::surface);
    painter.setPen(OrvexTheme::muted);
    if (orientation_ == Qt::Horizontal) {
        paintHorizontal(painter);
    } else {
        paintVertical(painter);
    }
}

/// Starts with the unit in the corner over the other ruler.
void BoardRuler::paintHorizontal(QPainter& painter) const {
    painter.drawText(QRect(0, 0, thickness, height() - tick), Qt::AlignCenter, spt("英寸", "in"));
    double freeFrom = thickness; // where the next number does not run into the one before
    for (const double inches : BoardScale::horizontalMarks(geometry_.widthInches)) {
        const double x = thickness + geometry_.xOf(inches);
        if (x < thickness) {
            continue; // scrolled out, below the corner
        }
        painter.drawLine(QPointF(x, height() - tick), QPointF(x, height()));
        const QString number = inchesText(inches);
        const double length = painter.fontMetrics().horizontalAdvance(number);
        const double left = std::min(x - length / 2, width() - length - 1); // the last one beside its mark, if need be
        if (left < freeFrom || x > width()) {
            continue;
        }
        painter.drawText(QPointF(left, height() - tick - gap), number);
        freeFrom = left + length + 2 * gap;
    }
}

void BoardRuler::paintVertical(QPainter& painter) const {
    const double ascent = painter.fontMetrics().ascent();
    double freeFrom = 0;
    for (const double inches : BoardScale::verticalMarks(geometry_.lengthInches)) {
        const double y = geometry_.yOf(inches);
        painter.drawLine(QPointF(width() - tick, y), QPointF(width(), y));
        const double top = std::max(y - ascent / 2, static_cast<double>(gap));
        if (y < 0 || top < freeFrom || top + ascent > height()) {
            continue;
        }
        painter.drawText(QRectF(0, top - gap, width() - tick - gap, ascent + 2 * gap),
                         Qt::AlignRight | Qt::AlignVCenter, inchesText(inches));
        freeFrom = top + ascent + 2 * gap;
    }
}

} // namespace orvex
