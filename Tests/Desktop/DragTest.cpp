// What else happens while an artwork hangs at the mouse.

#include "DesktopTest.h"

namespace orvex::test {

class DragTest : public DesktopTest {
protected:
    void SetUp() override {
        leaveLayoutWithTwoArtworks();
        start();
        first_ = saved();
    }

    /// Takes "art.png" and moves it by this way, with the button still down.
    void dragBy(const QPoint& way) {
        const QPoint grip = frame(q("art.png")).center();
        const QString before = labelOfArtwork();
        desktop.pressMouse(grip);
        desktop.moveMouse(grip, grip + way);
        eventually("the artwork moves", [&] { return labelOfArtwork() != before; });
    }

    QString labelOfArtwork() { return waitForPart(Role::image, q("art.png, ")).name; }

    RollLayout first_;
};

TEST_F(DragTest, undoTakesBackTheDragAndNoEarlierStep) {
    dragBy({60, 0});
    desktop.releaseMouse();
    const RollLayout second = savedAfter(first_);
    dragBy({60, 0});
    desktop.press(q("ctrl+z"));
    const QPoint place = frame(q("art.png")).center();
    desktop.moveMouse(place, place + QPoint(40, 40));
    desktop.releaseMouse();
    EXPECT_EQ(saved(), second);
    desktop.press(q("ctrl+z"));
    eventually("the first drag is taken back", [this] { return saved() == first_; });
}

TEST_F(DragTest, quittingKeepsItAsFarAsItCame) {
    dragBy({60, 0});
    desktop.press(q("ctrl+q"));
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    desktop.releaseMouse();
    EXPECT_GT(savedArtwork(q("art.png")).xInches, 20.0);
}

TEST_F(DragTest, aRequestToEndKeepsItAsFarAsItCame) {
    dragBy({60, 0});
    orvex->signal(SIGTERM);
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    desktop.releaseMouse();
    EXPECT_GT(savedArtwork(q("art.png")).xInches, 20.0);
}

TEST_F(DragTest, aDialogEndsIt) {
    dragBy({60, 0});
    desktop.press(q("ctrl+o"));
    static_cast<void>(waitFor(Role::field, q("File name:")));
    const RollLayout ended = savedAfter(first_);
    desktop.releaseMouse();
    desktop.press(q("Escape"));
    eventually("the window is in front", [this] { return desktop.activeWindow() == q("orvex"); });
    const QPoint board = frame(q("below.png")).center();
    desktop.moveMouse(board, board + QPoint(50, 50));
    EXPECT_EQ(saved(), ended);
}

} // namespace orvex::test
