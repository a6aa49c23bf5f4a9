#pragma once

#include "OrvexModel.h"
#include "Workspace/ArtworkRowDelegate.h"

#include <QLabel>
#include <QTableView>
#include <QWidget>

namespace orvex {

class ArtworkListModel;

/// All artworks of the roll, each with an × that removes it. Enter and Space do what a click on the cell does; Delete
/// removes the row that has the keyboard. Main thread.
class ArtworkList : public QWidget {
    Q_OBJECT

public:
    explicit ArtworkList(OrvexModel& session, QWidget* parent = nullptr);

    void syncFromSession();

    /// Where the rows take their pictures from; they are asked for as they are drawn. A null one stands for a picture
    /// that is missing.
    void setThumbnails(ArtworkRowDelegate::Thumbnails thumbnails);

    /// Draws the pictures anew.
    void thumbnailsChanged();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void buildTable();
    void connectSignals();

    void showRows();
    void showSelection();
    void fitHeight();
    void activate(const QModelIndex& cell);
    void removeRow(const QModelIndex& cell);
    [[nodiscard]] bool handleKey(int key);

    OrvexModel& session_;
    QLabel* heading_;
    QTableView* table_;
    ArtworkListModel* model_;
    ArtworkRowDelegate* delegate_;
    std::optional<QUuid> shownSelection_;
};

} // namespace orvex
