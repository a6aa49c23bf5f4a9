#include "WrappingCheckBox.h"

#include "Controls/Controls.h"
#include "Controls/WrappingLabel.h"

#include <algorithm>

namespace orvex {

WrappingCheckBox::WrappingCheckBox(const QString& name, const QString& text, QWidget* parent)
    : QCheckBox(parent),
      label_(new WrappingLabel(text, this)) {
    setObjectName(name);
    setAccessibleName(text);
    label_->setAttribute(Qt::WA_TransparentForMouseEvents);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

/// Where the text begins: next to the mark.
int WrappingCheckBox::textLeft() const {
    return QCheckBox::sizeHint().width() + controls::spacing / 2;
}

int WrappingCheckBox::heightForWidth(int width) const {
    return std::max(QCheckBox::sizeHint().height(), label_->heightForWidth(std::max(1, width - textLeft())));
}

QSize WrappingCheckBox::sizeHint() const {
    const QSize text = label_->sizeHint();
    return {textLeft() + text.width(), std::max(QCheckBox::sizeHint().height(), text.height())};
}

QSize WrappingCheckBox::minimumSizeHint() const {
    const QSize text = label_->minimumSizeHint();
    return {textLeft() + text.width(), std::max(QCheckBox::sizeHint().height(), text.height())};
}

bool WrappingCheckBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void WrappingCheckBox::resizeEvent(QResizeEvent* event) {
    label_->setGeometry(textLeft(), 0, std::max(1, width() - textLeft()), height());
    QCheckBox::resizeEvent(event);
}

} // namespace orvex
