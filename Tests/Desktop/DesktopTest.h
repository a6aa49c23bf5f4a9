#pragma once

#include "Desktop.h"
#include "Eventually.h"
#include "Layout/RollWorkspaceFile.h"
#include "PrivateMachine.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <optional>

namespace orvex::test {

/// A short name for what clicks and keys need all the time.
inline QString q(const char* text) {
    return QString::fromUtf8(text);
}

/// What is at once for somebody who ends a program; under the sanitizers it takes longer.
#ifdef __SANITIZE_ADDRESS__
inline constexpr qint64 promptMilliseconds = 10'000;
#else
inline constexpr qint64 promptMilliseconds = 2000;
#endif

/// So many large pictures are not read before a test has done what it does meanwhile.
inline constexpr int manyPictures = 60;

/// The program as its user meets it, on a desktop of its own, with a workspace in a temporary folder. In English, with
/// a print system that has no queues.
class DesktopTest : public ::testing::Test {
protected:
    DesktopTest() { printSystem.emplace("/usr/bin/lpstat", "#!/bin/sh\nexit 0\n"); }

    // Before the start

    /// A PNG file of one colour, at 100 pixels per inch.
    [[nodiscard]] QString picture(const QString& name, double widthInches, double heightInches) const;

    /// So many times the path of one that takes half a second to read, "large.png", at 300 pixels per inch: 36 x 36
    /// inches.
    [[nodiscard]] QStringList largePictures(int times) const;

    /// Leaves a saved layout for the next start: "art.png" of 10 x 5 inches, selected, at 20 inches from the left and
    /// 10 from the start.
    void leaveLayoutWithOneArtwork() const;

    /// The same, and "below.png" at 30 inches from the start.
    void leaveLayoutWithTwoArtworks() const;

    // The program

    /// Starts it and waits until its window has the keyboard.
    void start(const QStringList& arguments = {});

    /// Starts it and waits until its window shows its first tab; a dialog may come over it.
    void launch(const QStringList& arguments = {}, const QString& firstTab = QStringLiteral("Roll layout"));

    /// A program on the desktop, the one under test unless another is named.
    [[nodiscard]] std::unique_ptr<Program> run(const QStringList& arguments,
                                               const QString& program = QStringLiteral(ORVEX_PROGRAM)) const;

    [[nodiscard]] QStringList inWorkspace(const QStringList& more = {}) const;

    /// Another program's window, from which these files can be dragged.
    [[nodiscard]] std::unique_ptr<Program> dragSource(const QStringList& files) const;

    /// Drags what that program offers onto the board, and gives what became of it: "copy" or "refused".
    [[nodiscard]] QString dragOntoBoard(Program& source);

    /// How long the program takes to end once it was asked to, in milliseconds; it must end with status 0.
    [[nodiscard]] qint64 millisecondsToEnd();

    // What it shows

    [[nodiscard]] ScreenReader::Element waitFor(Role role, const QString& name);
    [[nodiscard]] ScreenReader::Element waitForPart(Role role, const QString& part);
    [[nodiscard]] bool shows(Role role, const QString& name);

    /// What the alert says, once there is one.
    [[nodiscard]] QString alertText();

    /// An artwork's trim frame on the board.
    [[nodiscard]] QRect frame(const QString& title) { return waitForPart(Role::image, title + q(", ")).place; }

    // What is done to it

    /// Clicks on a control as soon as it can be clicked on.
    void click(Role role, const QString& name);

    /// Turns the wheel over the column on the right until a control of it is in view.
    void scrollTo(Role role, const QString& name);

    /// Chooses from the menu bar.
    void choose(const QString& menu, const QString& command);

    /// Types into a field in place of what stands there.
    void fill(const QString& field, const QString& text);

    /// Answers a file dialog.
    void chooseFile(const QString& path);

    // What it leaves

    [[nodiscard]] QString workspace() const { return desktop.folder().path(q("workspace")); }

    [[nodiscard]] std::optional<RollWorkspaceFile> savedFile() const;
    [[nodiscard]] RollLayout saved() const;
    [[nodiscard]] RollArtwork savedArtwork(const QString& title) const;

    /// Waits until the layout on the disk is another one, and gives it.
    RollLayout savedAfter(const RollLayout& before) const;

    /// All files in the temporary folder of the programs, and hidden ones in the workspace.
    [[nodiscard]] QStringList leftovers() const;

private:
    [[nodiscard]] RollArtwork artwork(const QString& name, double x, double y) const;
    void leave(const QList<RollArtwork>& artworks) const;

protected:
    Desktop desktop;
    std::optional<ReplacedTool> printSystem; ///< without it the program finds one that does not work
    std::unique_ptr<Program> orvex;
};

} // namespace orvex::test
