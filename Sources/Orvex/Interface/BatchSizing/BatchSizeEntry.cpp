#include "BatchSizeEntry.h"

#include "BatchSizing/BatchField.h"
#include "BatchSizing/BatchPasteSection.h"
#include "BatchSizing/BatchSizeList.h"
#include "BatchSizing/BatchSizeRow.h"
#include "BatchSizingModel.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"

#include <QRadioButton>
#include <QScrollBar>

namespace orvex {

namespace {

QString widthName() {
    return spt("作品宽度", "Artwork width");
}

QString heightName() {
    return spt("作品高度", "Artwork height");
}

QRadioButton* choice(const char* name, const QString& text) {
    auto* button = new QRadioButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAccessibleName(text);
    return button;
}

/// A label that stays on one line.
QLabel* shortLabel(const QString& text, QWidget* control) {
    QLabel* label = controls::body(text);
    label->setWordWrap(false);
    label->setBuddy(control);
    return label;
}

QLabel* columnName(const QString& text) {
    QLabel* label = controls::note(text);
    label->setFixedWidth(BatchSizeRow::fieldWidth());
    label->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    return label;
}

} // namespace

BatchSizeEntry::BatchSizeEntry(BatchSizingModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    build();
    connectSignals();
    syncFromModel();
}

void BatchSizeEntry::build() {
    QVBoxLayout* column = controls::column(this);
    column->addWidget(makeCommonControls());
    column->addWidget(makeSelectionControls());
    column->addWidget(makeTable(), 1);
    column->addWidget(new BatchPasteSection(model_));
}

QWidget* BatchSizeEntry::makeCommonControls() {
    commonSize_ = new BatchField;
    commonSize_->setObjectName(QStringLiteral("batchCommonSizeField"));
    commonSize_->setAccessibleName(spt("统一尺寸", "Common size"));
    commonSize_->setFixedWidth(BatchSizeRow::fieldWidth());
    commonSize_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    fill_ = controls::button(QStringLiteral("batchFillButton"), spt("填入已选作品", "Fill Selected"));
    auto* card = new Card;
    card->content().addWidget(makeDimensionPicker());
    QHBoxLayout* size = controls::row();
    size->addWidget(shortLabel(commonSize_->accessibleName(), commonSize_));
    size->addWidget(commonSize_);
    size->addWidget(fill_);
    size->addStretch(1);
    card->content().addLayout(size);
    return card;
}

QWidget* BatchSizeEntry::makeDimensionPicker() {
    auto* picker = new QWidget;
    picker->setObjectName(QStringLiteral("batchDimensionPicker"));
    picker->setAccessibleName(spt("设定哪一边", "Set dimension"));
    widthChoice_ = choice("batchWidthChoice", widthName());
    heightChoice_ = choice("batchHeightChoice", heightName());
    QHBoxLayout* row = controls::row();
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(shortLabel(picker->accessibleName(), widthChoice_));
    row->addWidget(widthChoice_);
    row->addWidget(heightChoice_);
    row->addStretch(1);
    picker->setLayout(row);
    return picker;
}

QWidget* BatchSizeEntry::makeSelectionControls() {
    auto* controlsRow = new QWidget;
    selectAll_ = controls::button(QStringLiteral("batchSelectAllButton"), spt("全选", "Select All"));
    deselectAll_ = controls::button(QStringLiteral("batchDeselectAllButton"), spt("全不选", "Deselect All"));
    selection_ = controls::note();
    selection_->setObjectName(QStringLiteral("batchSelectionLabel"));
    QHBoxLayout* row = controls::row();
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(selectAll_);
    row->addWidget(deselectAll_);
    row->addWidget(selection_, 1);
    controlsRow->setLayout(row);
    return controlsRow;
}

QWidget* BatchSizeEntry::makeTable() {
    rows_ = new BatchSizeList(model_);
    QHBoxLayout* names = controls::row();
    names->setContentsMargins(0, 0, controls::margin / 2 + rows_->verticalScrollBar()->sizeHint().width(), 0);
    names->addStretch(1);
    names->addWidget(columnName(widthName()));
    names->addWidget(columnName(heightName()));
    auto* card = new Card;
    card->content().setSpacing(2);
    card->content().addLayout(names);
    card->content().addWidget(rows_, 1);
    return card;
}

void BatchSizeEntry::connectSignals() {
    connect(&model_, &BatchSizingModel::changed, this, &BatchSizeEntry::syncFromModel);
    connect(widthChoice_, &QRadioButton::clicked, this, [this] { model_.setDimension(BatchDimension::width); });
    connect(heightChoice_, &QRadioButton::clicked, this, [this] { model_.setDimension(BatchDimension::height); });
    connect(commonSize_, &QLineEdit::textEdited, this, [this](const QString& text) { model_.setCommonSize(text); });
    connect(commonSize_, &BatchField::entered, this, [this] { model_.fillCommonSize(); });
    connect(fill_, &QPushButton::clicked, this, [this] { model_.fillCommonSize(); });
    connect(selectAll_, &QPushButton::clicked, this, [this] { model_.selectAll(); });
    connect(deselectAll_, &QPushButton::clicked, this, [this] { model_.deselectAll(); });
}

void BatchSizeEntry::syncFromModel() {
    widthChoice_->setChecked(model_.dimension() == BatchDimension::width);
    heightChoice_->setChecked(model_.dimension() == BatchDimension::height);
    controls::setFieldText(*commonSize_, model_.commonSize());
    selection_->setText(model_.selectionText());
    rows_->syncFromModel();
}

} // namespace orvex
