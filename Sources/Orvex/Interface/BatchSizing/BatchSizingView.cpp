#include "BatchSizingView.h"

#include "BatchSizing/BatchPreviewPane.h"
#include "BatchSizing/BatchSizeEntry.h"
#include "BatchSizingModel.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QToolButton>

namespace orvex {

namespace {

constexpr QSize smallestSize{900, 620};
constexpr QSize idealSize{1000, 710};

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// The focused button, if it is one that does something when it is pressed.
QAbstractButton* pressable(QWidget* focused) {
    if (auto* button = qobject_cast<QPushButton*>(focused)) {
        return button;
    }
    return qobject_cast<QToolButton*>(focused);
}

} // namespace

BatchSizingView::BatchSizingView(OrvexModel& session, const BatchRollPreview::Pictures& pictures, QWidget* parent)
    : QDialog(parent),
      model_(new BatchSizingModel(session, this)) {
    setObjectName(QStringLiteral("batchSizingView"));
    setWindowModality(Qt::WindowModal);
    setWindowTitle(spt("批量尺寸与省布排版", "Batch Sizes & Canvas Optimization"));
    setMinimumSize(smallestSize);
    resize(idealSize);
    build(pictures);
    connectSignals();
    syncFromModel();
}

/// The keyboard leaves while all that listens to it is there.
BatchSizingView::~BatchSizingView() {
    hide();
}

void BatchSizingView::build(const BatchRollPreview::Pictures& pictures) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    column->setSpacing(controls::spacing);
    column->addLayout(makeHeader());
    column->addLayout(makeColumns(pictures), 1);
    column->addLayout(makeFooter());
}

QLayout* BatchSizingView::makeHeader() {
    auto* header = new QVBoxLayout;
    header->setSpacing(2);
    header->addWidget(controls::heading(windowTitle()));
    header->addWidget(controls::note(
        spt("作品尺寸不含白边。宽和高都取最接近的等比 0.25 英寸尺寸，不会变形。按回车键或离开输入框即可确认。",
            "Artwork sizes exclude borders. Both dimensions use the nearest proportional quarter-inch size without "
            "distortion. Press Return or leave the field to confirm.")));
    return header;
}

QLayout* BatchSizingView::makeColumns(const BatchRollPreview::Pictures& pictures) {
    auto* columns = new QHBoxLayout;
    columns->setSpacing(controls::margin);
    columns->addWidget(new BatchSizeEntry(*model_), 3);
    columns->addWidget(new BatchPreviewPane(*model_, pictures), 2);
    return columns;
}

QLayout* BatchSizingView::makeFooter() {
    issue_ = controls::warning();
    issue_->setObjectName(QStringLiteral("batchIssueLabel"));
    cancel_ = controls::button(QStringLiteral("batchCancelButton"), spt("取消", "Cancel"));
    calculate_ = controls::button(QStringLiteral("batchCalculateButton"), spt("计算预览", "Calculate Preview"));
    apply_ = controls::button(QStringLiteral("batchApplyButton"), spt("应用尺寸与排版", "Apply Sizes & Layout"));
    apply_->setDefault(true);
    apply_->installEventFilter(this);
    controls::makePrimary(*apply_);
    QHBoxLayout* buttons = controls::row();
    buttons->addWidget(controls::note(spt("预览不会改动作品。应用后可一步撤销。",
                                          "Preview leaves your artwork unchanged. Apply, then undo in one step.")),
                       1);
    buttons->addWidget(cancel_);
    buttons->addWidget(calculate_);
    buttons->addWidget(apply_);
    auto* footer = new QVBoxLayout;
    footer->setSpacing(controls::spacing);
    footer->addWidget(issue_);
    footer->addLayout(buttons);
    return footer;
}

void BatchSizingView::connectSignals() {
    connect(model_, &BatchSizingModel::changed, this, &BatchSizingView::syncFromModel);
    connect(model_, &BatchSizingModel::closed, this, [this] { QDialog::done(QDialog::Accepted); });
    connect(cancel_, &QPushButton::clicked, model_, &BatchSizingModel::cancel);
    connect(calculate_, &QPushButton::clicked, this, &BatchSizingView::calculatePreview);
    connect(apply_, &QPushButton::clicked, model_, &BatchSizingModel::apply);
    connect(qApp, &QApplication::focusChanged, this, &BatchSizingView::noteFocus);
}

void BatchSizingView::syncFromModel() {
    const QString issue = model_->issue().value_or(QString());
    issue_->setText(issue);
    issue_->setVisible(!issue.isEmpty());
    calculate_->setEnabled(model_->canCalculatePreview());
    apply_->setEnabled(model_->canApply());
    returnFocus();
}

void BatchSizingView::reject() {
    model_->cancel();
}

// The keyboard

/// A button that is disabled while it has the keyboard would hand it to any other control.
void BatchSizingView::calculatePreview() {
    if (calculate_->hasFocus()) {
        calculate_->clearFocus();
        isFocusAwaited_ = true;
    }
    model_->calculatePreview();
}

/// Once the calculation has ended, the keyboard is where the next step is, unless it was led elsewhere meanwhile.
void BatchSizingView::returnFocus() {
    if (!isFocusAwaited_ || model_->calculating()) {
        return;
    }
    isFocusAwaited_ = false;
    if (focusWidget() == nullptr) {
        (apply_->isEnabled() ? apply_ : calculate_)->setFocus(Qt::OtherFocusReason);
    }
}

void BatchSizingView::noteFocus(QWidget* before) {
    if (before != nullptr && isAncestorOf(before) && focusWidget() == nullptr) {
        lastFocus_ = before;
    }
}

/// Tab goes on from where the keyboard was released.
bool BatchSizingView::focusNextPrevChild(bool next) {
    if (focusWidget() == nullptr && lastFocus_ != nullptr && lastFocus_->isEnabled()) {
        lastFocus_->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        if (!next) {
            return true;
        }
    }
    return QDialog::focusNextPrevChild(next);
}

/// Return presses the button that has the keyboard, and else the default one. Held down it presses nothing, for the
/// button that comes next would be pressed as well.
void BatchSizingView::keyPressEvent(QKeyEvent* event) {
    if (!isReturn(*event)) {
        QDialog::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat()) {
        return;
    }
    if (QAbstractButton* const focused = pressable(focusWidget())) {
        focused->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

/// The default button takes Return itself; there, too, it counts once.
bool BatchSizingView::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        return isReturn(key) && key.isAutoRepeat();
    }
    return QDialog::eventFilter(object, event);
}

} // namespace orvex
