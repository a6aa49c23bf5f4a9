#include "FlowLayout.h"

#include "Controls/Controls.h"

#include <QWidget>

#include <algorithm>

namespace orvex {

struct FlowLayout::Row {
    std::vector<QLayoutItem*> items;
    int width = 0;
    int height = 0;
};

FlowLayout::FlowLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(controls::spacing);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
}

int FlowLayout::count() const {
    return static_cast<int>(items_.size());
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    const auto position = items_.begin() + index;
    QLayoutItem* item = position->release();
    items_.erase(position);
    return item;
}

std::vector<FlowLayout::Row> FlowLayout::rows(int width) const {
    std::vector<Row> rows;
    for (const auto& item : items_) {
        if (item->isEmpty()) {
            continue; // hidden
        }
        const QSize size = sizeIn(*item, width);
        if (rows.empty() || rows.back().width + spacing() + size.width() > width) {
            rows.push_back({{item.get()}, size.width(), size.height()});
            continue;
        }
        Row& row = rows.back();
        row.items.push_back(item.get());
        row.width += spacing() + size.width();
        row.height = std::max(row.height, size.height());
    }
    return rows;
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    int height = margins.top() + margins.bottom();
    const std::vector<Row> all = rows(width - margins.left() - margins.right());
    for (const Row& row : all) {
        height += row.height;
    }
    return height + spacing() * std::max(0, static_cast<int>(all.size()) - 1);
}

QSize FlowLayout::sizeHint() const {
    QSize size;
    for (const Row& row : rows(QLAYOUTSIZE_MAX)) {
        size = {row.width, row.height};
    }
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const auto& item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::sizeIn(const QLayoutItem& item, int width) {
    const QSize size = item.sizeHint();
    if (size.width() <= width) {
        return size;
    }
    return {width, item.hasHeightForWidth() ? item.heightForWidth(width) : size.height()};
}

void FlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect area = rect.marginsRemoved(contentsMargins());
    int top = area.top();
    for (const Row& row : rows(area.width())) {
        int left = area.left();
        for (QLayoutItem* item : row.items) {
            const QSize size = sizeIn(*item, area.width());
            item->setGeometry({QPoint(left, top + (row.height - size.height()) / 2), size});
            left += size.width() + spacing();
        }
        top += row.height + spacing();
    }
}

} // namespace orvex
