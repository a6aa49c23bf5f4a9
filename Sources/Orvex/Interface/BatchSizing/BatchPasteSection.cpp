#include "BatchPasteSection.h"

#include "BatchSizingModel.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <QPlainTextEdit>
#include <QToolButton>

namespace orvex {

namespace {

constexpr int editorLines = 4;

} // namespace

BatchPasteSection::BatchPasteSection(BatchSizingModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    build();
    connectSignals();
    syncFromModel();
}

void BatchPasteSection::build() {
    const QString title = spt("粘贴多个尺寸", "Paste Multiple Sizes");
    toggle_ = new QToolButton;
    toggle_->setObjectName(QStringLiteral("batchPasteToggle"));
    toggle_->setText(title);
    toggle_->setAccessibleName(title);
    toggle_->setCheckable(true);
    toggle_->setAutoRaise(true);
    toggle_->setFocusPolicy(Qt::StrongFocus);
    toggle_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    content_ = makeContent();
    QVBoxLayout* column = controls::column(this);
    column->addWidget(toggle_, 0, Qt::AlignLeft);
    column->addWidget(content_);
}

QWidget* BatchPasteSection::makeContent() {
    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("batchPasteContent"));
    editor_ = new QPlainTextEdit;
    editor_->setObjectName(QStringLiteral("batchPasteEditor"));
    editor_->setAccessibleName(spt("粘贴作品尺寸", "Paste artwork sizes"));
    editor_->setTabChangesFocus(true);
    editor_->setFixedHeight(editorLines * editor_->fontMetrics().lineSpacing() + 2 * controls::spacing);
    editor_->setPlainText(model_.pastedSizes());
    fill_ = controls::button(QStringLiteral("batchPasteFillButton"),
                             spt("将粘贴的尺寸填入已选作品", "Fill Selected from Pasted Sizes"));
    QVBoxLayout* column = controls::column(content);
    column->addWidget(controls::note(
        spt("每行输入一组宽 × 高，例如 24 × 16，顺序与已选作品一致。也可以粘贴两列数据。尺寸必须符合各原图的宽高比。",
            "Enter width × height on each line, such as 24 × 16, in the selected artwork order. You can paste two "
            "columns. Sizes must match each original’s aspect ratio.")));
    column->addWidget(editor_);
    column->addWidget(fill_, 0, Qt::AlignLeft);
    return content;
}

void BatchPasteSection::connectSignals() {
    connect(&model_, &BatchSizingModel::changed, this, &BatchPasteSection::syncFromModel);
    connect(toggle_, &QToolButton::clicked, this, [this](bool checked) { model_.setPasteExpanded(checked); });
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] { model_.setPastedSizes(editor_->toPlainText()); });
    connect(fill_, &QPushButton::clicked, this, [this] { model_.fillPastedSizes(); });
}

/// The pasted text itself comes from the editor alone.
void BatchPasteSection::syncFromModel() {
    toggle_->setChecked(model_.pasteExpanded());
    toggle_->setArrowType(model_.pasteExpanded() ? Qt::DownArrow : Qt::RightArrow);
    content_->setVisible(model_.pasteExpanded());
}

} // namespace orvex
