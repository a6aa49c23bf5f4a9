#pragma once

#include <QList>
#include <QScrollArea>

namespace orvex {

class BatchSizeRow;
class BatchSizingModel;

/// The scrolling table of print sizes. Only the rows in view and near it have controls; the first and the last have
/// them, too, so that the keyboard enters the table from both sides. Main thread.
class BatchSizeList : public QScrollArea {
    Q_OBJECT

public:
    /// The model must outlive it.
    explicit BatchSizeList(BatchSizingModel& model, QWidget* parent = nullptr);

    /// Shows the rows that have changed.
    void syncFromModel();

    /// Little: it takes the room that the rest of the panel leaves.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void build(BatchSizingModel& model);
    void showControl(const QWidget& control);
    void makeVisibleControls();
    void makeControls(qsizetype index);
    [[nodiscard]] QWidget* controlBefore(qsizetype index) const;
    [[nodiscard]] qsizetype firstRowBelow(int y) const;

    QList<BatchSizeRow*> rows_;
};

} // namespace orvex
