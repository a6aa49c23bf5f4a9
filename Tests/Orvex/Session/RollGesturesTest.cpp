#include "CanvasTest.h"
#include "InChinese.h"
#include "InLocale.h"
#include "Layout/InchLayout.h"

namespace orvex {
namespace {

using test::CanvasTest;

constexpr auto positionsNotNumbers = "Artwork positions must be valid numbers.";

class Gesture : public CanvasTest {
protected:
    Gesture() {
        startWith(2);
        forgetAutosave();
    }

    /// Does something of which neither history nor disk must know.
    void expectNoStepYet(const std::function<void()>& movement) {
        const int steps = undoSteps();
        movement();
        EXPECT_EQ(undoSteps(), steps);
        EXPECT_FALSE(isAutosaved());
        EXPECT_EQ(model->errorMessage(), std::nullopt);
    }

    Point positionOf(qsizetype number) const { return {item(number).xInches, item(number).yInches}; }
};

TEST_F(Gesture, FreezesTheLengthOfTheCanvas) {
    expectNoStepYet([this] { model->beginArrangeGesture(); });
    EXPECT_TRUE(model->arrangingGesture());
    EXPECT_EQ(model->rollGestureFrameLength(), 13.0);
}

TEST_F(Gesture, IsOneStepAndOneAutosaveHoweverFarItGoes) {
    const RollLayout before = model->rollLayout();
    model->beginArrangeGesture();
    for (int x = 0; x < 40; ++x) {
        expectNoStepYet([this, x] { model->dragArtwork(idOf(0), x, 0.0); });
        expectNoStepYet([this, x] { model->resizeArtworkGesture(idOf(0), 3.0 + x / 4.0); });
    }
    model->endArrangeGesture();
    EXPECT_EQ(undoSteps(), 1);
    EXPECT_EQ(lastStep(), before);
    EXPECT_EQ(autosaved(), workspace());
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_EQ(model->rollGestureFrameLength(), std::nullopt);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout autosaved"));
}

TEST_F(Gesture, ThatChangedNothingIsNoStepButIsSaved) {
    model->beginArrangeGesture();
    model->dragArtwork(idOf(0), 20.0, 0.0);
    model->dragArtwork(idOf(0), 0.0, 0.0);
    model->endArrangeGesture();
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(Gesture, ThatIsNotOpenCannotEnd) {
    expectNothing([this] { model->endArrangeGesture(); });
}

TEST_F(Gesture, CannotBeginTwice) {
    const RollLayout before = model->rollLayout();
    model->beginArrangeGesture();
    model->dragArtwork(idOf(0), 30.0, 0.0);
    model->resizeArtworkGesture(idOf(0), 24.0);
    model->resizeArtworkGesture(idOf(0), 12.0);
    expectNothing([this] { model->beginArrangeGesture(); });
    EXPECT_EQ(model->rollGestureFrameLength(), 21.0);
    model->endArrangeGesture();
    EXPECT_EQ(lastStep(), before);
}

TEST_F(Gesture, EndsAKeyboardRunBeforeItBegins) {
    model->nudgeSelectedArtwork(RollNudgeDirection::down, false);
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    expectOneStepOfRun([this] { model->beginArrangeGesture(); });
}

TEST_F(Gesture, LeavesNothingToRedo) {
    model->rotateSelectedArtwork();
    model->undoRollEdit();
    ASSERT_TRUE(model->rollRedoAvailable());
    model->beginArrangeGesture();
    model->dragArtwork(idOf(0), 30.0, 0.0);
    EXPECT_TRUE(model->rollRedoAvailable());
    model->endArrangeGesture();
    EXPECT_FALSE(model->rollRedoAvailable());
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Gesture, IsLockedWhileTheSessionIsBusy) {
    const test::HeldBusy busy(*model);
    expectNothing([this] { model->beginArrangeGesture(); });
    expectNothing([this] { model->dragArtwork(idOf(0), 5.0, 5.0); });
    expectNothing([this] { model->resizeArtworkGesture(idOf(0), 5.0); });
}

TEST_F(Gesture, EndsEvenWhileTheSessionIsBusy) {
    model->beginArrangeGesture();
    model->dragArtwork(idOf(0), 30.0, 0.0);
    const test::HeldBusy busy(*model);
    model->endArrangeGesture();
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_EQ(undoSteps(), 1);
}

using Drag = Gesture;

TEST_F(Drag, SnapsToQuarterInchesWithTiesAwayFromZero) {
    model->dragArtwork(idOf(0), 20.124, 0.0);
    EXPECT_EQ(positionOf(0), (Point{20.0, 0.0}));
    model->dragArtwork(idOf(0), 20.125, 0.0);
    EXPECT_EQ(positionOf(0), (Point{20.25, 0.0}));
    model->dragArtwork(idOf(0), 20.375, 0.0);
    EXPECT_EQ(positionOf(0), (Point{20.5, 0.0}));
}

TEST_F(Drag, SnapsBothDirections) {
    model->moveArtwork(idOf(1), std::nullopt, 0.0);
    model->resizeArtwork(idOf(1), 24.0, QuarterInchArtworkSizing::Dimension::width);
    model->dragArtwork(idOf(0), 20.1, 3.3);
    EXPECT_EQ(positionOf(0), (Point{20.0, 3.25}));
}

TEST_F(Drag, GoesWhereThePointerIsWithoutSnapping) {
    model->setRollSnapToQuarter(false);
    model->dragArtwork(idOf(0), 20.125001, 0.0);
    EXPECT_EQ(positionOf(0), (Point{20.125001, 0.0}));
}

TEST_F(Drag, SelectsItsArtwork) {
    ASSERT_EQ(model->selectedArtworkID(), idOf(1));
    model->dragArtwork(idOf(0), 20.0, 0.0);
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    EXPECT_EQ(model->presetForm().settings.widthMM, 17.0 * 25.4);
}

TEST_F(Drag, StaysOnTheRoll) {
    model->dragArtwork(idOf(0), -3.0, -3.0);
    EXPECT_EQ(positionOf(0), (Point{0.0, 0.0}));
    model->dragArtwork(idOf(0), 90.0, 90.0);
    EXPECT_EQ(positionOf(0), (Point{43.0, 0.0}));
}

TEST_F(Drag, NeverExtendsTheCanvasThatTheGestureBeganWith) {
    model->resizeArtwork(idOf(1), 24.0, QuarterInchArtworkSizing::Dimension::width);
    ASSERT_EQ(model->rollLayout().lengthInches(), 21.0);
    model->beginArrangeGesture();
    model->resizeArtworkGesture(idOf(1), 3.0);
    ASSERT_EQ(model->rollLayout().lengthInches(), 13.0);
    model->dragArtwork(idOf(0), 0.0, 50.0);
    EXPECT_EQ(positionOf(0), (Point{0.0, 8.0}));
    model->endArrangeGesture();
    model->dragArtwork(idOf(1), 40.0, 50.0);
    EXPECT_EQ(positionOf(1), (Point{40.0, 21.0 - 7.0}));
}

TEST_F(Drag, OfAnUnknownArtworkDoesNothing) {
    expectNothing([this] { model->dragArtwork(QUuid::createUuid(), 5.0, 5.0); });
}

TEST_F(Drag, ThatFailsIsToldWithoutAnAlert) {
    for (const double bad : {nan, infinity, -infinity}) {
        SessionBackdoor::set(model->rollSaveMessage, QString());
        forgetAutosave();
        test::CanvasState expected = state();
        expected.saveMessage = QString::fromLatin1(positionsNotNumbers);
        model->dragArtwork(idOf(0), bad, 0.0);
        EXPECT_EQ(state(), expected);
    }
}

TEST_F(Drag, ThatFailsIsToldInChinese) {
    const test::InChinese chinese;
    model->dragArtwork(idOf(0), nan, 0.0);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("作品位置必须是有效数字。"));
}

using ResizeGesture = Gesture;

TEST_F(ResizeGesture, TakesTheNearestProportionalQuarterInches) {
    model->resizeArtworkGesture(idOf(0), 13.0);
    EXPECT_EQ(item(0).widthInches, 12.75);
    EXPECT_EQ(item(0).heightInches(), 8.5);
    EXPECT_EQ(model->selectedArtworkID(), idOf(1)) << "selecting is the board's part";
}

TEST_F(ResizeGesture, OnlyEverGrowsTheFrozenFrame) {
    model->beginArrangeGesture();
    model->resizeArtworkGesture(idOf(0), 24.0);
    EXPECT_EQ(model->rollGestureFrameLength(), 21.0);
    model->resizeArtworkGesture(idOf(0), 3.0);
    EXPECT_EQ(model->rollGestureFrameLength(), 21.0);
    EXPECT_EQ(model->rollLayout().lengthInches(), 13.0);
}

TEST_F(ResizeGesture, ThatFailsIsToldWithoutAnAlert) {
    test::CanvasState expected = state();
    expected.saveMessage = QStringLiteral("Image dimensions must be valid positive values in inches.");
    model->resizeArtworkGesture(idOf(0), 0.0);
    EXPECT_EQ(state(), expected);
    expected.saveMessage =
        QStringLiteral("The requested image width exceeds the usable roll width or the dimensions are invalid. Enter a "
                       "smaller size. Each 2.5-inch border is retained.");
    model->resizeArtworkGesture(idOf(0), 55.5);
    EXPECT_EQ(state(), expected);
}

TEST_F(ResizeGesture, OfAnUnknownArtworkDoesNothing) {
    expectNothing([this] { model->resizeArtworkGesture(QUuid::createUuid(), 5.0); });
}

TEST_F(ResizeGesture, UpdatesThePageOfTheSelectedArtwork) {
    model->resizeArtworkGesture(idOf(1), 24.0);
    EXPECT_EQ(model->presetForm().settings.widthMM, 29.0 * 25.4);
}

class Nudge : public CanvasTest {
protected:
    Nudge() {
        startWith(2);
        model->moveArtwork(idOf(1), 30.0, std::nullopt);
        forgetAutosave();
    }

