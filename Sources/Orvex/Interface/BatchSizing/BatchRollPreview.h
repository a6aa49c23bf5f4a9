#pragma once

#include "BatchArrangementPreview.h"

#include <QImage>
#include <QWidget>

#include <functional>

namespace orvex {

/// An arranged roll, drawn to scale in the space that there is: each trim frame dashed, and each image inside its
/// frame as it lies on the roll. Main thread.
class BatchRollPreview : public QWidget {
    Q_OBJECT

public:
    /// The upright picture of an artwork, null where there is none (yet). Asked at every drawing, so it must be quick.
    using Pictures = std::function<QImage(const RollArtwork& artwork)>;

    /// No pictures at all; every artwork is a tinted area then.
    [[nodiscard]] static QImage noPicture(const RollArtwork& artwork);

    explicit BatchRollPreview(Pictures pictures = noPicture, QWidget* parent = nullptr);

    /// Draws this arrangement from now on.
    void setPreview(const BatchArrangementPreview& preview);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawArtwork(QPainter& painter, const RollArtwork& artwork, double pixelsPerInch) const;

    const Pictures pictures_;
    RollLayout layout_;
};

} // namespace orvex
