#include "CanvasTest.h"
#include "InChinese.h"

namespace orvex {
namespace {

using test::CanvasTest;
using Dimension = QuarterInchArtworkSizing::Dimension;

const QString tooWide =
    QStringLiteral("The requested image width exceeds the usable roll width or the dimensions are invalid. Enter a "
                   "smaller size. Each 2.5-inch border is retained.");

class Edit : public CanvasTest {
protected:
    Edit() { startWith(2); }

    /// Opens a keyboard run with a step to the left.
    void nudge() { model->nudgeSelectedArtwork(RollNudgeDirection::left, false); }
};

// Selection

using Selection = Edit;

TEST_F(Selection, IsSavedAndAsksForTheKeyboard) {
    forgetAutosave();
    model->selectArtwork(idOf(0));
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    EXPECT_EQ(model->rollKeyboardFocusRequest(), 1);
    EXPECT_EQ(autosaved(), workspace());
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_EQ(model->presetForm().settings.widthMM, 17.0 * 25.4);
}

TEST_F(Selection, OfTheSelectedArtworkOnlyAsksForTheKeyboard) {
    forgetAutosave();
    test::CanvasState expected = state();
    expected.focusRequest = 1;
    model->selectArtwork(idOf(1));
    EXPECT_EQ(state(), expected);
}

TEST_F(Selection, EndsAKeyboardRun) {
    nudge();
    expectOneStepOfRun([this] { model->selectArtwork(idOf(1)); });
}

TEST_F(Selection, DoesNothingWhileTheSessionIsBusyOrForAnUnknownArtwork) {
    expectNothing([this] { model->selectArtwork(QUuid::createUuid()); });
    const test::HeldBusy busy(*model);
    expectNothing([this] { model->selectArtwork(idOf(0)); });
}

TEST_F(Selection, OfATurnedArtworkGivesThePageItsTurnedProportions) {
    model->rotateSelectedArtwork();
    EXPECT_EQ(model->presetForm().settings.widthMM, 13.0 * 25.4);
    EXPECT_EQ(model->presetForm().settings.heightMM, (8.0 * 1200.0 / 800.0 + 5.0) * 25.4);
    EXPECT_EQ(model->presetForm().settings.marginMM, 63.5);
}

// Sizes

using Resizing = Edit;

TEST_F(Resizing, TakesTheNearestProportionalQuarterInches) {
    model->resizeArtwork(idOf(1), 13.0, Dimension::width);
    EXPECT_EQ(item(1).widthInches, 12.75);
    model->resizeArtwork(idOf(1), 9.1, Dimension::height);
    EXPECT_EQ(item(1).heightInches(), 9.0);
    EXPECT_EQ(item(1).widthInches, 13.5);
}

TEST_F(Resizing, ToThePresentSizeIsNoStep) {
    expectNothing([this] { model->resizeArtwork(idOf(1), 12.1, Dimension::width); });
}

TEST_F(Resizing, ThatFailsIsToldInAnAlert) {
    expectRefusal([this] { model->resizeArtwork(idOf(1), 55.25, Dimension::width); }, tooWide);
    expectRefusal([this] { model->resizeArtwork(idOf(1), nan, Dimension::height); },
                  QStringLiteral("Image dimensions must be valid positive values in inches."));
    const test::InChinese chinese;
    expectRefusal([this] { model->resizeArtwork(idOf(1), 55.25, Dimension::width); },
                  QStringLiteral("请求的画面宽度超出卷布可用宽度，或尺寸无效。请输入更小的尺寸。四边各 2.5 英寸的白边"
                                 "都会保留。"));
}

TEST_F(Resizing, ThatFailsEndsTheKeyboardRunAllTheSame) {
    nudge();
    model->resizeArtwork(idOf(1), 100.0, Dimension::width);
    EXPECT_EQ(undoSteps(), 1);
    EXPECT_EQ(model->errorMessage(), tooWide);
}

using Scaling = Edit;

TEST_F(Scaling, IsOfTheNaturalSizeAsTheArtworkLies) {
    model->scaleArtwork(idOf(1), 200.0);
    EXPECT_EQ(item(1).widthInches, 24.0);
    model->rotateSelectedArtwork();
    ASSERT_EQ(item(1).widthInches, 16.0);
    model->scaleArtwork(idOf(1), 50.0);
    EXPECT_EQ(item(1).widthInches, 4.0);
    EXPECT_EQ(item(1).heightInches(), 6.0);
}

TEST_F(Scaling, BeyondTheRollIsRefused) {
    expectRefusal([this] { model->scaleArtwork(idOf(1), 460.0); }, tooWide);
}

using Fitting = Edit;

TEST_F(Fitting, FillsTheRollBetweenTheBorders) {
    model->fitSelectedArtwork();
    EXPECT_EQ(item(1).widthInches, 54.75) << "the widest whole quarter inches of this proportion";
    EXPECT_EQ(item(1).xInches, 60.0 - 59.75);
}

TEST_F(Fitting, FindsTheReferenceSizeAgain) {
    model->resizeArtwork(idOf(1), 30.0, Dimension::width);
    expectOneStep([this] { model->restoreSelectedNaturalSize(); });
    EXPECT_EQ(item(1).widthInches, 12.0);
    model->rotateSelectedArtwork();
    model->resizeArtwork(idOf(1), 30.0, Dimension::width);
    model->restoreSelectedNaturalSize();
    EXPECT_EQ(item(1).widthInches, 8.0);
}

TEST_F(Fitting, TakesTheRollsWidthForAReferenceSizeThatIsWider) {
    RollArtwork wide = artwork(60.0, 40.0);
    wide.widthInches = 30.0;
    place({wide});
    model->restoreSelectedNaturalSize();
    EXPECT_EQ(item(2).widthInches, 54.75);
}

TEST_F(Fitting, DoesNothingToAReferenceSizeWithoutASelectionOrWhileBusy) {
    model->resizeArtwork(idOf(1), 30.0, Dimension::width);
    {
        const test::HeldBusy busy(*model);
        expectNothing([this] { model->restoreSelectedNaturalSize(); });
    }
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    expectNothing([this] { model->restoreSelectedNaturalSize(); });
}

// Positions

using Moving = Edit;

TEST_F(Moving, KeepsACoordinateThatIsNotGivenAndDoesNotSnap) {
    model->resizeArtwork(idOf(0), 24.0, Dimension::width);
    model->moveArtwork(idOf(1), 40.123, std::nullopt);
    EXPECT_EQ(item(1).xInches, 40.123);
    EXPECT_EQ(item(1).yInches, 0.0);
    model->moveArtwork(idOf(1), std::nullopt, 3.3);
    EXPECT_EQ(item(1).xInches, 40.123);
    EXPECT_EQ(item(1).yInches, 3.3);
}

TEST_F(Moving, StaysOnTheCanvasAsItIs) {
    model->moveArtwork(idOf(1), 100.0, 100.0);
    EXPECT_EQ(item(1).xInches, 43.0);
    EXPECT_EQ(item(1).yInches, 0.0);
    EXPECT_EQ(model->rollLayout().lengthInches(), 13.0);
    model->moveArtwork(idOf(1), -1.0, -1.0);
    EXPECT_EQ(item(1).xInches, 0.0);
    EXPECT_EQ(item(1).yInches, 0.0);
}

TEST_F(Moving, ToThePresentPlaceIsNoStep) {
    expectNothing([this] { model->moveArtwork(idOf(1), 17.0, 0.0); });
    expectNothing([this] { model->moveArtwork(idOf(1), std::nullopt, std::nullopt); });
}

TEST_F(Moving, RefusesWhatIsNoNumber) {
    const QString words = QStringLiteral("Position must be a valid value in inches.");
    for (const double bad : {nan, infinity, -infinity}) {
        model->dismissError();
        expectRefusal([this, bad] { model->moveArtwork(idOf(1), bad, std::nullopt); }, words);
        model->dismissError();
        expectRefusal([this, bad] { model->moveArtwork(idOf(1), std::nullopt, bad); }, words);
    }
    const test::InChinese chinese;
    expectRefusal([this] { model->moveArtwork(idOf(1), nan, 0.0); }, QStringLiteral("位置必须是有效数值（英寸）。"));
}

TEST_F(Moving, RefusesWhatIsNoNumberEvenWhileBusyAndLeavesTheKeyboardRunOpen) {
    nudge();
    expectRefusal([this] { model->moveArtwork(idOf(1), nan, 0.0); },
                  QStringLiteral("Position must be a valid value in inches."));
    model->endKeyboardNudge();
    model->dismissError();
    const test::HeldBusy busy(*model);
    expectRefusal([this] { model->moveArtwork(idOf(1), nan, 0.0); },
                  QStringLiteral("Position must be a valid value in inches."));
}

using Rotating = Edit;

TEST_F(Rotating, TurnsFourTimesAtTheSamePhysicalSize) {
    const QList<double> widths{8.0, 12.0, 8.0, 12.0};
    for (qsizetype turn = 0; turn < widths.size(); ++turn) {
        model->rotateSelectedArtwork();
        EXPECT_EQ(item(1).rotationQuarterTurns, (turn + 1) % 4);
        EXPECT_EQ(item(1).widthInches, widths[turn]);
    }
    EXPECT_EQ(undoSteps(), 4);
}

TEST_F(Rotating, ThatWouldNotFitIsRefused) {
    model->fitSelectedArtwork();
    RollArtwork tall = artwork(10.0, 58.0);
    place({tall});
    expectRefusal([this] { model->rotateSelectedArtwork(); },
                  QStringLiteral("The artwork width plus two 2.5-inch manual-trim borders must not exceed 60 inches. "
                                 "Reduce its size."));
}

// The whole canvas

using Gap = Edit;

TEST_F(Gap, IsSavedAndNoStep) {
    const RollLayout before = model->rollLayout();
    forgetAutosave();
    model->setRollGap(0.5);
    EXPECT_EQ(model->arrangementGap(), 0.5);
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_EQ(autosaved().gapInches, 0.5);
}

TEST_F(Gap, RefusesWhatIsNegativeOrNoNumber) {
    for (const double bad : {-0.01, nan, infinity, -infinity}) {
        model->dismissError();
        expectRefusal([this, bad] { model->setRollGap(bad); },
                      QStringLiteral("The layout gap must be a valid value of zero or greater, in inches."));
    }
    const test::InChinese chinese;
    expectRefusal([this] { model->setRollGap(-1.0); },
                  QStringLiteral("排版间距必须是大于或等于零的有效数值（英寸）。"));
}

TEST_F(Gap, MayBeANegativeZero) {
    model->setRollGap(1.0);
    model->setRollGap(-0.0);
    EXPECT_EQ(model->arrangementGap(), 0.0);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

using Arranging = Edit;

const QString packed =
    QStringLiteral("Packed at the current sizes, prioritizing empty spaces. Each artwork keeps a 2.5-inch border on "
                   "every side, with no extra blank canvas at the bottom.");

TEST_F(Arranging, TightlyForgetsTheGapAndTellsOfIt) {
    model->setRollGap(2.0);
    model->moveArtwork(idOf(1), 40.0, std::nullopt);
    expectOneStep([this] { model->arrangeRoll(true); });
    EXPECT_EQ(item(1).xInches, 17.0);
    EXPECT_EQ(model->arrangementGap(), 0.0);
    EXPECT_EQ(model->message(), packed);
    const test::InChinese chinese;
    model->arrangeRoll(true);
    EXPECT_EQ(model->message(), QStringLiteral("已按当前尺寸紧凑排列，优先填补空位。每幅作品四周保留 2.5 英寸白边，末"
                                               "尾不留多余空白画布。"));
}

TEST_F(Arranging, WithTheGapKeepsItAndSaysNothing) {
    model->setRollGap(2.0);
    const QString message = model->message();
    expectOneStep([this] { model->arrangeRoll(false); });
    EXPECT_EQ(item(1).xInches, 19.0);
    EXPECT_EQ(model->arrangementGap(), 2.0);
    EXPECT_EQ(model->message(), message);
}

TEST_F(Arranging, WhatIsArrangedAlreadyIsNoStep) {
    expectNothing([this] { model->arrangeRoll(false); });
    model->arrangeRoll(true);
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_EQ(model->message(), packed);
    EXPECT_TRUE(isAutosaved());
}

TEST_F(Arranging, TightlyWhileBusyStillForgetsTheGapAndTellsSo) {
    model->setRollGap(2.0);
    model->moveArtwork(idOf(1), 40.0, std::nullopt);
    forgetAutosave();
    test::CanvasState expected = state();
    expected.gapInches = 0.0;
    expected.message = packed;
    expected.isAutosaved = true;
    const test::HeldBusy busy(*model);
    model->arrangeRoll(true);
    EXPECT_EQ(state(), expected);
}

TEST_F(Arranging, WithTheGapIsLockedWhileBusy) {
    model->setRollGap(2.0);
    const test::HeldBusy busy(*model);
    expectNothing([this] { model->arrangeRoll(false); });
}

TEST_F(Arranging, ThatFailsIsToldAndTightlyForgetsTheGapAllTheSame) {
    model->setRollGap(2.0);
    RollLayout broken = model->rollLayout();
    broken.schemaVersion = 2;
    SessionBackdoor::set(model->rollLayout, broken);
    expectRefusal([this] { model->arrangeRoll(false); }, QStringLiteral("This roll layout version is unsupported."));
    model->arrangeRoll(true);
    EXPECT_EQ(model->rollLayout(), broken);
    EXPECT_EQ(undoSteps(), 0);
    EXPECT_EQ(model->arrangementGap(), 0.0);
    EXPECT_EQ(model->message(), packed);
    EXPECT_EQ(model->rollSaveMessage(),
              QStringLiteral("Layout not saved: The layout file version or data is invalid. The original file has been "
                             "retained."));
}

TEST_F(Arranging, EndsAKeyboardRun) {
    nudge();
    model->arrangeRoll(true);
    EXPECT_EQ(undoSteps(), 2);
}

// The board's view

using Zoom = Edit;

TEST_F(Zoom, GrowsAndShrinksWithinItsLimitsAndComesBack) {
    model->zoomIn();
    EXPECT_EQ(model->rollZoom(), 1.25);
    for (int count = 0; count < 20; ++count) {
        model->zoomIn();
    }
    EXPECT_EQ(model->rollZoom(), 3.0);
    for (int count = 0; count < 40; ++count) {
        model->zoomOut();
    }
    EXPECT_EQ(model->rollZoom(), 0.2);
    model->fitWidth();
    EXPECT_EQ(model->rollZoom(), 1.0);
}

TEST_F(Zoom, ChangesNothingElseAndIsNeverLocked) {
    const test::HeldBusy busy(*model);
    expectNothing([this] {
        model->zoomIn();
        model->zoomOut();
        model->zoomOut();
        model->fitWidth();
        model->setRollSnapToQuarter(false);
    });
    EXPECT_FALSE(model->rollSnapToQuarter());
}

} // namespace
} // namespace orvex
