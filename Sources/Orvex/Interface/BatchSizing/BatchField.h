#pragma once

#include <QLineEdit>

namespace orvex {

/// A field of a dialog in which Return belongs to the field, not to the dialog's default button. The window losing the
/// keyboard is no leaving. Main thread.
class BatchField : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

Q_SIGNALS:
    /// Return was pressed.
    void entered();

    void focusGained();
    void focusLost();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace orvex
