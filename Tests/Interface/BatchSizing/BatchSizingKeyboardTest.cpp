#include "BatchView.h"

#include <QPlainTextEdit>

namespace orvex::test {
namespace {

class BatchSizingKeyboard : public BatchView {
protected:
    /// What Tab reaches from a control until it comes back to it.
    [[nodiscard]] std::vector<std::string> round(const char* start) {
        widget(start)->setFocus();
        std::vector<std::string> names;
        do {
            names.push_back(focusName());
            press(Qt::Key_Tab);
        } while (focusName() != start && names.size() < 100);
        return names;
    }

    /// Return as it comes while the key is held down.
    void repeatReturn() const {
        QWidget* const focused = view->focusWidget();
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
        QApplication::sendEvent(focused != nullptr ? focused : view.get(), &event);
        settleView();
    }
};

// Fields

TEST_F(BatchSizingKeyboard, confirmsAFieldByReturnAndReleasesIt) {
    openTwo();
    type("batchWidthField0", "24.1");
    EXPECT_EQ(view->model().dimensionFocus(), (BatchFieldID{test::id(1), BatchDimension::width}));
    press(Qt::Key_Return);
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
    EXPECT_EQ(focusName(), "(none)");
    EXPECT_EQ(view->model().dimensionFocus(), std::nullopt);
}

TEST_F(BatchSizingKeyboard, confirmsAFieldByTheEnterKeyOfTheNumberPad) {
    openTwo();
    type("batchHeightField0", "16.1");
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
    EXPECT_EQ(focusName(), "(none)");
}

TEST_F(BatchSizingKeyboard, confirmsAFieldThatTheKeyboardLeaves) {
    openTwo();
    type("batchWidthField0", "24.1");
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), "batchHeightField0");
    EXPECT_EQ(sizeTexts(0), "24.00 × 16.00");
    type("batchWidthField1", "12.1");
    click("batchSelectAllButton");
    EXPECT_EQ(sizeTexts(1), "12.00 × 8.00");
    EXPECT_EQ(view->model().dimensionFocus(), std::nullopt);
}

TEST_F(BatchSizingKeyboard, keepsWhatIsTypedWhileAnotherWindowHasTheKeyboard) {
    openTwo();
    type("batchWidthField0", "24.1");
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(field("batchWidthField0"), &away);
    settleView();
    EXPECT_EQ(sizeTexts(0), "24.1 × 16.00");
    EXPECT_EQ(view->model().dimensionFocus(), (BatchFieldID{test::id(1), BatchDimension::width}));
}

TEST_F(BatchSizingKeyboard, neverAppliesByReturnInAField) {
    openTwo();
    calculate();
    for (const char* name : {"batchWidthField0", "batchHeightField1", "batchCommonSizeField"}) {
        widget(name)->setFocus();
        press(Qt::Key_Return);
        EXPECT_EQ(closings, 0) << name;
    }
}

TEST_F(BatchSizingKeyboard, fillsTheTickedRowsByReturnInTheCommonField) {
    openTwo();
    type("batchCommonSizeField", "24");
    press(Qt::Key_Return);
    EXPECT_EQ(sizeTexts(1), "24.00 × 16.00");
    EXPECT_EQ(focusName(), "batchCommonSizeField");
}

TEST_F(BatchSizingKeyboard, writesLinesInTheEditorAndLeavesItByTab) {
    openTwo();
    calculate();
    click("batchPasteToggle");
    auto* const editor = part<QPlainTextEdit>("batchPasteEditor");
    editor->setFocus();
    QTest::keyClicks(editor, QStringLiteral("24"));
    press(Qt::Key_Return);
    EXPECT_EQ(view->model().pastedSizes().toStdString(), "24\n");
    EXPECT_EQ(closings, 0);
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), "batchPasteFillButton");
}

// The way through the panel

TEST_F(BatchSizingKeyboard, reachesEveryControlInTheOrderOfReading) {
    openTwo();
    click("batchPasteToggle");
    calculate();
    EXPECT_EQ(
        round("batchWidthChoice"),
        (std::vector<std::string>{"batchWidthChoice", "batchCommonSizeField", "batchFillButton", "batchSelectAllButton",
                                  "batchDeselectAllButton", "batchTick0", "batchWidthField0", "batchHeightField0",
                                  "batchTick1", "batchWidthField1", "batchHeightField1", "batchPasteToggle",
                                  "batchPasteEditor", "batchPasteFillButton", "batchRotationSwitch",
                                  "batchCancelButton", "batchCalculateButton", "batchApplyButton"}));
}

