#pragma once

#include <QFont>
#include <QTextLayout>

class QPaintDevice;
class QPainter;

namespace orvex {

/// A plain text in the lines of a given width: broken between words, and inside of a word that is longer than a line.
/// Main thread.
class WrappedText {
public:
    /// Lengths are in device-independent pixels of the device.
    WrappedText(const QString& text, const QFont& font, qreal width, const QPaintDevice* device,
                Qt::Alignment alignment = Qt::AlignLeft);

    [[nodiscard]] qreal height() const { return height_; }

    /// The width of the longest line.
    [[nodiscard]] qreal usedWidth() const { return layout_.maximumWidth(); }

    /// In the painter's pen.
    void draw(QPainter& painter, const QPointF& topLeft) const;

private:
    QTextLayout layout_;
    qreal height_ = 0.0;
};

} // namespace orvex
