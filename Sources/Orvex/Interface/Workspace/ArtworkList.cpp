#include "ArtworkList.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"
#include "Workspace/ArtworkListModel.h"

#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>

namespace orvex {

namespace {

constexpr int removalWidth = 36;
constexpr int mostVisibleRows = 7;

} // namespace

ArtworkList::ArtworkList(OrvexModel& session, QWidget* parent) : QWidget(parent), session_(session) {
    build();
    connectSignals();
    syncFromSession();
}

void ArtworkList::build() {
    auto* card = new Card;
    controls::column(this)->addWidget(card);
    QVBoxLayout& layout = card->content();
    layout.addWidget(heading_ = controls::named(QStringLiteral("artworkListHeading"), controls::heading({})));
    layout.addWidget(controls::note(
        spt("点击 × 可从当前排版中移除作品，其余作品按现有尺寸自动补位，可一步撤销。",
            "Click × to remove an artwork from this layout. The others automatically pack into the space at their "
            "current sizes. Undo in one step.")));
    buildTable();
    layout.addWidget(table_);
}

void ArtworkList::buildTable() {
    table_ = new QTableView;
    table_->setObjectName(QStringLiteral("artworkTable"));
    table_->setModel(model_ = new ArtworkListModel(table_));
    table_->setItemDelegate(delegate_ = new ArtworkRowDelegate(table_));
    QPalette palette = table_->palette();
    palette.setColor(QPalette::Highlight, OrvexTheme::selection);
    table_->setPalette(palette);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::NoSelection); // the session's selection alone is marked
    table_->setTabKeyNavigation(false);
    table_->setShowGrid(false);
    table_->setFrameShape(QFrame::NoFrame);
    table_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table_->viewport()->setAttribute(Qt::WA_Hover);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(ArtworkRowDelegate::rowHeight(*table_));
    QHeaderView* columns = table_->horizontalHeader();
    columns->hide();
    columns->setMinimumSectionSize(removalWidth);
    columns->setSectionResizeMode(ArtworkListModel::artworkColumn, QHeaderView::Stretch);
    columns->setSectionResizeMode(ArtworkListModel::removalColumn, QHeaderView::Fixed);
    columns->resizeSection(ArtworkListModel::removalColumn, removalWidth);
    table_->installEventFilter(this);
    table_->viewport()->installEventFilter(this);
}

void ArtworkList::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &ArtworkList::syncFromSession);
    connect(table_, &QTableView::clicked, this, &ArtworkList::activate);
}

void ArtworkList::setThumbnails(ArtworkRowDelegate::Thumbnails thumbnails) {
    delegate_->setThumbnails(std::move(thumbnails));
    thumbnailsChanged();
}

void ArtworkList::thumbnailsChanged() {
    table_->viewport()->update();
}

void ArtworkList::syncFromSession() {
    const QString heading = spt("全部作品 · %1", "All Artworks · %1").arg(session_.rollLayout().items.size());
    heading_->setText(heading);
    table_->setAccessibleName(heading);
    showRows();
    fitHeight();
    showSelection();
}

/// The keyboard goes on to the next row if its own is gone.
void ArtworkList::showRows() {
    const QModelIndex before = table_->currentIndex();
    const QPersistentModelIndex current = before;
    model_->setArtworks(session_.rollLayout().items);
    if (before.isValid() && !current.isValid()) {
        const int row = std::min(before.row(), model_->rowCount() - 1);
        table_->selectionModel()->setCurrentIndex(model_->index(row, before.column()), QItemSelectionModel::NoUpdate);
    }
}

/// Marks the selected row, and brings it into view when another artwork has been selected. The keyboard keeps its place
/// for as long as the selection does.
void ArtworkList::showSelection() {
    const bool isAnother = std::exchange(shownSelection_, session_.selectedArtworkID()) != shownSelection_;
    const int row = model_->rowOf(shownSelection_);
    if (row < 0) {
        table_->clearSelection();
        return;
    }
    const QModelIndex cell = model_->index(row, ArtworkListModel::artworkColumn);
    QItemSelectionModel* marks = table_->selectionModel();
    if (!marks->isRowSelected(row)) {
        marks->select(cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    if (isAnother) {
        marks->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
        table_->scrollTo(cell);
    }
}

/// As high as its rows, up to a height from which on it scrolls.
void ArtworkList::fitHeight() {
    const int rows = std::min(model_->rowCount(), mostVisibleRows);
    table_->setFixedHeight(rows * ArtworkRowDelegate::rowHeight(*table_));
    table_->setVisible(rows > 0);
}

void ArtworkList::activate(const QModelIndex& cell) {
    if (cell.column() == ArtworkListModel::removalColumn) {
        removeRow(cell);
        return;
    }
    session_.selectArtwork(model_->artwork(cell.row()).id);
}

void ArtworkList::removeRow(const QModelIndex& cell) {
    session_.removeArtwork(model_->artwork(cell.row()).id);
}

bool ArtworkList::handleKey(int key) {
    const QModelIndex cell = table_->currentIndex();
    if (!cell.isValid()) {
        return false;
    }
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        activate(cell);
        return true;
    case Qt::Key_Delete:
        removeRow(cell);
        return true;
    default:
        return false;
    }
}

bool ArtworkList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == table_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<const QKeyEvent*>(event); // NOLINT: its type says so
        const bool isPlain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        if (isPlain && !key->isAutoRepeat() && handleKey(key->key())) {
            return true;
        }
    }
    // When a row has gone with the first click of two, another one lies below the second.
    if (watched == table_->viewport() && event->type() == QEvent::MouseButtonDblClick) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace orvex
