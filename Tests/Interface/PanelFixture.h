#pragma once

#include "CanvasTest.h"
#include "PrinterFixtures.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

#include <memory>

namespace orvex::test {

/// A panel that is shown over a session with artworks on its canvas.
template <typename Panel>
class CanvasPanelTest : public CanvasTest {
protected:
    std::unique_ptr<Panel> panel;

    ~CanvasPanelTest() override { panel.reset(); } // before the session

    /// Shows the panel, in place of one that is there; it gets the keyboard.
    void open() {
        panel = std::make_unique<Panel>(*model);
        panel->show();
        QApplication::setActiveWindow(panel.get());
    }

    /// Starts a session with this many artworks, and shows the panel.
    void openWith(int count) {
        panel.reset();
        if (count == 0) {
            start();
        } else {
            startWith(count);
        }
        open();
    }

    /// Puts a field of the session into a state, and waits until that is announced.
    template <typename Value>
    void put(Observed<Value>& field, Value value) {
        SessionBackdoor::set(field, std::move(value));
        announced();
    }

    static void announced() { QCoreApplication::processEvents(); }

    template <typename Widget = QWidget>
    [[nodiscard]] Widget& find(const char* name) const {
        auto* found = panel->template findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            throw std::runtime_error(std::string("there is no ") + name);
        }
        return *found;
    }

    [[nodiscard]] bool isEnabled(const char* name) const { return find(name).isEnabled(); }

    [[nodiscard]] bool isShown(const char* name) const { return find(name).isVisible(); }

    /// What a button, a label or a field shows.
    [[nodiscard]] QString textOf(const char* name) const { return find(name).property("text").toString(); }

    /// Whether a label with exactly this text is to be seen.
    [[nodiscard]] bool shows(const char* text) const {
        const auto labels = panel->template findChildren<QLabel*>();
        return std::ranges::any_of(labels, [text](const QLabel* label) {
            return label->isVisible() && label->text() == QString::fromUtf8(text);
        });
    }

    void click(const char* name) {
        QTest::mouseClick(&find(name), Qt::LeftButton);
        announced();
    }

    /// Types a text in place of the one that is there.
    void type(const char* name, const QString& text) {
        auto& field = find<QLineEdit>(name);
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
        announced();
    }

    /// The same, and then Return.
    void enter(const char* name, const QString& text) {
        type(name, text);
        QTest::keyClick(&find(name), Qt::Key_Return);
        announced();
    }

    /// The named widgets in the order in which Tab reaches them.
    [[nodiscard]] QStringList tabOrder() const {
        QStringList names;
        for (QWidget* each = panel->nextInFocusChain(); each != panel.get(); each = each->nextInFocusChain()) {
            const bool isReached = each->isVisible() && (each->focusPolicy() & Qt::TabFocus) != 0;
            if (isReached) {
                names.append(each->objectName());
            }
        }
        return names;
    }

    /// Chooses the entry of a combo box by the keyboard.
    void choose(const char* name, const QString& entry) {
        auto& box = find<QComboBox>(name);
        const int row = box.findText(entry);
        ASSERT_GE(row, 0) << "there is no such entry";
        box.setFocus();
        const int steps = row - box.currentIndex();
        for (int step = 0; step < std::abs(steps); ++step) {
            QTest::keyClick(&box, steps > 0 ? Qt::Key_Down : Qt::Key_Up);
        }
        announced();
    }

    [[nodiscard]] QStringList entriesOf(const char* name) const {
        const auto& box = find<QComboBox>(name);
        QStringList entries;
        for (int row = 0; row < box.count(); ++row) {
            entries.append(box.itemText(row));
        }
        return entries;
    }
};

} // namespace orvex::test
