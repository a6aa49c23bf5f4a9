#pragma once

#include "BatchSizing/BatchRollPreview.h"

class QCheckBox;
class QLabel;
class QProgressBar;
class QStackedWidget;

namespace orvex {

class BatchSizingModel;

/// How the artworks come to lie in their new sizes, and what canvas that saves. Main thread.
class BatchPreviewPane : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive it.
    BatchPreviewPane(BatchSizingModel& model, const BatchRollPreview::Pictures& pictures, QWidget* parent = nullptr);

    void syncFromModel();

private:
    void build(const BatchRollPreview::Pictures& pictures);
    [[nodiscard]] QWidget* makeEmptyPage();
    [[nodiscard]] QWidget* makeCalculatingPage();
    [[nodiscard]] QWidget* makeResultPage(const BatchRollPreview::Pictures& pictures);
    void showResult(const BatchArrangementPreview& preview);

    BatchSizingModel& model_;
    std::optional<BatchArrangementPreview> shown_;
    QCheckBox* rotation_;
    QStackedWidget* pages_;
    BatchRollPreview* drawing_;
    QLabel* headline_;
    QLabel* comparison_;
};

} // namespace orvex
