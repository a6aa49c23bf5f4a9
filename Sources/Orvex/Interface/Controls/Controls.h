#pragma once

#include "LabelledValue.h"
#include "Theme/OrvexIcons.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QString>
#include <QVBoxLayout>

#include <optional>

namespace orvex {

/// The parts that all panels are made of. Every text is shown as it stands: what it holds is no markup and no mnemonic.
/// Main thread.
namespace controls {

/// The space between the parts of a panel, and around them, in device-independent pixels.
inline constexpr int spacing = 8;
inline constexpr int margin = 12;

/// A text for a place where an ampersand would mark a mnemonic: buttons, tabs, menus, labels with a buddy.
[[nodiscard]] QString literal(const QString& text);

/// The text of a tooltip, which would take what looks like markup for markup. It keeps its lines.
[[nodiscard]] QString toolTip(const QString& text);

/// The same font, so many times as large.
[[nodiscard]] QFont resized(const QFont& font, double factor);

// Texts. All wrap at the width they are given.

/// The name of a panel or of a part of it.
[[nodiscard]] QLabel* heading(const QString& text);

/// A text that the user has to know.
[[nodiscard]] QLabel* body(const QString& text = {});

/// A text that explains.
[[nodiscard]] QLabel* note(const QString& text = {});

/// A text that says what is wrong.
[[nodiscard]] QLabel* warning(const QString& text = {});

/// Sets a text off from the others in bold letters.
void makeStrong(QLabel& label);

/// Gives a label its text, and shows it only if there is one.
void setOptionalText(QLabel& label, const std::optional<QString>& text);

/// Gives a widget the name by which it is found.
template <typename Widget>
[[nodiscard]] Widget* named(const QString& name, Widget* widget) {
    widget->setObjectName(name);
    return widget;
}

// Controls. The name is that by which tests and the desktop's tools find it.

[[nodiscard]] QPushButton* button(const QString& name, const QString& text);
[[nodiscard]] QPushButton* button(const QString& name, const QString& text, OrvexIcons::Symbol symbol);

/// A button that shows a picture only; `label` is its name for those who hear the screen, and its help.
[[nodiscard]] QPushButton* iconButton(const QString& name, const QString& label, OrvexIcons::Symbol symbol);

/// Sets a button off from the others: the next step, or one that takes something away.
void makePrimary(QPushButton& button);
void makePrimary(QPushButton& button, OrvexIcons::Symbol symbol);
void makeDestructive(QPushButton& button);

/// A choice from a list. It is as wide as it is given, however long its entries are, and the wheel goes by over it
/// unless it has the keyboard.
[[nodiscard]] QComboBox* choiceBox(const QString& name);

/// A line to type in.
[[nodiscard]] QLineEdit* textField(const QString& name);

/// A control below its label, which is also its accessible name.
[[nodiscard]] QWidget* labelled(const QString& label, QWidget* control);

/// A link to a page on the web, which opens in the user's browser.
[[nodiscard]] QLabel* link(const QString& name, const QString& text, const QString& address);

/// A picture in a square of that many device-independent pixels, crisp on every screen. It says nothing by itself.
[[nodiscard]] QWidget* picture(const QIcon& icon, int side);

/// Leaves the wheel to the panel that scrolls, unless the keyboard is in the field: nobody changes a value by scrolling
/// past it.
void ignoreWheelUnlessFocused(QWidget& field);

/// The same for a control that the wheel never turns.
void ignoreWheel(QWidget& control);

using Choice = LabelledValue;

/// Gives a combo box its entries and its current value; changes nothing that is the same already, and announces
/// nothing.
void setChoices(QComboBox& box, const QList<Choice>& choices, const QString& current);

/// Gives a field the session's text, unless it shows it already: the cursor of someone who types stays where it is.
void setFieldText(QLineEdit& field, const QString& text);

// Arrangement

/// A column of widgets with the usual space between them and none around them.
[[nodiscard]] QVBoxLayout* column(QWidget* owner);

/// The same as a row.
[[nodiscard]] QHBoxLayout* row();

/// Lets a panel scroll up and down in whatever height it is given. The width is at least the one that it needs. The
/// part that takes the keyboard is always in view.
[[nodiscard]] QScrollArea* scrolling(QWidget* content);

} // namespace controls

/// A raised area that holds what belongs together.
class Card : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr);

    /// The column of its content.
    [[nodiscard]] QVBoxLayout& content() { return *content_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* content_;
};

} // namespace orvex
