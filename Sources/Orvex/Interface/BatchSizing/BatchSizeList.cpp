#include "BatchSizeList.h"

#include "BatchSizing/BatchSizeRow.h"
#include "Controls/Controls.h"
#include "Theme/OrvexTheme.h"

#include <QFocusEvent>
#include <QScrollBar>

#include <algorithm>

namespace orvex {

namespace {

constexpr int smallestHeight = 90;

bool isKeyboardArrival(const QEvent& event) {
    if (event.type() != QEvent::FocusIn) {
        return false;
    }
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(event).reason();
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
}

} // namespace

BatchSizeList::BatchSizeList(BatchSizingModel& model, QWidget* parent) : QScrollArea(parent) {
    setObjectName(QStringLiteral("batchRows"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the names of the columns stay above them
    setWidgetResizable(true);
    setMinimumHeight(smallestHeight);
    build(model);
}

void BatchSizeList::build(BatchSizingModel& model) {
    auto* content = new QWidget;
    QVBoxLayout* column = controls::column(content);
    column->setSpacing(0);
    for (qsizetype index = 0; index < model.rows().size(); ++index) {
        rows_.append(new BatchSizeRow(model, index, content));
        column->addWidget(rows_.last());
    }
    column->addStretch(1);
    QPalette ground = content->palette();
    ground.setColor(QPalette::Window, OrvexTheme::surface);
    content->setPalette(ground);
    setWidget(content);
    if (!rows_.isEmpty()) {
        makeControls(0);
        makeControls(rows_.size() - 1);
    }
}

void BatchSizeList::syncFromModel() {
    for (BatchSizeRow* row : std::as_const(rows_)) {
        row->syncFromModel();
    }
}

/// Scrolls to a control with its row, or to the control alone in a row that is too high to be seen as a whole.
void BatchSizeList::showControl(const QWidget& control) {
    ensureWidgetVisible(control.parentWidget(), 0, 0);
    const QPoint centre = control.mapTo(widget(), control.rect().center());
    ensureVisible(centre.x(), centre.y(), 0, control.height());
}

QSize BatchSizeList::sizeHint() const {
    return {QScrollArea::sizeHint().width(), smallestHeight};
}

bool BatchSizeList::eventFilter(QObject* object, QEvent* event) {
    const bool handled = QScrollArea::eventFilter(object, event);
    if (object == widget() && event->type() == QEvent::Resize) {
        makeVisibleControls();
    } else if (object != widget() && isKeyboardArrival(*event)) {
        showControl(*static_cast<QWidget*>(object));
    }
    return handled;
}

void BatchSizeList::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    makeVisibleControls();
}

void BatchSizeList::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    makeVisibleControls();
}

/// Those a screenful above and below are made as well, so that the next one is there for the keyboard.
void BatchSizeList::makeVisibleControls() {
    const int screenful = std::max(viewport()->height(), smallestHeight);
    const int top = verticalScrollBar()->value() - screenful;
    const int bottom = verticalScrollBar()->value() + 2 * screenful;
    for (qsizetype index = firstRowBelow(top); index < rows_.size() && rows_[index]->y() < bottom; ++index) {
        makeControls(index);
    }
}

/// The first row that ends below that height.
qsizetype BatchSizeList::firstRowBelow(int y) const {
    const auto found =
        std::ranges::upper_bound(rows_, y, {}, [](const BatchSizeRow* row) { return row->y() + row->height(); });
    return std::distance(rows_.begin(), found);
}

void BatchSizeList::makeControls(qsizetype index) {
    BatchSizeRow* const row = rows_[index];
    if (row->hasControls()) {
        return;
    }
    row->makeControls();
    QWidget* before = controlBefore(index);
    for (QWidget* control : row->controls()) {
        control->installEventFilter(this);
        if (before != nullptr) {
            setTabOrder(before, control);
        }
        before = control;
    }
}

/// The last control above a row; null above the first.
QWidget* BatchSizeList::controlBefore(qsizetype index) const {
    for (qsizetype above = index - 1; above >= 0; --above) {
        if (rows_[above]->hasControls()) {
            return rows_[above]->controls().last();
        }
    }
    return nullptr;
}

} // namespace orvex
