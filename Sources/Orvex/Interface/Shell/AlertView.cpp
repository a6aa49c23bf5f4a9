#include "AlertView.h"

#include "Controls/Controls.h"
#include "Controls/WrappedText.h"
#include "OrvexLanguage.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr int pictureSide = 48;
constexpr int messageWidth = 440;
constexpr int mostMessageHeight = 260;

QPlainTextEdit* messageField() {
    auto* field = controls::named(QStringLiteral("alertMessage"), new QPlainTextEdit);
    field->setReadOnly(true);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    field->setTabChangesFocus(true);
    field->document()->setDocumentMargin(0.0); // the message begins below the first letter of the title
    field->setFrameShape(QFrame::NoFrame);
    field->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    field->setFixedWidth(messageWidth);
    field->setAccessibleName(spt("说明", "Message"));
    QPalette ground = field->palette();
    ground.setColor(QPalette::Base, Qt::transparent);
    field->setPalette(ground);
    return field;
}

/// As high as the text in the field's width, up to a height from which on it scrolls.
int heightOf(const QPlainTextEdit& field) {
    const double around = 2.0 * field.document()->documentMargin();
    const double width = messageWidth - around - field.verticalScrollBar()->sizeHint().width();
    const double height = WrappedText(field.toPlainText(), field.font(), width, &field).height() + around;
    return std::min(static_cast<int>(std::ceil(height)) + 1, mostMessageHeight);
}

} // namespace

AlertView::AlertView(const QString& message, QWidget* parent) : QDialog(parent), field_(messageField()) {
    setObjectName(QStringLiteral("alert"));
    setWindowModality(Qt::WindowModal);
    setWindowTitle(spt("无法完成操作", "Could not complete action"));
    build();
    setMessage(message);
}

void AlertView::build() {
    auto* close = controls::button(QStringLiteral("alertCloseButton"), spt("好", "OK"));
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(controls::spacing);
    texts->addWidget(controls::heading(windowTitle()));
    texts->addWidget(field_);
    auto* content = controls::row();
    content->setSpacing(controls::margin);
    content->addWidget(controls::picture(style()->standardIcon(QStyle::SP_MessageBoxWarning), pictureSide), 0,
                       Qt::AlignTop);
    content->addLayout(texts);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(controls::margin, controls::margin, controls::margin, controls::margin);
    column->setSpacing(controls::margin);
    column->addLayout(content);
    column->addWidget(close, 0, Qt::AlignRight);
    column->setSizeConstraint(QLayout::SetFixedSize);
    close->setFocus();
}

/// Return closes the alert from the message, too. A held one has opened it.
void AlertView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) {
        QDialog::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        accept();
    }
}

/// The description is what is read aloud when the alert opens.
void AlertView::setMessage(const QString& message) {
    message_ = message;
    field_->setPlainText(message);
    field_->setFixedHeight(heightOf(*field_));
    setAccessibleDescription(message);
}

} // namespace orvex
