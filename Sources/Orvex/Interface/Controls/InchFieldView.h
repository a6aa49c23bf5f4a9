#pragma once

#include "RollInchField.h"

#include <QLineEdit>
#include <QWidget>

#include <memory>

namespace orvex {

/// Whether the keyboard only goes to another window or a menu, and comes back: for a field that is no leaving.
[[nodiscard]] bool isAwayForAWhile(Qt::FocusReason reason);

/// A field that gives up its text when it is told to, not only when the keyboard leaves it. Main thread.
class CommittingField : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    /// Gives what was typed to whom it belongs.
    virtual void commitEditing() = 0;

    /// The same for the field that has the keyboard of a window, if one has.
    static void commitEditingIn(const QWidget& window);
};

/// A number of the roll with its label and unit: what is typed counts on Return and on leaving the field. The window
/// losing the keyboard is no leaving. Main thread.
class InchFieldView : public QWidget {
    Q_OBJECT

public:
    struct Look {
        QString name;  ///< of the field, for tests
        QString label; ///< also its accessible name
        QString unit;
        bool artworkSize = false; ///< shown as the size of an artwork
    };

    InchFieldView(const Look& look, RollInchField::Binding value, QWidget* parent = nullptr);
    ~InchFieldView() override;

    /// Stands for another number from now on; what was typed for the old one is given to it first.
    void rebind(RollInchField::Binding value);

    /// Shows the session's number if that has changed.
    void syncFromSession();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    class Field;

    Field* field_;
};

} // namespace orvex
