#pragma once

#include "Board/RollKeyboardInput.h"
#include "Controls/WrappingCheckBox.h"
#include "Controls/WrappingLabel.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionSpinBox>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace orvex::test {

/// Measures what is shown against the room that it has. Each finding says what does not fit, and where.
class TextFit {
public:
    /// What does not fit in all that is to be seen below a widget.
    [[nodiscard]] static std::vector<std::string> findings(QWidget& root) {
        TextFit fit;
        for (QWidget* widget : root.findChildren<QWidget*>()) {
            if (widget->isVisibleTo(&root) && widget->window() == root.window()) {
                fit.measure(*widget);
                fit.findOverlaps(*widget);
                fit.findCutOff(*widget);
            }
        }
        fit.findOverlaps(root);
        return fit.findings_;
    }

    /// How many texts have been measured below a widget; a test that measures none says nothing.
    [[nodiscard]] static int texts(QWidget& root) {
        TextFit fit;
        for (QWidget* widget : root.findChildren<QWidget*>()) {
            if (widget->isVisibleTo(&root) && widget->window() == root.window()) {
                fit.measure(*widget);
            }
        }
        return fit.texts_;
    }

    /// The longest run of letters that is a word and not a name without an end.
    static constexpr qsizetype longestWord = 30;

private:
    static std::string place(const QWidget& widget) {
        QString place = widget.objectName();
        for (const QWidget* above = widget.parentWidget(); above != nullptr; above = above->parentWidget()) {
            const QString name = above->objectName();
            place = name.isEmpty() ? place : name + u'/' + place;
        }
        return place.toStdString();
    }

    void report(const QWidget& widget, const QString& text, const std::string& what) {
        findings_.push_back(place(widget) + " \"" + text.left(60).toStdString() + "\": " + what);
    }

    /// A text on one line.
    void expectWidth(const QWidget& widget, const QString& text, double room) {
        ++texts_;
        const QString shown = QString(text).replace(QStringLiteral("&&"), QStringLiteral("&"));
        const double needed = QFontMetricsF(widget.font()).horizontalAdvance(shown);
        if (needed > room + 0.5) {
            report(widget, text, "needs " + std::to_string(needed) + " of " + std::to_string(room));
        }
        const double lineHeight = QFontMetricsF(widget.font()).height();
        if (lineHeight > widget.height() + 0.5) {
            report(widget, text, "is higher than its place: " + std::to_string(widget.height()));
        }
    }

    void measure(QWidget& widget) {
        if (const auto* wrapping = qobject_cast<WrappingLabel*>(&widget)) {
            measureWrapping(*wrapping);
        } else if (const auto* label = qobject_cast<QLabel*>(&widget)) {
            measureLabel(*label);
        } else if (const auto* box = qobject_cast<QComboBox*>(&widget)) {
            measureBox(*box);
        } else if (const auto* spin = qobject_cast<QSpinBox*>(&widget)) {
            QStyleOptionSpinBox option = optionOf<QSpinBox, QStyleOptionSpinBox>(*spin);
            expectWidth(*spin, spin->text(), editRoom(*spin, QStyle::CC_SpinBox, option, QStyle::SC_SpinBoxEditField));
        } else if (const auto* field = qobject_cast<QLineEdit*>(&widget)) {
            measureField(*field);
        } else if (const auto* button = qobject_cast<QAbstractButton*>(&widget)) {
            measureButton(*button);
        } else if (const auto* tabs = qobject_cast<QTabBar*>(&widget)) {
            measureTabs(*tabs);
        } else if (const auto* bar = qobject_cast<QMenuBar*>(&widget)) {
            measureBar(*bar);
        }
    }

    void measureWrapping(const WrappingLabel& label) {
        if (label.text().isEmpty()) {
            return;
        }
        ++texts_;
        if (label.heightForWidth(label.width()) > label.height()) {
            report(label, label.text(),
                   "needs a height of " + std::to_string(label.heightForWidth(label.width())) + " and has " +
                       std::to_string(label.height()));
        }
        for (const QString& word : label.text().split(QRegularExpression(QStringLiteral("\\s")))) {
            const double needed = QFontMetricsF(label.font()).horizontalAdvance(word);
            const bool isOneWord = word.size() <= longestWord && std::ranges::all_of(word, [](QChar letter) {
                                       return letter.unicode() < 0x2e80; // those behind are broken anywhere
                                   });
            if (isOneWord && needed > label.contentsRect().width() + 0.5) {
                report(label, word, "is broken inside of the word");
            }
        }
    }

    void measureLabel(const QLabel& label) {
        if (label.text().isEmpty()) {
            return;
        }
        ++texts_;
        const QSize needed = label.sizeHint();
        if (needed.width() > label.width() || needed.height() > label.height()) {
            report(label, label.text(), "is cut off");
        }
    }

    template <typename Widget, typename Option>
    [[nodiscard]] static Option optionOf(const Widget& widget) {
        struct Peek : Widget {
            using Widget::initStyleOption;
        };

        Option option;
        (widget.*(&Peek::initStyleOption))(&option);
        return option;
    }

