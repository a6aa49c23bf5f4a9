#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace orvex {

/// Gives the keyboard back to a control that lost it because it was disabled, such as a command's button while its
/// work is done: as soon as the control can be used again, unless the user has led the keyboard elsewhere meanwhile.
/// Main thread.
class FocusKeeper : public QObject {
    Q_OBJECT

public:
    explicit FocusKeeper(QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void noteFocus(QWidget* before, QWidget* now);
    void remember(QWidget* lost);
    void forget();
    void giveBack();

    QWidget& window_;
    QPointer<QWidget> lost_;   ///< what is to get the keyboard back
    QPointer<QWidget> holder_; ///< what has it for so long; null for nothing
};

} // namespace orvex
