#include "OrvexStyle.h"

#include "Theme/OrvexTheme.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

namespace orvex {

namespace {

constexpr qreal cornerRadius = 4.0;
constexpr qreal focusWidth = 2.0;

bool has(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

/// The pen of an edge: the accent where the keyboard is.
QPen edgePen(const QStyleOption& option, const QColor& color) {
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_Enabled)) {
        return {OrvexTheme::accent, focusWidth};
    }
    return {has(option, QStyle::State_Enabled) ? color : OrvexTheme::line, 1.0};
}

/// A rectangle whose edge of that width lies inside of it.
QRectF inside(const QRect& rect, const QPen& pen) {
    const qreal half = pen.widthF() / 2.0;
    return QRectF(rect).adjusted(half, half, -half, -half);
}

void drawBox(QPainter& painter, const QRect& rect, const QPen& edge, const QBrush& ground) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(ground);
    painter.drawRoundedRect(inside(rect, edge), cornerRadius, cornerRadius);
    painter.restore();
}

/// The face of a button: it answers the mouse by its brightness.
QColor face(const QStyleOption& option) {
    const QColor face = option.palette.color(QPalette::Button);
    if (!has(option, QStyle::State_Enabled)) {
        return OrvexTheme::surface;
    }
    if (has(option, QStyle::State_Sunken) || has(option, QStyle::State_On)) {
        return face.darker(120);
    }
    return has(option, QStyle::State_MouseOver) ? face.lighter(115) : face;
}

void drawButton(QPainter& painter, const QStyleOption& option) {
    const bool isAccent = option.palette.color(QPalette::Button) == OrvexTheme::accent;
    QPen edge = edgePen(option, isAccent ? OrvexTheme::accent : OrvexTheme::edge);
    if (isAccent && has(option, QStyle::State_HasFocus)) {
        edge.setColor(OrvexTheme::text); // the accent would not be seen on itself
    }
    drawBox(painter, option.rect, edge, face(option));
}

QColor markColor(const QStyleOption& option) {
    return has(option, QStyle::State_Enabled) ? OrvexTheme::onAccent : OrvexTheme::background;
}

QColor markGround(const QStyleOption& option) {
    if (!has(option, QStyle::State_On)) {
        return OrvexTheme::field;
    }
    return has(option, QStyle::State_Enabled) ? OrvexTheme::accent : OrvexTheme::disabled;
}

QPen markEdge(const QStyleOption& option) {
    return {has(option, QStyle::State_Enabled) ? OrvexTheme::muted : OrvexTheme::line, 1.0};
}

void drawTick(QPainter& painter, const QStyleOption& option) {
    drawBox(painter, option.rect, markEdge(option), markGround(option));
    if (!has(option, QStyle::State_On)) {
        return;
    }
    const QRectF box(option.rect);
    const auto at = [&box](qreal x, qreal y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(markColor(option), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{at(0.25, 0.52), at(0.43, 0.70), at(0.75, 0.32)});
    painter.restore();
}

void drawRadio(QPainter& painter, const QStyleOption& option) {
    const QPen edge = markEdge(option);
    const QRectF circle = inside(option.rect, edge);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(markGround(option));
    painter.drawEllipse(circle);
    if (has(option, QStyle::State_On)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(markColor(option));
        painter.drawEllipse(circle.center(), circle.width() / 5.0, circle.height() / 5.0);
    }
    painter.restore();
}

void drawField(QPainter& painter, const QStyleOption& option) {
    const bool hasFrame = qstyleoption_cast<const QStyleOptionFrame*>(&option)->lineWidth > 0;
    const QPen edge = hasFrame ? edgePen(option, OrvexTheme::edge) : QPen(Qt::NoPen);
    drawBox(painter, option.rect, edge, option.palette.brush(QPalette::Base));
}

} // namespace

OrvexStyle::OrvexStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

int OrvexStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    constexpr int indicatorSide = 16;
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return indicatorSide;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize OrvexStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                   const QWidget* widget) const {
    constexpr QSize roomInButtons{12, 2};
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    return type == CT_PushButton ? size + roomInButtons : size;
}

void OrvexStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    switch (element) {
    case PE_PanelButtonCommand:
        drawButton(*painter, *option);
        return;
    case PE_IndicatorCheckBox:
        drawTick(*painter, *option);
        return;
    case PE_IndicatorRadioButton:
        drawRadio(*painter, *option);
        return;
    case PE_PanelLineEdit:
        if (qstyleoption_cast<const QStyleOptionFrame*>(option) != nullptr) {
            drawField(*painter, *option);
            return;
        }
        break;
    case PE_FrameFocusRect:
        drawBox(*painter, option->rect, QPen(OrvexTheme::accent, 1.0), Qt::NoBrush);
        return;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void OrvexStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox || control == CC_SpinBox) {
        drawBox(*painter, option->rect, edgePen(*option, OrvexTheme::edge), Qt::NoBrush);
    }
}

} // namespace orvex