TEST_F(BatchSizingKeyboard, choosesTheDimensionByArrows) {
    openTwo();
    widget("batchWidthChoice")->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(view->model().dimension(), BatchDimension::height);
    press(Qt::Key_Left);
    EXPECT_EQ(view->model().dimension(), BatchDimension::width);
}

TEST_F(BatchSizingKeyboard, goesOnFromTheFieldThatReturnReleased) {
    openTwo();
    type("batchWidthField1", "24");
    press(Qt::Key_Return);
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), "batchHeightField1");
    press(Qt::Key_Return);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focusName(), "batchHeightField1");
}

TEST_F(BatchSizingKeyboard, leadsFromTheSizesToTheAppliedLayout) {
    openTwo();
    widget("batchWidthField0")->setFocus();
    field("batchWidthField0")->selectAll();
    QTest::keyClicks(field("batchWidthField0"), QStringLiteral("24"));
    while (focusName() != "batchCalculateButton") {
        press(Qt::Key_Tab);
    }
    press(Qt::Key_Space);
    awaitEnd();
    EXPECT_EQ(focusName(), "batchApplyButton");
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(model->rollLayout().items.first().scale() * 30.0, 24.0);
}

TEST_F(BatchSizingKeyboard, staysOnTheButtonOfACalculationThatIsRefused) {
    openWithBadRow();
    widget("batchCalculateButton")->setFocus();
    press(Qt::Key_Return);
    EXPECT_STRNE(issueText(), "(none)");
    EXPECT_EQ(focusName(), "batchCalculateButton");
}

TEST_F(BatchSizingKeyboard, staysWhereItWasLedDuringTheCalculation) {
    openTwo();
    {
        const Barrier barrier;
        widget("batchCalculateButton")->setFocus();
        press(Qt::Key_Space);
        widget("batchCommonSizeField")->setFocus();
    }
    awaitEnd();
    EXPECT_EQ(focusName(), "batchCommonSizeField");
}

// Return and Escape

TEST_F(BatchSizingKeyboard, appliesByReturn) {
    openTwo();
    const RollLayout before = model->rollLayout();
    calculate();
    widget("batchRotationSwitch")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 1);
    EXPECT_NE(model->rollLayout(), before);
}

TEST_F(BatchSizingKeyboard, appliesByReturnOnceAFieldIsReleased) {
    openTwo();
    calculate();
    widget("batchWidthField0")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 0);
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 1);
}

TEST_F(BatchSizingKeyboard, appliesNothingByReturnWithoutAPreview) {
    openTwo();
    const RollLayout before = model->rollLayout();
    widget("batchRotationSwitch")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 0);
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(BatchSizingKeyboard, pressesTheButtonThatHasTheKeyboardByReturn) {
    openTwo();
    const RollLayout before = model->rollLayout();
    calculate();
    widget("batchPasteToggle")->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(view->model().pasteExpanded());
    widget("batchCancelButton")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(BatchSizingKeyboard, appliesNothingWhileReturnIsHeldDown) {
    openTwo();
    calculate();
    for (const char* name : {"batchWidthField0", "batchRotationSwitch", "batchCalculateButton", "batchApplyButton"}) {
        widget(name)->setFocus();
        repeatReturn();
        EXPECT_EQ(closings, 0) << name;
        EXPECT_TRUE(view->model().preview()) << name;
    }
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(BatchSizingKeyboard, cancelsByEscapeFromEverywhere) {
    for (const char* name :
         {"batchWidthField0", "batchCommonSizeField", "batchPasteEditor", "batchTick0", "batchApplyButton"}) {
        openTwo();
        click("batchPasteToggle");
        calculate();
        closings = 0;
        widget(name)->setFocus();
        press(Qt::Key_Escape);
        EXPECT_EQ(closings, 1) << name;
        EXPECT_FALSE(model->rollUndoAvailable()) << name;
        view.reset();
    }
}

} // namespace
} // namespace orvex::test
