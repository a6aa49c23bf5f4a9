#pragma once

#include "BatchSizing/BatchRollPreview.h"

#include <QDialog>
#include <QPointer>

class QPushButton;

class QLabel;

namespace orvex {

class BatchSizingModel;
class OrvexModel;

/// The panel for the print sizes of many artworks: it shows what their arrangement would save, and applies sizes and
/// arrangement in one step. It takes the session's layout as it is on construction. Window-modal; Escape and the
/// window's frame cancel, Return applies unless a control in which it has a meaning has the keyboard. Main thread.
class BatchSizingView : public QDialog {
    Q_OBJECT

public:
    /// The session must outlive it.
    explicit BatchSizingView(OrvexModel& session,
                             const BatchRollPreview::Pictures& pictures = BatchRollPreview::noPicture,
                             QWidget* parent = nullptr);

    ~BatchSizingView() override;

    [[nodiscard]] const BatchSizingModel& model() const { return *model_; }

    /// Cancels.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void build(const BatchRollPreview::Pictures& pictures);
    [[nodiscard]] QLayout* makeHeader();
    [[nodiscard]] QLayout* makeColumns(const BatchRollPreview::Pictures& pictures);
    [[nodiscard]] QLayout* makeFooter();
    void connectSignals();
    void syncFromModel();
    void calculatePreview();
    void returnFocus();
    void noteFocus(QWidget* before);

    BatchSizingModel* model_;
    QLabel* issue_;
    QPushButton* cancel_;
    QPushButton* calculate_;
    QPushButton* apply_;
    QPointer<QWidget> lastFocus_; ///< what had the keyboard before it was released
    bool isFocusAwaited_ = false; ///< the keyboard returns to the buttons when the calculation ends
};

} // namespace orvex
