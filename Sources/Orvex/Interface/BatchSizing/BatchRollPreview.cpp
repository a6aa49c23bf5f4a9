#include "BatchRollPreview.h"

#include "Theme/OrvexTheme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr QColor frameColor{0x5b, 0x63, 0x6d};
constexpr QColor placeholderColor{0xb5, 0xd6, 0xf5};
constexpr QSize smallest{160, 100};

QRectF scaled(const Rect& inches, double pixelsPerInch) {
    return {inches.x * pixelsPerInch, inches.y * pixelsPerInch, inches.width * pixelsPerInch,
            inches.height * pixelsPerInch};
}

/// The upright image in the place of the turned one.
void drawTurned(QPainter& painter, const QImage& picture, const QRectF& place, qint64 clockwiseQuarterTurns) {
    const QSizeF size = clockwiseQuarterTurns % 2 == 0 ? place.size() : place.size().transposed();
    painter.save();
    painter.translate(place.center());
    painter.rotate(90.0 * static_cast<double>(clockwiseQuarterTurns));
    painter.drawImage(QRectF(QPointF(-size.width() / 2.0, -size.height() / 2.0), size), picture);
    painter.restore();
}

QPen framePen() {
    QPen pen(frameColor, 1.0);
    pen.setDashPattern({3.0, 3.0});
    return pen;
}

} // namespace

QImage BatchRollPreview::noPicture(const RollArtwork&) {
    return {};
}

BatchRollPreview::BatchRollPreview(Pictures pictures, QWidget* parent)
    : QWidget(parent),
      pictures_(std::move(pictures)) {
    setObjectName(QStringLiteral("batchRollPreview"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void BatchRollPreview::setPreview(const BatchArrangementPreview& preview) {
    layout_ = preview.layout;
    setAccessibleName(preview.accessibilityLabel());
    update();
}

QSize BatchRollPreview::sizeHint() const {
    return smallest * 2;
}

QSize BatchRollPreview::minimumSizeHint() const {
    return smallest;
}

void BatchRollPreview::paintEvent(QPaintEvent*) {
    const double length = layout_.lengthInches();
    if (!std::isfinite(length) || length <= 0.0) {
        return;
    }
    const double pixelsPerInch = std::min(width() / layout_.widthInches, height() / length);
    const QSizeF roll(layout_.widthInches * pixelsPerInch, length * pixelsPerInch);
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate((width() - roll.width()) / 2.0, (height() - roll.height()) / 2.0);
    painter.fillRect(QRectF(QPointF(), roll), OrvexTheme::canvas);
    for (const RollArtwork& artwork : layout_.items) {
        drawArtwork(painter, artwork, pixelsPerInch);
    }
}

void BatchRollPreview::drawArtwork(QPainter& painter, const RollArtwork& artwork, double pixelsPerInch) const {
    const QRectF place = scaled(artwork.artworkRectInches(), pixelsPerInch);
    const QImage picture = pictures_(artwork);
    if (picture.isNull()) {
        painter.fillRect(place, placeholderColor);
    } else {
        drawTurned(painter, picture, place, artwork.rotationQuarterTurns);
    }
    painter.setPen(framePen());
    painter.setBrush(Qt::NoBrush);
    // Half a pixel inside, so that the lines at the edges of the roll are whole.
    painter.drawRect(scaled(artwork.trimRectInches(), pixelsPerInch).adjusted(0.5, 0.5, -0.5, -0.5));
}

} // namespace orvex
