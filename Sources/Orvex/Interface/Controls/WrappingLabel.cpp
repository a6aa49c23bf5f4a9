#include "WrappingLabel.h"

#include "Controls/WrappedText.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

// In average characters.
constexpr int preferredLineLength = 80;
constexpr int shortestLineLength = 8;

} // namespace

WrappingLabel::WrappingLabel(const QString& text, QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setForegroundRole(QPalette::WindowText); // on a button, too
    setText(text);
}

int WrappingLabel::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const WrappedText wrapped(shownText(), font(), width - margins.left() - margins.right(), this);
    return static_cast<int>(std::ceil(wrapped.height())) + margins.top() + margins.bottom();
}

QSize WrappingLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    const qreal longest = fontMetrics().averageCharWidth() * preferredLineLength;
    const qreal natural = WrappedText(shownText(), font(), QWIDGETSIZE_MAX, this).usedWidth();
    const int width = static_cast<int>(std::ceil(std::min(natural, longest))) + margins.left() + margins.right();
    return {width, heightForWidth(width)};
}

QSize WrappingLabel::minimumSizeHint() const {
    const int width = std::min(sizeHint().width(), fontMetrics().averageCharWidth() * shortestLineLength);
    return {width, fontMetrics().lineSpacing()};
}

void WrappingLabel::paintEvent(QPaintEvent*) {
    const QRect area = contentsRect();
    const WrappedText wrapped(shownText(), font(), area.width(), this,
                              QStyle::visualAlignment(layoutDirection(), alignment()));
    const qreal room = std::max(0.0, area.height() - wrapped.height());
    const qreal top = alignment().testFlag(Qt::AlignTop) ? 0.0 : std::floor(room / 2.0);
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    wrapped.draw(painter, area.topLeft() + QPointF(0.0, top));
}

/// A label with a buddy marks mnemonics, so that its ampersands are doubled.
QString WrappingLabel::shownText() const {
    return buddy() ? text().replace(QStringLiteral("&&"), QStringLiteral("&")) : text();
}

} // namespace orvex
