// What all finished edits have in common.

#include "CanvasTest.h"

namespace orvex {
namespace {

using Dimension = QuarterInchArtworkSizing::Dimension;

struct Command {
    const char* name;
    std::function<void(OrvexModel&, const QUuid& id)> run;
};

class EditCommand : public test::CanvasTest, public ::testing::WithParamInterface<Command> {
protected:
    EditCommand() { startWith(2); }
};

TEST_P(EditCommand, IsOneStepAndSaved) {
    expectOneStep([this] { GetParam().run(*model, idOf(1)); });
}

TEST_P(EditCommand, EndsAKeyboardRunAsAStepOfItsOwn) {
    const RollLayout before = model->rollLayout();
    model->nudgeSelectedArtwork(RollNudgeDirection::left, false);
    const RollLayout nudged = model->rollLayout();
    GetParam().run(*model, idOf(1));
    EXPECT_EQ(undoSteps(), 2);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), nudged);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_P(EditCommand, SaysNothingWhileTheSessionIsBusy) {
    const test::HeldBusy busy(*model);
    expectNothing([this] { GetParam().run(*model, idOf(1)); });
}

TEST_P(EditCommand, DoesNothingWithoutItsArtwork) {
    SessionBackdoor::set(model->selectedArtworkID, std::optional(QUuid::createUuid()));
    expectNothing([this] { GetParam().run(*model, QUuid::createUuid()); });
    SessionBackdoor::set(model->selectedArtworkID, std::optional<QUuid>());
    expectNothing([this] { GetParam().run(*model, QUuid()); });
}

TEST_P(EditCommand, EmptiesTheStepsToRedo) {
    model->moveArtwork(idOf(0), 1.0, std::nullopt);
    model->undoRollEdit();
    settle();
    ASSERT_TRUE(model->rollRedoAvailable());
    GetParam().run(*model, idOf(1));
    EXPECT_FALSE(model->rollRedoAvailable());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, EditCommand,
    ::testing::Values(Command{"ResizeByWidth",
                              [](OrvexModel& model, const QUuid& id) { model.resizeArtwork(id, 9, Dimension::width); }},
                      Command{"ResizeByHeight", [](OrvexModel& model,
                                                   const QUuid& id) { model.resizeArtwork(id, 9, Dimension::height); }},
                      Command{"Scale", [](OrvexModel& model, const QUuid& id) { model.scaleArtwork(id, 50); }},
                      Command{"Move", [](OrvexModel& model, const QUuid& id) { model.moveArtwork(id, 20.1, 0.0); }},
                      Command{"Rotate", [](OrvexModel& model, const QUuid&) { model.rotateSelectedArtwork(); }},
                      Command{"Fit", [](OrvexModel& model, const QUuid&) { model.fitSelectedArtwork(); }},
                      Command{"Duplicate", [](OrvexModel& model, const QUuid&) { model.duplicateSelectedArtwork(); }}),
    [](const auto& command) { return std::string(command.param.name); });

} // namespace
} // namespace orvex
