#pragma once

#include "Layout/RollArtwork.h"

#include <QImage>
#include <QStyledItemDelegate>

#include <functional>

namespace orvex {

/// Draws the rows of the list of artworks. Main thread.
class ArtworkRowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// Gives the picture of an artwork with at most so many pixels on its longer side; null if there is none.
    using Thumbnails = std::function<std::optional<QImage>(const RollArtwork& artwork, int longestSidePixels)>;

    using QStyledItemDelegate::QStyledItemDelegate;

    void setThumbnails(Thumbnails thumbnails) { thumbnails_ = std::move(thumbnails); }

    /// The height of a row in the font of this widget.
    [[nodiscard]] static int rowHeight(const QWidget& list);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintThumbnail(QPainter& painter, const QRect& area, const RollArtwork& artwork) const;

    Thumbnails thumbnails_ = [](const RollArtwork&, int) { return std::nullopt; };
};

} // namespace orvex
