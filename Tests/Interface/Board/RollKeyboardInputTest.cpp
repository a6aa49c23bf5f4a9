#include "Board/RollKeyboardInput.h"

#include "SessionFixture.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace orvex::test {

namespace {

struct Step {
    RollNudgeDirection direction;
    bool isAccelerated;

    bool operator==(const Step&) const = default;
};

/// A window with a field and the board's responder, which has the keyboard.
class RollKeyboardInputTest : public ::testing::Test {
protected:
    QWidget window;
    QLineEdit* field = new QLineEdit;
    RollKeyboardResponderView* responder = new RollKeyboardResponderView;
    QList<Step> steps;
    int ends = 0;

    RollKeyboardInputTest() {
        auto* column = new QVBoxLayout(&window);
        column->addWidget(field);
        column->addWidget(responder);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        tell(true, 1);
        QCoreApplication::processEvents();
        EXPECT_TRUE(responder->hasFocus());
    }

    void tell(bool isEnabled, int focusRequest) {
        responder->take({.focusRequest = focusRequest,
                         .isEnabled = isEnabled,
                         .onMove =
                             [this](RollNudgeDirection direction, bool isAccelerated) {
                                 steps.append({direction, isAccelerated});
                             },
                         .onEnd = [this] { ++ends; }});
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyPress(QApplication::focusWidget(), key, modifiers);
    }

    void release(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyRelease(QApplication::focusWidget(), key, modifiers);
    }

    /// Until every release that waits for a press has waited long enough.
    static void letGraceTimePass() { QTest::qWait(RollKeyboardResponderView::releaseGraceMilliseconds + 60); }
};

} // namespace

TEST_F(RollKeyboardInputTest, EachArrowKeyIsAStepInItsDirection) {
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down}) {
        press(key);
    }
    EXPECT_EQ(steps, (QList<Step>{{RollNudgeDirection::left, false},
                                  {RollNudgeDirection::right, false},
                                  {RollNudgeDirection::up, false},
                                  {RollNudgeDirection::down, false}}));
}

TEST_F(RollKeyboardInputTest, ShiftAcceleratesAStepAndEndsNoRun) {
    press(Qt::Key_Left);
    press(Qt::Key_Shift);
    press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(steps, (QList<Step>{{RollNudgeDirection::left, false}, {RollNudgeDirection::left, true}}));
    EXPECT_EQ(ends, 0);
}

TEST_F(RollKeyboardInputTest, KeypadArrowsCount) {
    press(Qt::Key_Up, Qt::KeypadModifier);
    EXPECT_EQ(steps, (QList<Step>{{RollNudgeDirection::up, false}}));
}

TEST_F(RollKeyboardInputTest, TheRunEndsOnceWhenTheKeyIsReleased) {
    press(Qt::Key_Right);
    release(Qt::Key_Right);
    EXPECT_EQ(ends, 0);
    letGraceTimePass();
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(responder->isNudging());
    letGraceTimePass();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, AReleaseWithAPressBehindItIsARepeat) {
    press(Qt::Key_Right);
    for (int repeat = 0; repeat < 20; ++repeat) {
        release(Qt::Key_Right);
        press(Qt::Key_Right);
    }
    letGraceTimePass();
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(steps.size(), 21);
    release(Qt::Key_Right);
    letGraceTimePass();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, RepeatsThatTheSystemMarksAreSteps) {
    press(Qt::Key_Right);
    QKeyEvent up(QEvent::KeyRelease, Qt::Key_Right, Qt::NoModifier, QString(), true);
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(responder, &up);
    letGraceTimePass();
    QCoreApplication::sendEvent(responder, &down);
    EXPECT_EQ(steps.size(), 2);
    EXPECT_EQ(ends, 0);
}

TEST_F(RollKeyboardInputTest, OfTwoHeldKeysTheLastReleaseEndsTheRun) {
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    release(Qt::Key_Right);
    letGraceTimePass();
    EXPECT_EQ(ends, 0);
    release(Qt::Key_Down);
    letGraceTimePass();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, QuickTapsOfTwoKeysAreTwoRuns) {
    press(Qt::Key_Left);
    release(Qt::Key_Left);
    press(Qt::Key_Right);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(steps.size(), 2);
    release(Qt::Key_Right);
    letGraceTimePass();
    EXPECT_EQ(ends, 2);
}

