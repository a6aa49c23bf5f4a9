#include "CanvasTest.h"

namespace orvex {
namespace {

class Undo : public test::CanvasTest {
protected:
    Undo() { start(); }
};

TEST_F(Undo, ReachesBackEightySteps) {
    place({artwork()});
    const QUuid id = model->rollLayout().items.first().id;
    for (int step = 1; step <= 81; ++step) {
        model->moveArtwork(id, step / 10.0, std::nullopt);
    }
    int count = 0;
    while (model->rollUndoAvailable()) {
        model->undoRollEdit();
        ++count;
    }
    EXPECT_EQ(count, 80);
    EXPECT_EQ(model->rollLayout().items.first().xInches, 0.1);
}

TEST_F(Undo, BringsBackTheLayoutBeforeTheLastEdit) {
    place({artwork()});
    const RollLayout before = model->rollLayout();
    model->rotateSelectedArtwork();
    const RollLayout after = model->rollLayout();
    EXPECT_FALSE(before == after);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
    EXPECT_TRUE(model->rollRedoAvailable());
    model->redoRollEdit();
    EXPECT_EQ(model->rollLayout(), after);
    EXPECT_TRUE(model->rollUndoAvailable());
    EXPECT_FALSE(model->rollRedoAvailable());
}

TEST_F(Undo, IsNoLongerAnsweredByRedoAfterANewEdit) {
    place({artwork()});
    model->rotateSelectedArtwork();
    model->undoRollEdit();
    EXPECT_TRUE(model->rollRedoAvailable());
    model->rotateSelectedArtwork();
    EXPECT_FALSE(model->rollRedoAvailable());
}

TEST_F(Undo, SelectsTheFirstArtworkWhereTheSelectedOneIsGone) {
    place({artwork(), artwork()});
    const QUuid first = model->rollLayout().items.first().id;
    model->duplicateSelectedArtwork();
    EXPECT_EQ(model->selectedArtworkID(), model->rollLayout().items.last().id);
    model->undoRollEdit();
    EXPECT_EQ(model->selectedArtworkID(), first);
}

TEST_F(Undo, TakesTheConfirmationThatTheDriverCorrectsNoColours) {
    place({artwork()});
    model->rotateSelectedArtwork();
    model->setDriverColorCorrectionDisabledConfirmed(true);
    model->undoRollEdit();
    EXPECT_FALSE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
}

TEST_F(Undo, WaitsForBackgroundWork) {
    place({artwork(), artwork()});
    model->rotateSelectedArtwork();
    const RollLayout turned = model->rollLayout();
    const test::Barrier barrier;
    model->changeRollWidth(40.0);
    ASSERT_TRUE(model->busy());
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), turned);
}

TEST_F(Undo, IsSaved) {
    place({artwork()});
    model->rotateSelectedArtwork();
    forgetAutosave();
    model->undoRollEdit();
    EXPECT_EQ(autosaved(), workspace());
    forgetAutosave();
    model->redoRollEdit();
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(Undo, DoesNothingWithoutAStep) {
    place({artwork()});
    expectNothing([this] { model->undoRollEdit(); });
    expectNothing([this] { model->redoRollEdit(); });
    settle();
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty()) << "no source has been looked for";
}

TEST_F(Undo, GivesThePageOfTheSelectedArtworkItsOldWidth) {
    place({artwork()});
    model->resizeArtwork(idOf(0), 24.0, QuarterInchArtworkSizing::Dimension::width);
    model->undoRollEdit();
    EXPECT_EQ(model->presetForm().settings.widthMM, 17.0 * 25.4);
    model->redoRollEdit();
    EXPECT_EQ(model->presetForm().settings.widthMM, 29.0 * 25.4);
}

TEST_F(Undo, TakesBackAKeyboardRunFirst) {
    place({artwork()});
    model->rotateSelectedArtwork();
    const RollLayout turned = model->rollLayout();
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), turned);
    EXPECT_EQ(undoSteps(), 1);
}

TEST_F(Undo, EndsAKeyboardRunEvenWhileTheSessionIsBusy) {
    place({artwork()});
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    const test::HeldBusy busy(*model);
    expectOneStepOfRun([this] { model->undoRollEdit(); });
    model->redoRollEdit();
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Undo, KeepsSelectionGapAndZoomOutOfItsSteps) {
    place({artwork(), artwork()});
    model->rotateSelectedArtwork();
    model->selectArtwork(idOf(0));
    model->setRollGap(1.5);
    model->undoRollEdit();
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    EXPECT_EQ(model->arrangementGap(), 1.5);
}

TEST_F(Undo, LooksForTheSourcesOfWhatCameBack) {
    place({artwork()});
    model->rotateSelectedArtwork();
    model->undoRollEdit();
    EXPECT_FALSE(model->busy()) << "it does so in the next turn of the event loop";
    settle();
    EXPECT_EQ(model->rollLoadWarnings().keys(), QList<QUuid>{idOf(0)});
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(Undo, OfAnImportKeepsWhatIsKnownOfItsSourcesForRedo) {
    import({picture(QStringLiteral("one.png"), 120, 80)});
    const QUuid id = idOf(0);
    model->undoRollEdit();
    settle();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    EXPECT_EQ(model->selectedArtworkID(), std::nullopt);
    EXPECT_EQ(model->image(), nullptr);
    EXPECT_TRUE(model->artworkPreviews().contains(id));
    model->redoRollEdit();
    EXPECT_EQ(model->selectedArtworkID(), id);
    EXPECT_NE(model->image(), nullptr);
}

TEST_F(Undo, ReachesBackEightyStepsOnRedoToo) {
    place({artwork()});
    for (int step = 1; step <= 90; ++step) {
        model->moveArtwork(idOf(0), step / 10.0, std::nullopt);
    }
    const RollLayout last = model->rollLayout();
    while (model->rollUndoAvailable()) {
        model->undoRollEdit();
    }
    int count = 0;
    while (model->rollRedoAvailable()) {
        model->redoRollEdit();
        ++count;
    }
    EXPECT_EQ(count, 80);
    EXPECT_EQ(model->rollLayout(), last);
}

TEST_F(Undo, CanGoBackToALayoutThatIsGiven) {
    const RollLayout given({}, 40.0);
    model->recordRollUndo(given);
    EXPECT_TRUE(model->rollUndoAvailable());
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), given);
}

} // namespace
} // namespace orvex
