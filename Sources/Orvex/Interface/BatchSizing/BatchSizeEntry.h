#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QRadioButton;

namespace orvex {

class BatchField;
class BatchSizeList;
class BatchSizingModel;

/// Where print sizes are entered: one for all, one for each, or many pasted. Main thread.
class BatchSizeEntry : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive it.
    explicit BatchSizeEntry(BatchSizingModel& model, QWidget* parent = nullptr);

    void syncFromModel();

private:
    void build();
    [[nodiscard]] QWidget* makeCommonControls();
    [[nodiscard]] QWidget* makeDimensionPicker();
    [[nodiscard]] QWidget* makeSelectionControls();
    [[nodiscard]] QWidget* makeTable();
    void connectSignals();

    BatchSizingModel& model_;
    QRadioButton* widthChoice_;
    QRadioButton* heightChoice_;
    BatchField* commonSize_;
    QPushButton* fill_;
    QPushButton* selectAll_;
    QPushButton* deselectAll_;
    QLabel* selection_;
    BatchSizeList* rows_;
};

} // namespace orvex
