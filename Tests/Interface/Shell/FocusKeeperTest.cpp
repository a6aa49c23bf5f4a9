#include "Shell/FocusKeeper.h"

#include "WindowTest.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvex::test {

namespace {

/// A window with four buttons below each other; the first has the keyboard.
class FocusKeeperTest : public ::testing::Test {
protected:
    QWidget window;
    QList<QPushButton*> buttons;

    FocusKeeperTest() {
        auto* column = new QVBoxLayout(&window);
        for (const char* name : {"first", "second", "third", "last"}) {
            auto* button = new QPushButton(QString::fromLatin1(name));
            button->setObjectName(QString::fromLatin1(name));
            column->addWidget(button);
            buttons.append(button);
        }
        new FocusKeeper(window);
        window.show();
        activate(window);
        buttons[0]->setFocus();
        turn();
    }

    static void activate(QWidget& which) {
        QApplication::setActiveWindow(&which);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&which));
    }

    static void turn() {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    void enable(bool enabled, const QList<int>& which) const {
        for (const int each : which) {
            buttons[each]->setEnabled(enabled);
        }
        turn();
    }

    [[nodiscard]] std::string focused() const {
        const QWidget* widget = window.focusWidget();
        return widget != nullptr ? widget->objectName().toStdString() : "(none)";
    }
};

} // namespace

TEST_F(FocusKeeperTest, AControlThatWasDisabledGetsTheKeyboardBack) {
    enable(false, {0});
    EXPECT_EQ(focused(), "second");
    enable(true, {0});
    EXPECT_EQ(focused(), "first");
}

TEST_F(FocusKeeperTest, AlsoIfThoseBehindItWereDisabledAfterIt) {
    enable(false, {0, 1, 2});
    EXPECT_EQ(focused(), "last");
    enable(true, {2, 1, 0});
    EXPECT_EQ(focused(), "first");
}

TEST_F(FocusKeeperTest, AlsoIfNoOtherCouldTakeIt) {
    enable(false, {0, 1, 2, 3});
    enable(true, {3, 2, 1, 0});
    EXPECT_EQ(focused(), "first");
}

TEST_F(FocusKeeperTest, TheKeyboardStaysWhereTheUserLedIt) {
    enable(false, {0});
    buttons[2]->setFocus();
    enable(true, {0});
    EXPECT_EQ(focused(), "third");
}

TEST_F(FocusKeeperTest, AlsoIfTheUserLedItAwayAndBack) {
    enable(false, {0});
    buttons[2]->setFocus();
    buttons[1]->setFocus();
    enable(true, {0});
    EXPECT_EQ(focused(), "second");
}

TEST_F(FocusKeeperTest, AHiddenControlDoesNotGetIt) {
    enable(false, {0});
    buttons[0]->hide();
    enable(true, {0});
    EXPECT_EQ(focused(), "second");
}

TEST_F(FocusKeeperTest, AControlThatIsGoneIsForgotten) {
    enable(false, {0});
    delete buttons[0];
    turn();
    EXPECT_EQ(focused(), "second");
    buttons[1]->setEnabled(false);
    turn();
    EXPECT_EQ(focused(), "third");
    buttons[1]->setEnabled(true);
    turn();
    EXPECT_EQ(focused(), "second");
}

TEST_F(FocusKeeperTest, OneThatIsDisabledAgainAtOnceWaitsOn) {
    enable(false, {0});
    buttons[0]->setEnabled(true);
    buttons[0]->setEnabled(false);
    turn();
    EXPECT_EQ(focused(), "second");
    enable(true, {0});
    EXPECT_EQ(focused(), "first");
}

TEST_F(FocusKeeperTest, ADialogMeanwhileChangesNothing) {
    enable(false, {0});
    QWidget dialog;
    auto* field = new QLineEdit(&dialog);
    dialog.show();
    activate(dialog);
    field->setFocus();
    turn();
    enable(true, {0});
    EXPECT_EQ(focused(), "first");
    EXPECT_EQ(QApplication::focusWidget(), field);
    dialog.close();
    activate(window);
    EXPECT_EQ(QApplication::focusWidget(), buttons[0]);
}

using WindowFocusTest = WindowTest;

TEST_F(WindowFocusTest, ACommandsButtonHasTheKeyboardAgainAfterItsWork) {
    startWith(1);
    open();
    auto* add = find<QPushButton>("addArtworksButton");
    add->setFocus();
    {
        const HeldBusy busy(*model);
        turn();
        EXPECT_NE(window->focusWidget(), add);
    }
    turn();
    EXPECT_EQ(window->focusWidget(), add);
}

TEST_F(WindowFocusTest, AFieldThatIsDisabledWithItsPartGetsTheKeyboardBack) {
    startWith(1);
    open();
    auto* field = find<QLineEdit>("rollWidthField");
    field->setFocus();
    {
        const HeldBusy busy(*model);
        turn();
        EXPECT_FALSE(field->isEnabled());
    }
    turn();
    EXPECT_EQ(window->focusWidget(), field);
}

} // namespace orvex::test
