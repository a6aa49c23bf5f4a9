#include "SessionOperation.h"

#include "SessionFixture.h"

#include <thread>

namespace orvex {
namespace {

SessionProgress half() {
    return {.done = 1, .total = 2, .what = QStringLiteral("work"), .fraction = 0.5};
}

class Operation : public test::SessionTest {
protected:
    Operation() { start(); }

    static void turnEventLoop() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
};

TEST_F(Operation, MakesTheSessionBusyForAsLongAsItLives) {
    EXPECT_FALSE(model->busy());
    {
        const SessionOperation operation(*model);
        EXPECT_TRUE(model->busy());
        { const SessionOperation another(*model); }
        EXPECT_TRUE(model->busy());
    }
    EXPECT_FALSE(model->busy());
}

TEST_F(Operation, EndsARunOfTheKeyboardFirst) {
    place({artwork()});
    model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
    EXPECT_FALSE(model->rollUndoAvailable());
    const SessionOperation operation(*model);
    EXPECT_TRUE(model->rollUndoAvailable());
}

TEST_F(Operation, ShowsItsProgressUntilItsEnd) {
    {
        SessionOperation operation(*model, SessionOperation::Cancelling::possible);
        EXPECT_EQ(model->progress(), std::nullopt);
        operation.show(half());
        SessionProgress expected = half();
        expected.isCancellable = true;
        EXPECT_EQ(model->progress(), expected);
    }
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Operation, IsCancelledOnlyIfItCanBe) {
    SessionOperation uncancellable(*model);
    SessionOperation operation(*model, SessionOperation::Cancelling::possible);
    uncancellable.show(half());
    EXPECT_FALSE(model->progress()->isCancellable);
    operation.show(half());
    model->cancelOperation();
    EXPECT_FALSE(uncancellable.stopToken().stop_requested());
    EXPECT_TRUE(operation.stopToken().stop_requested());
    EXPECT_EQ(model->progress(), half()) << "which can no longer be cancelled";
    operation.show(half());
    EXPECT_EQ(model->progress(), half());
}

TEST_F(Operation, CancelledBeforeItShowsAnythingStillShowsNothing) {
    const SessionOperation operation(*model, SessionOperation::Cancelling::possible);
    model->cancelOperation();
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Operation, ShowsTheLatestReportOfAnotherThread) {
    SessionOperation operation(*model);
    std::thread([report = operation.report()] {
        report(SessionProgress::of(0, 2, QStringLiteral("work")));
        report(half());
    }).join();
    EXPECT_EQ(model->progress(), std::nullopt);
    turnEventLoop();
    EXPECT_EQ(model->progress(), half());
}

TEST_F(Operation, ThatHasEndedShowsNoReportAnyMore) {
    auto operation = std::make_unique<SessionOperation>(*model);
    const auto report = operation->report();
    report(half());
    operation.reset();
    report(half());
    turnEventLoop();
    EXPECT_EQ(model->progress(), std::nullopt);
}

TEST_F(Operation, ShowsItsProgressAgainWhenAnotherHasEnded) {
    SessionOperation operation(*model);
    operation.show(half());
    {
        SessionOperation another(*model);
        another.show({.done = 3, .total = 4, .what = QStringLiteral("other work"), .fraction = 0.75});
        EXPECT_EQ(model->progress()->done, 3);
    }
    EXPECT_EQ(model->progress(), half());
}

TEST_F(Operation, CanHideItsProgress) {
    SessionOperation operation(*model);
    operation.show(half());
    operation.hideProgress();
    EXPECT_EQ(model->progress(), std::nullopt);
    EXPECT_TRUE(model->busy());
}

} // namespace
} // namespace orvex