TEST_F(RollKeyboardInputTest, AnotherCommandKeyEndsTheRunAndMovesNothing) {
    for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
        press(Qt::Key_Left);
        const auto moved = steps.size();
        const int ended = ends;
        press(Qt::Key_Left, modifier);
        EXPECT_EQ(steps.size(), moved);
        EXPECT_EQ(ends, ended + 1);
        release(Qt::Key_Left);
    }
}

TEST_F(RollKeyboardInputTest, AModifierOfCommandsEndsTheRunByItself) {
    press(Qt::Key_Left);
    press(Qt::Key_Control);
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, AnyOtherKeyEndsTheRun) {
    press(Qt::Key_Left);
    press(Qt::Key_A);
    EXPECT_EQ(ends, 1);
    letGraceTimePass();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, LosingTheKeyboardEndsTheRun) {
    press(Qt::Key_Left);
    field->setFocus();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, DisablingEndsTheRunAndTakesNoKeys) {
    press(Qt::Key_Left);
    tell(false, 1);
    EXPECT_EQ(ends, 1);
    press(Qt::Key_Left);
    EXPECT_EQ(steps.size(), 1);
}

TEST_F(RollKeyboardInputTest, ADialogEndsTheRun) {
    press(Qt::Key_Left);
    QDialog dialog(&window);
    dialog.open();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, ClosingTheWindowEndsTheRun) {
    press(Qt::Key_Left);
    window.close();
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, ALosingWindowEndsTheRun) {
    press(Qt::Key_Left);
    QEvent away(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&window, &away);
    EXPECT_EQ(ends, 1);
}

TEST_F(RollKeyboardInputTest, AnotherParentEndsTheRun) {
    press(Qt::Key_Left);
    QWidget other;
    responder->setParent(&other);
    EXPECT_EQ(ends, 1);
    delete responder;
}

TEST_F(RollKeyboardInputTest, GoingOutOfServiceEndsTheRunAndTakesNoKeyboardAnyMore) {
    press(Qt::Key_Left);
    responder->stop();
    EXPECT_EQ(ends, 1);
    field->setFocus();
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(RollKeyboardInputTest, AFocusRequestTakesTheKeyboardInALaterTurn) {
    field->setFocus();
    tell(true, 2);
    EXPECT_TRUE(field->hasFocus());
    QCoreApplication::processEvents();
    EXPECT_TRUE(responder->hasFocus());
}

TEST_F(RollKeyboardInputTest, TheSameRequestIsCarriedOutOnce) {
    field->setFocus();
    tell(true, 1);
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(RollKeyboardInputTest, ARequestWhileDisabledDoesNotStealFromAField) {
    field->setFocus();
    tell(false, 2);
    tell(true, 2);
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
    tell(true, 2);
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(RollKeyboardInputTest, ARequestWhileDisabledTakesTheKeyboardWhereNobodyTypes) {
    responder->clearFocus();
    tell(false, 2);
    tell(true, 2);
    QCoreApplication::processEvents();
    EXPECT_TRUE(responder->hasFocus());
}

TEST_F(RollKeyboardInputTest, ARequestOfZeroWithdrawsTheOneBefore) {
    field->setFocus();
    tell(false, 2);
    tell(false, 0);
    responder->clearFocus();
    field->clearFocus();
    tell(true, 0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(responder->hasFocus());
}

TEST_F(RollKeyboardInputTest, NoRequestIsCarriedOutBehindADialog) {
    field->setFocus();
    QDialog dialog(&window);
    dialog.open();
    tell(true, 2);
    QCoreApplication::processEvents();
    EXPECT_FALSE(responder->hasFocus());
    dialog.close();
    QApplication::setActiveWindow(&window);
    waitFor([this] { return responder->hasFocus(); });
}

TEST_F(RollKeyboardInputTest, ARequestOnAHiddenPageTakesNoKeyboard) {
    field->setFocus();
    responder->hide();
    tell(true, 2);
    QCoreApplication::processEvents();
    responder->show();
    QCoreApplication::processEvents();
    EXPECT_TRUE(field->hasFocus());
}

TEST_F(RollKeyboardInputTest, TheMouseGoesThroughIt) {
    EXPECT_TRUE(responder->testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_EQ(window.childAt(responder->geometry().center()), nullptr);
}

TEST_F(RollKeyboardInputTest, TabReachesItOnlyWhileItTakesKeys) {
    EXPECT_EQ(responder->focusPolicy(), Qt::TabFocus);
    tell(false, 1);
    EXPECT_EQ(responder->focusPolicy(), Qt::NoFocus);
}

} // namespace orvex::test
