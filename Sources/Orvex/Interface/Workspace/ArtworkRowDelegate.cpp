#include "ArtworkRowDelegate.h"

#include "Controls/Controls.h"
#include "Theme/OrvexTheme.h"
#include "Workspace/ArtworkListModel.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr int thumbnailSide = 40;
constexpr int symbolSide = 22;
constexpr int removalSymbolSide = 14;
constexpr int padding = 6;
constexpr int selectionBarWidth = 3;

QRect centred(const QSize& size, const QRect& area) {
    return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, area);
}

bool has(const QStyleOptionViewItem& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

void paintGround(QPainter& painter, const QStyleOptionViewItem& option, bool isFirst) {
    if (has(option, QStyle::State_Selected)) {
        painter.fillRect(option.rect, OrvexTheme::selection);
    }
    if (has(option, QStyle::State_Selected) && isFirst) {
        painter.fillRect(QRect(option.rect.topLeft(), QSize(selectionBarWidth, option.rect.height())),
                         OrvexTheme::accent);
    }
    painter.setPen(OrvexTheme::line);
    painter.drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (has(option, QStyle::State_HasFocus)) {
        painter.setPen(QPen(OrvexTheme::accent, 1));
        painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
}

void paintLine(QPainter& painter, const QRect& area, const QString& text, const QColor& color) {
    painter.setPen(color);
    const QString line = painter.fontMetrics().elidedText(text.simplified(), Qt::ElideMiddle, area.width());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, line);
}

void paintTexts(QPainter& painter, const QRect& area, const QModelIndex& index) {
    const int lineHeight = painter.fontMetrics().lineSpacing();
    const QRect lines = centred({area.width(), 2 * lineHeight}, area);
    paintLine(painter, {lines.topLeft(), QSize(lines.width(), lineHeight)}, index.data().toString(), OrvexTheme::text);
    paintLine(painter, {lines.left(), lines.top() + lineHeight, lines.width(), lineHeight},
              index.data(ArtworkListModel::sizeRole).toString(), OrvexTheme::muted);
}

void paintRemoval(QPainter& painter, const QStyleOptionViewItem& option) {
    const bool isUnderPointer = has(option, QStyle::State_MouseOver);
    OrvexIcons::icon(OrvexIcons::Symbol::remove, isUnderPointer ? OrvexTheme::danger : OrvexTheme::muted)
        .paint(&painter, centred({removalSymbolSide, removalSymbolSide}, option.rect));
}

} // namespace

int ArtworkRowDelegate::rowHeight(const QWidget& list) {
    return std::max(thumbnailSide, 2 * list.fontMetrics().lineSpacing()) + 2 * padding;
}

void ArtworkRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto* list = qobject_cast<const ArtworkListModel*>(index.model());
    if (list == nullptr) {
        return;
    }
    painter->save();
    painter->setFont(option.font);
    const bool isArtwork = index.column() == ArtworkListModel::artworkColumn;
    paintGround(*painter, option, isArtwork);
    if (isArtwork) {
        const QRect area = option.rect.adjusted(selectionBarWidth + padding, 0, -padding, 0);
        paintThumbnail(*painter, {area.topLeft(), QSize(thumbnailSide, area.height())}, list->artwork(index.row()));
        paintTexts(*painter, area.adjusted(thumbnailSide + controls::spacing, 0, 0, 0), index);
    } else {
        paintRemoval(*painter, option);
    }
    painter->restore();
}

void ArtworkRowDelegate::paintThumbnail(QPainter& painter, const QRect& area, const RollArtwork& artwork) const {
    const qreal ratio = painter.device()->devicePixelRatio();
    const std::optional<QImage> picture = thumbnails_(artwork, static_cast<int>(std::ceil(thumbnailSide * ratio)));
    if (!picture) {
        OrvexIcons::icon(OrvexIcons::Symbol::missingPicture, OrvexTheme::muted)
            .paint(&painter, centred({symbolSide, symbolSide}, area));
        return;
    }
    if (picture->isNull()) {
        return;
    }
    const QSize size = picture->size().scaled(thumbnailSide, thumbnailSide, Qt::KeepAspectRatio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(centred(size.expandedTo({1, 1}), area), *picture);
}

} // namespace orvex
