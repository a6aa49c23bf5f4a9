#include "BatchField.h"

#include "Controls/InchFieldView.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace orvex {

void BatchField::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    event->accept();
    Q_EMIT entered();
}

void BatchField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (!isAwayForAWhile(event->reason())) {
        Q_EMIT focusGained();
    }
}

void BatchField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (!isAwayForAWhile(event->reason())) {
        Q_EMIT focusLost();
    }
}

} // namespace orvex
