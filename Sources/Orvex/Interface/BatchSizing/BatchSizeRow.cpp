#include "BatchSizeRow.h"

#include "BatchSizing/BatchField.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace orvex {

namespace {

enum Column { tickColumn, titleColumn, widthColumn, heightColumn };

constexpr int tickRoom = 24; ///< of a tick box without a text
constexpr int inset = 6;
constexpr int usualFieldWidth = 100;
constexpr double leastFontFactor = 0.85; ///< of the fields; from there on they grow
constexpr int aroundPlaceholder = 10;    ///< the field's frame, and the room beside a text

int fieldHeight() {
    static const int height = QLineEdit().sizeHint().height();
    return height;
}

QString widthName() {
    return spt("作品宽度", "Artwork width");
}

QString heightName() {
    return spt("作品高度", "Artwork height");
}

int widthOfPlaceholders(const QFont& font) {
    const QFontMetrics letters(font);
    return std::max(letters.horizontalAdvance(widthName()), letters.horizontalAdvance(heightName()));
}

/// Somewhat smaller than usual where the placeholders need it.
QFont fieldFont() {
    const QFont usual = QApplication::font("QLineEdit");
    const double factor = static_cast<double>(usualFieldWidth - aroundPlaceholder) / widthOfPlaceholders(usual);
    return factor < 1.0 ? controls::resized(usual, std::max(factor, leastFontFactor)) : usual;
}

QString sizingHelp() {
    return spt("宽和高都取最接近的等比 0.25 英寸尺寸。可用的尺寸间隔由原图的宽高比决定。",
               "Both dimensions use the nearest proportional 0.25-inch size. The original aspect ratio determines the "
               "valid size increments.");
}

} // namespace

int BatchSizeRow::fieldWidth() {
    return std::max(usualFieldWidth, widthOfPlaceholders(fieldFont()) + aroundPlaceholder);
}

BatchSizeRow::BatchSizeRow(BatchSizingModel& model, qsizetype index, QWidget* parent)
    : QWidget(parent),
      model_(model),
      index_(index),
      shown_(draft()),
      grid_(new QGridLayout(this)),
      title_(controls::body()),
      issue_(controls::warning()) {
    setObjectName(named("batchRow"));
    build();
    showTexts();
}

const BatchSizeDraft& BatchSizeRow::draft() const {
    return model_.rows().at(index_);
}

QString BatchSizeRow::named(const char* part) const {
    return QLatin1String(part) + QString::number(index_);
}

void BatchSizeRow::build() {
    title_->setObjectName(named("batchTitle"));
    issue_->setObjectName(named("batchSizingIssue"));
    grid_->setContentsMargins(inset, inset, inset, inset);
    grid_->setHorizontalSpacing(controls::spacing);
    grid_->setVerticalSpacing(2);
    grid_->setColumnMinimumWidth(tickColumn, tickRoom);
    grid_->setColumnStretch(titleColumn, 1);
    grid_->setColumnMinimumWidth(widthColumn, fieldWidth());
    grid_->setColumnMinimumWidth(heightColumn, fieldWidth());
    grid_->setRowMinimumHeight(0, fieldHeight());
    grid_->addWidget(title_, 0, titleColumn);
    grid_->addWidget(issue_, 1, titleColumn, 1, 3);
}

void BatchSizeRow::makeControls() {
    if (hasControls()) {
        return;
    }
    buildTick();
    width_ = makeField(BatchDimension::width, "batchWidthField");
    height_ = makeField(BatchDimension::height, "batchHeightField");
    width_->setPlaceholderText(widthName());
    height_->setPlaceholderText(heightName());
    tick_->setFixedHeight(fieldHeight());
    grid_->addWidget(tick_, 0, tickColumn, Qt::AlignTop);
    grid_->addWidget(width_, 0, widthColumn, Qt::AlignTop);
    grid_->addWidget(height_, 0, heightColumn, Qt::AlignTop);
    showControls();
}

void BatchSizeRow::buildTick() {
    tick_ = new QCheckBox;
    tick_->setObjectName(named("batchTick"));
    tick_->setAccessibleName(BatchSizingModel::tickLabel(draft()));
    connect(tick_, &QCheckBox::clicked, this, [this](bool checked) { model_.setEnabled(draft().item.id, checked); });
}

BatchField* BatchSizeRow::makeField(BatchDimension dimension, const char* name) {
    auto* field = new BatchField;
    field->setObjectName(named(name));
    field->setAccessibleName(BatchSizingModel::fieldLabel(draft(), dimension));
    field->setAccessibleDescription(sizingHelp());
    field->setToolTip(sizingHelp());
    field->setFont(fieldFont());
    field->setFixedWidth(fieldWidth());
    field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connectField(*field, dimension);
    return field;
}

void BatchSizeRow::connectField(BatchField& field, BatchDimension dimension) {
    const BatchFieldID id{.id = draft().item.id, .dimension = dimension};
    connect(&field, &QLineEdit::textEdited, this, [this, id](const QString& text) { model_.edit(id, text); });
    connect(&field, &BatchField::focusGained, this, [this, id] { model_.setDimensionFocus(id); });
    connect(&field, &BatchField::focusLost, this, [this, id] {
        if (model_.dimensionFocus() == id) {
            model_.setDimensionFocus(std::nullopt);
        }
    });
    connect(&field, &BatchField::entered, this, [this, id, &field] {
        model_.submit(id);
        field.clearFocus();
    });
}

QList<QWidget*> BatchSizeRow::controls() const {
    return hasControls() ? QList<QWidget*>{tick_, width_, height_} : QList<QWidget*>();
}

void BatchSizeRow::syncFromModel() {
    if (shown_ == draft()) {
        return;
    }
    shown_ = draft();
    showTexts();
    if (hasControls()) {
        showControls();
    }
}

void BatchSizeRow::showTexts() {
    title_->setText(QString(shown_.item.title).replace(u'\n', u' '));
    issue_->setText(shown_.sizingIssue.value_or(QString()));
    issue_->setVisible(shown_.sizingIssue.has_value());
}

void BatchSizeRow::showControls() {
    tick_->setChecked(shown_.enabled);
    controls::setFieldText(*width_, shown_.widthText);
    controls::setFieldText(*height_, shown_.heightText);
}

/// A line below the row.
void BatchSizeRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(OrvexTheme::line);
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

} // namespace orvex
