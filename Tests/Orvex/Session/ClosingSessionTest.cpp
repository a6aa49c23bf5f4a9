#include "SessionFixture.h"

namespace orvex {
namespace {

/// What is there when the program is closed at an awkward moment, and started again.
class ClosingSession : public test::SessionTest {
protected:
    ClosingSession() {
        start();
        place({artwork()});
    }

    [[nodiscard]] QUuid id() const { return model->rollLayout().items.first().id; }
};

TEST_F(ClosingSession, KeepsWhatAGestureHasDone) {
    ASSERT_TRUE(model->beginArrangeGesture());
    model->dragArtwork(id(), 3.0, 0.0);
    start();
    ASSERT_EQ(model->rollLayout().items.size(), 1);
    EXPECT_EQ(model->rollLayout().items.first().xInches, 3.0);
}

TEST_F(ClosingSession, KeepsWhatAKeyboardRunHasDone) {
    model->nudgeSelectedArtwork(RollNudgeDirection::right, true);
    start();
    ASSERT_EQ(model->rollLayout().items.size(), 1);
    EXPECT_EQ(model->rollLayout().items.first().xInches, 0.1);
}

TEST_F(ClosingSession, KeepsALayoutThatHasJustBeenOpened) {
    const QUrl file = QUrl::fromLocalFile(folder.path(QStringLiteral("layout.json")));
    services.chosenPlaces = {file};
    model->saveRollProject();
    const RollLayout opened = model->rollLayout();
    model->rotateSelectedArtwork();
    model->openLayoutFile(file);
    start();
    EXPECT_EQ(model->rollLayout(), opened);
}

} // namespace
} // namespace orvex
