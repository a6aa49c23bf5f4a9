#include "SessionFixture.h"

namespace orvex {
namespace {

class Undo : public test::SessionTest {
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

} // namespace
} // namespace orvex
