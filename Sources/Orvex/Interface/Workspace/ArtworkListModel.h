#pragma once

#include "Layout/RollArtwork.h"

#include <QAbstractTableModel>
#include <QList>

namespace orvex {

/// The artworks of a roll as rows of two cells: the artwork, and the × that removes it. Main thread.
class ArtworkListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { artworkColumn, removalColumn, columnTotal };

    /// The printed size as text, of the artwork's cell.
    static constexpr int sizeRole = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    /// Takes over what has changed: rows whose texts are the same keep still, and no row is made anew that stays.
    void setArtworks(const QList<RollArtwork>& artworks);

    [[nodiscard]] const RollArtwork& artwork(int row) const { return artworks_.at(row); }

    /// The row of an artwork; -1 if there is none.
    [[nodiscard]] int rowOf(const std::optional<QUuid>& id) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void updateRows(const QList<RollArtwork>& artworks);
    void replaceRows(const QList<RollArtwork>& artworks);

    QList<RollArtwork> artworks_;
};

} // namespace orvex
