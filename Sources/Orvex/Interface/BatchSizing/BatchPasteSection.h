#pragma once

#include <QWidget>

class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace orvex {

class BatchSizingModel;

/// Where the print sizes of many artworks are pasted; it opens and closes. Main thread.
class BatchPasteSection : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive it.
    explicit BatchPasteSection(BatchSizingModel& model, QWidget* parent = nullptr);

    void syncFromModel();

private:
    void build();
    [[nodiscard]] QWidget* makeContent();
    void connectSignals();

    BatchSizingModel& model_;
    QToolButton* toggle_;
    QWidget* content_;
    QPlainTextEdit* editor_;
    QPushButton* fill_;
};

} // namespace orvex
