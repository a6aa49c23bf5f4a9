#include "BatchView.h"

namespace orvex::test {
namespace {

using BatchSizingClosing = BatchView;

TEST_F(BatchSizingClosing, appliesSizesAndArrangementInOneStep) {
    openTwo();
    const RollLayout before = model->rollLayout();
    type("batchWidthField0", "24");
    calculate();
    click("batchApplyButton");
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(model->rollLayout(), view->model().preview()->layout);
    EXPECT_NE(model->rollLayout(), before);
    model->undoRollEdit();
    EXPECT_EQ(model->rollLayout(), before);
}

TEST_F(BatchSizingClosing, staysWhenTheSessionRefusesTheArrangement) {
    openTwo();
    calculate();
    SessionBackdoor::set(model->busy, true);
    click("batchApplyButton");
    SessionBackdoor::set(model->busy, false);
    EXPECT_TRUE(view->isVisible());
    EXPECT_EQ(closings, 0);
    EXPECT_STREQ(issueText(), "Wait for the current operation to finish before applying.");
}

TEST_F(BatchSizingClosing, leavesTheSessionAloneWhenItIsCancelled) {
    openTwo();
    const RollLayout before = model->rollLayout();
    calculate();
    click("batchCancelButton");
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(BatchSizingClosing, cancelsWhenItsFrameIsClosed) {
    openTwo();
    {
        const Barrier barrier;
        click("batchCalculateButton");
        view->close();
        EXPECT_EQ(closings, 1);
        EXPECT_FALSE(view->isVisible());
    }
    awaitEnd();
    EXPECT_EQ(view->model().preview(), std::nullopt);
    EXPECT_FALSE(model->rollUndoAvailable());
}

TEST_F(BatchSizingClosing, mayGoWhileItCalculatesAndAFieldHasTheKeyboard) {
    openTwo();
    const RollLayout before = model->rollLayout();
    {
        const Barrier barrier;
        click("batchCalculateButton");
        type("batchWidthField0", "24");
        view.reset();
    }
    ASSERT_TRUE(platform::userInitiatedPool().waitForDone(30'000));
    settleView();
    EXPECT_EQ(model->rollLayout(), before);
}

} // namespace
} // namespace orvex::test
