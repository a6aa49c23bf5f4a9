// Arrow keys that are held down: the display repeats them, and each hold is one step of undo.

#include "DesktopTest.h"

#include <cmath>

namespace orvex::test {

class KeyHoldTest : public DesktopTest {
protected:
    void SetUp() override {
        leaveLayoutWithTwoArtworks(); // the lower one lets the other one go down
        start();
        desktop.click(frame(q("art.png")).center());
        waitForKeyboardOnBoard();
    }

    /// It is there when a key moves the artwork.
    void waitForKeyboardOnBoard() {
        const RollLayout first = saved();
        eventually("a key moves the artwork", [&] {
            desktop.press(q("Left"));
            QElapsedTimer timer;
            for (timer.start(); saved() == first && timer.elapsed() < 500;) {
                QCoreApplication::processEvents();
            }
            return saved() != first;
        });
        undoUntil(first);
    }

    void undoUntil(const RollLayout& layout) {
        desktop.press(q("ctrl+z"));
        eventually("undo leads back", [&] { return saved() == layout; });
    }

    [[nodiscard]] bool isUndoPossible() { return waitFor(Role::button, q("Undo Layout")).isEnabled; }

    void expectOneStepBackTo(const RollLayout& layout) {
        undoUntil(layout);
        EXPECT_FALSE(isUndoPossible()) << "there was more than one step";
    }

    /// Holds the key until the artwork on the screen has moved by several steps.
    void keepMovingRight() {
        const QString before = labelOfArtwork();
        desktop.keyDown(q("Right"));
        eventually("the artwork moves", [&] { return labelOfArtwork() != before; });
        const QString once = labelOfArtwork();
        eventually("the artwork moves on", [&] { return labelOfArtwork() != once; });
    }

    QString labelOfArtwork() { return waitForPart(Role::image, q("art.png, ")).name; }

    /// What the end of a run leaves, with the key still down; nothing moves any more.
    void expectEndedRun(const RollLayout& before) {
        const RollLayout ended = savedAfter(before);
        const QString label = labelOfArtwork();
        EXPECT_GT(ended.items.first().xInches, 20.015);
        desktop.keyUp(q("Right"));
        EXPECT_EQ(labelOfArtwork(), label);
        EXPECT_EQ(saved(), ended);
    }
};

TEST_F(KeyHoldTest, tenHoldsAreTenStepsOfUndo) {
    QList<RollLayout> layouts{saved()};
    for (const char* key :
         {"Right", "KP_Right", "Up", "KP_Up", "shift+Right", "Left", "KP_Left", "Down", "KP_Down", "shift+Left"}) {
        const QString name = q(key);
        const bool isFast = name.startsWith(q("shift+"));
        if (isFast) {
            desktop.keyDown(q("shift"));
        }
        desktop.hold(name.section(u'+', -1), 1000);
        if (isFast) {
            desktop.keyUp(q("shift"));
        }
        const RollArtwork before = layouts.last().items.first();
        layouts.append(savedAfter(layouts.last()));
        const RollArtwork after = layouts.last().items.first();
        const double way = std::abs(after.xInches - before.xInches) + std::abs(after.yInches - before.yInches);
        EXPECT_GT(way, isFast ? 0.15 : 0.015) << key << " was not repeated";
    }
    for (qsizetype index = layouts.size() - 2; index >= 0; --index) {
        EXPECT_TRUE(isUndoPossible());
        undoUntil(layouts[index]);
    }
    EXPECT_FALSE(isUndoPossible());
}

TEST_F(KeyHoldTest, aReleaseOfShiftGoesOnInTheSameStep) {
    const RollLayout before = saved();
    desktop.keyDown(q("shift"));
    keepMovingRight();
    desktop.keyUp(q("shift"));
    const QString fast = labelOfArtwork();
    eventually("the artwork moves on", [&] { return labelOfArtwork() != fast; });
    EXPECT_EQ(saved(), before) << "the run goes on";
    desktop.keyUp(q("Right"));
    static_cast<void>(savedAfter(before));
    expectOneStepBackTo(before);
}

TEST_F(KeyHoldTest, anotherWindowInFrontEndsTheRun) {
    const auto source = dragSource({});
    static_cast<void>(desktop.placeOf(q("drag source")));
    desktop.activate(q("orvex"));
    const RollLayout before = saved();
    keepMovingRight();
    desktop.press(q("alt+Tab"));
    eventually("the other window is in front", [this] { return desktop.activeWindow() == q("drag source"); });
    expectEndedRun(before);
    desktop.activate(q("orvex"));
    expectOneStepBackTo(before);
}

TEST_F(KeyHoldTest, aMenuEndsTheRun) {
    const RollLayout before = saved();
    keepMovingRight();
    click(Role::menuItem, q("File"));
    static_cast<void>(waitFor(Role::menuItem, q("Quit")));
    expectEndedRun(before);
    desktop.press(q("Escape"));
    desktop.press(q("Escape"));
    eventually("the menu is gone", [this] { return !shows(Role::menuItem, q("Quit")); });
    expectOneStepBackTo(before);
}

TEST_F(KeyHoldTest, aDialogEndsTheRun) {
    const RollLayout before = saved();
    keepMovingRight();
    click(Role::button, q("Add artworks"));
    static_cast<void>(waitFor(Role::field, q("File name:")));
    expectEndedRun(before);
    desktop.press(q("Escape"));
    eventually("the dialog is gone", [this] { return !shows(Role::field, q("File name:")); });
    expectOneStepBackTo(before);
}

} // namespace orvex::test
