#include "ArtworkListModel.h"

#include "ArtworkTexts.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <algorithm>

namespace orvex {

namespace {

/// Whether two states of an artwork have the same row. A position is no part of it.
bool looksTheSame(const RollArtwork& one, const RollArtwork& other) {
    return one.widthInches == other.widthInches && one.rotationQuarterTurns == other.rotationQuarterTurns &&
           one.originalWidthInches == other.originalWidthInches &&
           one.originalHeightInches == other.originalHeightInches && one.title == other.title &&
           one.sourceURL == other.sourceURL;
}

bool isSameArtwork(const RollArtwork& one, const RollArtwork& other) {
    return one.id == other.id;
}

qsizetype sameAtStart(const QList<RollArtwork>& one, const QList<RollArtwork>& other) {
    return std::ranges::mismatch(one, other, isSameArtwork).in1 - one.begin();
}

qsizetype sameAtEnd(const QList<RollArtwork>& one, const QList<RollArtwork>& other) {
    return std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend(), isSameArtwork).first - one.rbegin();
}

QString removalHelp() {
    return spt("从当前排版中移除并自动补位、缩短卷布。原文件会保留，可以撤销。",
               "Remove from this layout, fill the gap, and shorten the roll automatically. The original file is "
               "retained. You can undo this.");
}

QVariant artworkData(const RollArtwork& artwork, int role) {
    switch (role) {
    case Qt::DisplayRole:
        return artwork.title;
    case Qt::ToolTipRole:
        return controls::toolTip(artwork.title);
    case Qt::AccessibleTextRole:
        return ArtworkTexts::rowName(artwork);
    case ArtworkListModel::sizeRole:
        return ArtworkTexts::printSize(artwork);
    default:
        return {};
    }
}

QVariant removalData(const RollArtwork& artwork, int role) {
    switch (role) {
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return removalHelp();
    case Qt::AccessibleTextRole:
        return ArtworkTexts::removalName(artwork);
    default:
        return {};
    }
}

} // namespace

void ArtworkListModel::setArtworks(const QList<RollArtwork>& artworks) {
    if (!std::ranges::equal(artworks_, artworks, isSameArtwork)) {
        replaceRows(artworks);
    }
    updateRows(artworks);
}

/// The same artworks as before, some of them changed.
void ArtworkListModel::updateRows(const QList<RollArtwork>& artworks) {
    const QList<RollArtwork> before = std::exchange(artworks_, artworks);
    for (int row = 0; row < rowCount(); ++row) {
        if (!looksTheSame(before[row], artworks[row])) {
            Q_EMIT dataChanged(index(row, artworkColumn), index(row, removalColumn));
        }
    }
}

/// Removes and inserts rows between those that are the same at both ends.
void ArtworkListModel::replaceRows(const QList<RollArtwork>& artworks) {
    const qsizetype same = sameAtStart(artworks_, artworks);
    const qsizetype sameAfter = sameAtEnd(artworks_.sliced(same), artworks.sliced(same));
    const qsizetype removed = artworks_.size() - same - sameAfter;
    const qsizetype inserted = artworks.size() - same - sameAfter;
    if (removed > 0) {
        beginRemoveRows({}, static_cast<int>(same), static_cast<int>(same + removed - 1));
        artworks_.remove(same, removed);
        endRemoveRows();
    }
    if (inserted > 0) {
        beginInsertRows({}, static_cast<int>(same), static_cast<int>(same + inserted - 1));
        artworks_ = artworks_.first(same) + artworks.sliced(same, inserted) + artworks_.sliced(same);
        endInsertRows();
    }
}

int ArtworkListModel::rowOf(const std::optional<QUuid>& id) const {
    const auto isMeant = [&id](const RollArtwork& each) { return id == each.id; };
    const auto found = std::ranges::find_if(artworks_, isMeant);
    return found != artworks_.end() ? static_cast<int>(found - artworks_.begin()) : -1;
}

int ArtworkListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(artworks_.size());
}

int ArtworkListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnTotal;
}

QVariant ArtworkListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const RollArtwork& shown = artwork(index.row());
    return index.column() == artworkColumn ? artworkData(shown, role) : removalData(shown, role);
}

} // namespace orvex
