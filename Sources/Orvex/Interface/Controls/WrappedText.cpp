#include "WrappedText.h"

#include <QPainter>

namespace orvex {

namespace {

/// The text in a layout's own word for a new line.
QString inLines(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(u'\n', QChar::LineSeparator);
}

} // namespace

WrappedText::WrappedText(const QString& text, const QFont& font, qreal width, const QPaintDevice* device,
                         Qt::Alignment alignment)
    : layout_(inLines(text), font, device) {
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout_.setTextOption(option);
    layout_.beginLayout();
    for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition({0.0, height_});
        height_ += line.height();
    }
    layout_.endLayout();
}

void WrappedText::draw(QPainter& painter, const QPointF& topLeft) const {
    layout_.draw(&painter, topLeft);
}

} // namespace orvex