    template <typename Option>
    [[nodiscard]] static double editRoom(const QWidget& widget, QStyle::ComplexControl control, const Option& option,
                                         QStyle::SubControl part) {
        constexpr double inset = 2.0; // that fields keep on either side of a text
        return widget.style()->subControlRect(control, &option, part, &widget).width() - 2.0 * inset;
    }

    void measureBox(const QComboBox& box) {
        const auto option = optionOf<QComboBox, QStyleOptionComboBox>(box);
        const double room = editRoom(box, QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField);
        for (int index = 0; index < box.count(); ++index) {
            expectWidth(box, box.itemText(index), room);
        }
    }

    void measureField(const QLineEdit& field) {
        constexpr double around = 8.0; // the frame and the room for the cursor on both sides
        expectWidth(field, field.placeholderText(), field.width() - around);
        if (field.text().size() <= 12) { // a number; what is longer scrolls with the cursor
            expectWidth(field, field.text(), field.width() - around);
        }
    }

    void measureButton(const QAbstractButton& button) {
        if (button.text().isEmpty()) {
            return;
        }
        const double icon = button.icon().isNull() ? 0.0 : button.iconSize().width() + 4.0;
        const auto contents = [&button](QStyle::SubElement element) {
            QStyleOptionButton option;
            option.initFrom(&button);
            option.text = button.text();
            option.icon = button.icon();
            option.iconSize = button.iconSize();
            return static_cast<double>(button.style()->subElementRect(element, &option, &button).width());
        };
        if (const auto* push = qobject_cast<const QPushButton*>(&button)) {
            const double arrow =
                push->menu() == nullptr ? 0.0 : push->style()->pixelMetric(QStyle::PM_MenuButtonIndicator);
            expectWidth(button, button.text(), contents(QStyle::SE_PushButtonContents) - icon - arrow);
        } else if (qobject_cast<const QCheckBox*>(&button) != nullptr) {
            expectWidth(button, button.text(), contents(QStyle::SE_CheckBoxContents) - icon);
        } else if (qobject_cast<const QRadioButton*>(&button) != nullptr) {
            expectWidth(button, button.text(), contents(QStyle::SE_RadioButtonContents) - icon);
        } else if (button.width() < button.sizeHint().width()) {
            report(button, button.text(), "is cut off");
        }
    }

    void measureTabs(const QTabBar& tabs) {
        for (int index = 0; index < tabs.count(); ++index) {
            expectWidth(tabs, tabs.tabText(index), tabs.tabRect(index).width() - 8.0);
            if (!tabs.rect().contains(tabs.tabRect(index))) {
                report(tabs, tabs.tabText(index), "lies outside of the row of tabs");
            }
        }
    }

    void measureBar(const QMenuBar& bar) {
        for (QAction* action : bar.actions()) {
            expectWidth(bar, action->text(), bar.actionGeometry(action).width());
            if (!bar.rect().contains(bar.actionGeometry(action))) {
                report(bar, action->text(), "lies outside of the menu bar");
            }
        }
    }

    /// The parts of a canvas lie above each other as they should.
    [[nodiscard]] static bool mayOverlap(const QWidget& widget) {
        return qobject_cast<const RollKeyboardResponderView*>(&widget) != nullptr ||
               widget.objectName().startsWith(QStringLiteral("qt_")) || widget.isWindow();
    }

    void findOverlaps(const QWidget& parent) {
        QList<QWidget*> shown;
        for (QObject* child : parent.children()) {
            auto* widget = qobject_cast<QWidget*>(child);
            if (widget != nullptr && widget->isVisible() && !mayOverlap(*widget) && !widget->size().isEmpty()) {
                shown.append(widget);
            }
        }
        for (qsizetype one = 0; one < shown.size(); ++one) {
            for (qsizetype other = one + 1; other < shown.size(); ++other) {
                if (shown[one]->geometry().intersects(shown[other]->geometry())) {
                    report(*shown[one], {}, "overlaps " + place(*shown[other]));
                }
            }
        }
    }

    /// What reaches out of its parent is not seen there; only what scrolls may be higher.
    void findCutOff(const QWidget& widget) {
        const QWidget* parent = widget.parentWidget();
        if (widget.isWindow() || parent == nullptr || widget.size().isEmpty()) {
            return;
        }
        const auto* area = qobject_cast<const QAbstractScrollArea*>(parent->parentWidget());
        const bool scrolls = area != nullptr && area->viewport() == parent;
        const QRect taken = widget.geometry();
        const bool isTooWide = taken.left() < 0 || taken.right() >= parent->width();
        const bool isTooHigh = !scrolls && (taken.top() < 0 || taken.bottom() >= parent->height());
        if (isTooWide || isTooHigh) {
            report(widget, {}, "reaches out of " + place(*parent));
        }
    }

    std::vector<std::string> findings_;
    int texts_ = 0;
};

} // namespace orvex::test
