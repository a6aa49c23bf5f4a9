#pragma once

#include <QDialog>

class QPlainTextEdit;

namespace orvex {

/// An alert with one message and one button. The message can be selected and copied; whatever it quotes, the alert
/// stays within the window: long names go on in further lines, and what is higher than the alert scrolls. Window-modal;
/// Return and Escape close it. Main thread.
class AlertView : public QDialog {
    Q_OBJECT

public:
    AlertView(const QString& message, QWidget* parent);

    /// Shows another message in place of the first.
    void setMessage(const QString& message);

    /// The message as it was given; the field shows some of its characters as others.
    [[nodiscard]] const QString& message() const { return message_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void build();

    QString message_;
    QPlainTextEdit* field_;
};

} // namespace orvex
