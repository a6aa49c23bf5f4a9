#pragma once

#include "BatchSizingModel.h"

#include <QWidget>

class QCheckBox;
class QGridLayout;

class QLabel;

namespace orvex {

class BatchField;

/// One artwork in the table of print sizes. It begins with its texts alone, in the space of the whole row; its controls
/// are made when it is about to be seen, for a table may have hundreds of rows. Main thread.
class BatchSizeRow : public QWidget {
    Q_OBJECT

public:
    /// Of a size's field: 100 points, or more where the desktop's letters are so large that its placeholder needs it.
    [[nodiscard]] static int fieldWidth();

    /// The row at that place of the model, which must outlive it.
    BatchSizeRow(BatchSizingModel& model, qsizetype index, QWidget* parent = nullptr);

    /// Shows the model's row if it has changed.
    void syncFromModel();

    [[nodiscard]] bool hasControls() const { return tick_ != nullptr; }

    void makeControls();

    /// The controls in the order of reading; empty until they are made.
    [[nodiscard]] QList<QWidget*> controls() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] const BatchSizeDraft& draft() const;
    [[nodiscard]] QString named(const char* part) const;
    void build();
    void buildTick();
    [[nodiscard]] BatchField* makeField(BatchDimension dimension, const char* name);
    void connectField(BatchField& field, BatchDimension dimension);
    void showTexts();
    void showControls();

    BatchSizingModel& model_;
    const qsizetype index_;
    BatchSizeDraft shown_;
    QGridLayout* grid_;
    QLabel* title_;
    QLabel* issue_;
    QCheckBox* tick_ = nullptr;
    BatchField* width_ = nullptr;
    BatchField* height_ = nullptr;
};

} // namespace orvex
