#include "BatchSizingModel.h"
#include "SessionFixture.h"

namespace orvex::test {
namespace {

class BatchSession : public SessionTest {
protected:
    /// Opens the panel over two artworks and calculates a preview in which the first is smaller.
    void preview() {
        start();
        settle();
        place({artwork(30.0, 20.0), artwork(30.0, 20.0)});
        panel = std::make_unique<BatchSizingModel>(*model);
        QObject::connect(panel.get(), &BatchSizingModel::closed, panel.get(), [this] { isClosed = true; });
        panel->edit({.id = panel->enabledIDs().first(), .dimension = BatchDimension::width}, QStringLiteral("24"));
        panel->calculatePreview();
        waitFor([this] { return !panel->calculating(); });
        ASSERT_TRUE(panel->preview());
    }

    std::unique_ptr<BatchSizingModel> panel;
    bool isClosed = false;
};

TEST_F(BatchSession, takesSizesAndArrangementInOneStep) {
    preview();
    const RollLayout before = model->rollLayout();
    EXPECT_EQ(panel->original(), before);
    panel->apply();
    EXPECT_TRUE(isClosed);
    EXPECT_EQ(model->rollLayout(), panel->preview()->layout);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(BatchSession, keepsItsLayoutUntilThen) {
    preview();
    const RollLayout before = model->rollLayout();
    panel->cancel();
    EXPECT_TRUE(isClosed);
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(BatchSession, takesNothingOntoALayoutThatHasChanged) {
    preview();
    model->rotateSelectedArtwork();
    const RollLayout changed = model->rollLayout();
    panel->apply();
    EXPECT_FALSE(isClosed);
    EXPECT_EQ(panel->issue().value_or(QString()).toStdString(),
              "The layout has changed. Reopen Batch Sizes to avoid overwriting your latest edits.");
    EXPECT_EQ(model->rollLayout(), changed);
}

TEST_F(BatchSession, takesNothingWhileItIsBusy) {
    preview();
    const RollLayout before = model->rollLayout();
    SessionBackdoor::set(model->busy, true);
    panel->apply();
    SessionBackdoor::set(model->busy, false);
    EXPECT_FALSE(isClosed);
    EXPECT_EQ(panel->issue().value_or(QString()).toStdString(),
              "Wait for the current operation to finish before applying.");
    EXPECT_EQ(model->rollLayout(), before);
}

// Whether it opens

class BatchCommand : public SessionTest {
protected:
    BatchCommand() { start(); }

    /// Whether the command is offered; it must do then, and only then, what it says.
    bool opens() {
        const bool isOffered = model->canPresentBatchSizing();
        const bool wasOpen = model->batchSizingPresented();
        model->presentBatchSizing();
        EXPECT_EQ(model->batchSizingPresented(), isOffered || wasOpen);
        return isOffered;
    }
};

TEST_F(BatchCommand, opensThePanelOverArtworks) {
    place({artwork()});
    EXPECT_TRUE(opens());
}

TEST_F(BatchCommand, opensNoPanelOverAnEmptyCanvas) {
    EXPECT_FALSE(opens());
}

TEST_F(BatchCommand, opensThePanelOnceUntilItIsClosed) {
    place({artwork()});
    EXPECT_TRUE(opens());
    EXPECT_FALSE(opens());
    model->setBatchSizingPresented(false);
    EXPECT_TRUE(opens());
}

TEST_F(BatchCommand, waitsForOtherWork) {
    place({artwork()});
    SessionBackdoor::set(model->busy, true);
    EXPECT_FALSE(opens());
    SessionBackdoor::set(model->busy, false);
    EXPECT_TRUE(opens());
}

} // namespace
} // namespace orvex::test