    void nudge(RollNudgeDirection direction, bool accelerated = false) {
        model->nudgeSelectedArtwork(direction, accelerated);
    }
};

TEST_F(Nudge, IsAHundredthOfAnInchOrATenth) {
    nudge(RollNudgeDirection::right);
    EXPECT_EQ(item(1).xInches, 30.01);
    nudge(RollNudgeDirection::left, true);
    EXPECT_EQ(item(1).xInches, 30.01 - 0.1);
}

TEST_F(Nudge, TellsThePosition) {
    nudge(RollNudgeDirection::right);
    EXPECT_EQ(model->message(),
              QStringLiteral("Keyboard adjustment: 30.01 in from the roll left, 0 in from the roll start."));
    const test::InChinese chinese;
    const test::InLocale german("de_DE");
    nudge(RollNudgeDirection::right);
    EXPECT_EQ(model->message(), QStringLiteral("键盘微调：距卷布左侧 30,02 英寸，距卷布起点 0 英寸。"));
}

TEST_F(Nudge, SavesNothingBeforeTheRunEndsAndIsThenOneStep) {
    const RollLayout before = model->rollLayout();
    const int steps = undoSteps();
    for (int count = 0; count < 25; ++count) {
        nudge(RollNudgeDirection::left);
        EXPECT_EQ(undoSteps(), steps);
        EXPECT_FALSE(isAutosaved());
    }
    expectOneStepOfRun([this] { model->endKeyboardNudge(); });
    EXPECT_EQ(lastStep(), before);
}

TEST_F(Nudge, ThatCannotGoOnChangesNothing) {
    expectNothing([this] { nudge(RollNudgeDirection::up); });
    expectNothing([this] { nudge(RollNudgeDirection::down, true); });
    expectNothing([this] { model->endKeyboardNudge(); });
}

TEST_F(Nudge, RunThatComesBackIsNoStepAndNotSaved) {
    model->moveArtwork(idOf(1), 0.1, std::nullopt);
    nudge(RollNudgeDirection::left);
    nudge(RollNudgeDirection::right);
    ASSERT_EQ(item(1).xInches, 0.1);
    expectNothing([this] { model->endKeyboardNudge(); });
}

TEST_F(Nudge, StaysWithinTheCanvasThatTheRunBeganWith) {
    model->resizeArtwork(idOf(1), 15.0, QuarterInchArtworkSizing::Dimension::width);
    ASSERT_EQ(model->rollLayout().lengthInches(), 15.0);
    nudge(RollNudgeDirection::down);
    EXPECT_EQ(item(1).yInches, 0.0) << "it is the longest itself";
    model->selectArtwork(idOf(0));
    for (int count = 0; count < 25; ++count) {
        nudge(RollNudgeDirection::down, true);
    }
    EXPECT_EQ(item(0).yInches, 2.0);
}

TEST_F(Nudge, CanGoBackDownWhereTheCanvasHasBecomeShorterMeanwhile) {
    using Dimension = QuarterInchArtworkSizing::Dimension;
    model->resizeArtwork(idOf(0), 15.0, Dimension::width);
    model->moveArtwork(idOf(1), std::nullopt, 2.0);
    model->resizeArtwork(idOf(0), 12.0, Dimension::width);
    ASSERT_EQ(model->rollLayout().lengthInches(), 15.0);
    for (int count = 0; count < 5; ++count) {
        nudge(RollNudgeDirection::up, true);
    }
    ASSERT_LT(model->rollLayout().lengthInches(), 14.6);
    for (int count = 0; count < 10; ++count) {
        nudge(RollNudgeDirection::down, true);
    }
    EXPECT_EQ(item(1).yInches, 2.0);
}

TEST_F(Nudge, IsNotSnapped) {
    ASSERT_TRUE(model->rollSnapToQuarter());
    nudge(RollNudgeDirection::right, true);
    EXPECT_EQ(item(1).xInches, 30.1);
}

TEST_F(Nudge, ThatFailsIsToldWithoutAnAlert) {
    RollLayout broken = model->rollLayout();
    broken.schemaVersion = 2;
    SessionBackdoor::set(model->rollLayout, broken);
    test::CanvasState expected = state();
    expected.saveMessage = QStringLiteral("This roll layout version is unsupported.");
    nudge(RollNudgeDirection::right);
    EXPECT_EQ(state(), expected);
}

TEST_F(Nudge, IsLockedByWorkGesturesAndTheBatchPanel) {
    {
        const test::HeldBusy busy(*model);
        expectNothing([this] { nudge(RollNudgeDirection::right); });
    }
    model->setBatchSizingPresented(true);
    expectNothing([this] { nudge(RollNudgeDirection::right); });
    model->setBatchSizingPresented(false);
    model->beginArrangeGesture();
    expectNothing([this] { nudge(RollNudgeDirection::right); });
}

TEST_F(Nudge, NeedsTheCanvasInViewAndASelection) {
    model->setTab(1);
    expectNothing([this] { nudge(RollNudgeDirection::right); });
    model->setTab(0);
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    expectNothing([this] { nudge(RollNudgeDirection::right); });
}

TEST_F(Nudge, BecomesAStepOfItsOwnBeforeTheNextEdit) {
    const RollLayout before = model->rollLayout();
    const int steps = undoSteps();
    nudge(RollNudgeDirection::right);
    const RollLayout nudged = model->rollLayout();
    model->rotateSelectedArtwork();
    EXPECT_EQ(undoSteps(), steps + 2);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), nudged);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(Nudge, IsUndoneAsOneRun) {
    const RollLayout before = model->rollLayout();
    nudge(RollNudgeDirection::right);
    nudge(RollNudgeDirection::right);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    model->redoRollEdit();
    EXPECT_EQ(item(1).xInches, 30.0 + 0.01 + 0.01);
}

TEST_F(Nudge, AsksForTheKeyboardAgainAndAgain) {
    model->requestKeyboardFocus();
    model->requestKeyboardFocus();
    EXPECT_EQ(model->rollKeyboardFocusRequest(), 2);
}

} // namespace
} // namespace orvex
