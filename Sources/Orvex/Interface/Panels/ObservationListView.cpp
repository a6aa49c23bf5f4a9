#include "ObservationListView.h"

#include "Controls/WrappedText.h"
#include "JournalTexts.h"

#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

// Around the text of an entry, in device-independent pixels.
constexpr int paddingX = 4;
constexpr int paddingY = 4;

/// Shows the whole of a text in the width of the list.
class WrappingDelegate : public QStyledItemDelegate {
public:
    explicit WrappingDelegate(QListView* view) : QStyledItemDelegate(view), view_(view) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int width = view_->viewport()->width();
        const qreal height = wrapped(option, index, width).height();
        return {width, static_cast<int>(std::ceil(height)) + 2 * paddingY};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyleOptionViewItem ground = option;
        initStyleOption(&ground, index);
        ground.text.clear();
        view_->style()->drawControl(QStyle::CE_ItemViewItem, &ground, painter, view_);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->setPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        wrapped(option, index, option.rect.width()).draw(*painter, option.rect.topLeft() + QPoint(paddingX, paddingY));
    }

private:
    [[nodiscard]] WrappedText wrapped(const QStyleOptionViewItem& option, const QModelIndex& index, int width) const {
        return {index.data().toString(), option.font, static_cast<qreal>(width - 2 * paddingX), view_};
    }

    QListView* view_;
};

} // namespace

void ObservationListModel::setObservations(const QList<PrintObservation>& observations) {
    if (observations == observations_) {
        return;
    }
    if (endsWithShown(observations)) {
        const auto added = static_cast<int>(observations.size() - observations_.size());
        beginInsertRows({}, 0, added - 1);
        observations_ = observations;
        endInsertRows();
        return;
    }
    beginResetModel();
    observations_ = observations;
    endResetModel();
}

bool ObservationListModel::endsWithShown(const QList<PrintObservation>& observations) const {
    const qsizetype added = observations.size() - observations_.size();
    return added > 0 && std::equal(observations_.begin(), observations_.end(), observations.begin() + added);
}

int ObservationListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(observations_.size());
}

QVariant ObservationListModel::data(const QModelIndex& index, int role) const {
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (!isText || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    return JournalTexts::text(observations_.at(index.row()));
}

ObservationListView::ObservationListView(QWidget* parent) : QListView(parent), model_(new ObservationListModel(this)) {
    setModel(model_);
    setItemDelegate(new WrappingDelegate(this));
    setEditTriggers(NoEditTriggers);
    setResizeMode(Adjust);
    setLayoutMode(Batched); // thousands of entries do not hold up the window
    setVerticalScrollMode(ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // so that the width never changes with the content
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlternatingRowColors(true);
}

} // namespace orvex
