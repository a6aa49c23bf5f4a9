// The ways in which the program is ended from outside, and what is left then.

#include "DesktopTest.h"

namespace orvex::test {

class ClosingTest : public DesktopTest {
protected:
    void startWithOneArtwork() {
        leaveLayoutWithOneArtwork();
        start();
    }

    /// The system asks the program to end, as at the end of a session at the desktop.
    void expectPromptEnd() {
        orvex->signal(SIGTERM);
        EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    }

    /// Starts with a roll that takes seconds to become a PDF.
    void startWithMuchToRender() {
        start(largePictures(4));
        static_cast<void>(waitForPart(Role::label, q("The roll contains 4 artworks.")));
    }

    [[nodiscard]] QStringList filesBeside(const QString& path) const {
        return QDir(QFileInfo(path).path()).entryList(QDir::Files | QDir::Hidden);
    }
};

// What is being done

TEST_F(ClosingTest, aTypedWidthIsApplied) {
    startWithOneArtwork();
    fill(q("Canvas width"), q("42.5"));
    expectPromptEnd();
    EXPECT_EQ(saved().widthInches, 42.5);
    EXPECT_EQ(savedArtwork(q("art.png")).widthInches, 10.0);
}

TEST_F(ClosingTest, aTypedArtworkSizeIsApplied) {
    startWithOneArtwork();
    fill(q("Artwork width"), q("8"));
    expectPromptEnd();
    EXPECT_EQ(savedArtwork(q("art.png")).widthInches, 8.0);
}

TEST_F(ClosingTest, aRunOfAnArrowKeyIsSavedAsFarAsItCame) {
    startWithOneArtwork();
    const QString before = waitForPart(Role::image, q("art.png, ")).name;
    desktop.click(frame(q("art.png")).center());
    eventually("the board has the keyboard", [&] {
        desktop.keyDown(q("Right"));
        QCoreApplication::processEvents();
        return waitForPart(Role::image, q("art.png, ")).name != before;
    });
    expectPromptEnd();
    desktop.keyUp(q("Right"));
    EXPECT_GT(savedArtwork(q("art.png")).xInches, 20.005);
}

TEST_F(ClosingTest, aLongImportKeepsWhatIsComplete) {
    launch(largePictures(manyPictures));
    eventually("the first artwork is on the roll", [this] { return !saved().items.isEmpty(); });
    expectPromptEnd();
    EXPECT_GE(saved().items.size(), 1);
    EXPECT_LT(saved().items.size(), manyPictures) << "the import was over";
    EXPECT_EQ(leftovers(), QStringList());
}

TEST_F(ClosingTest, aBrokenOffStagingLeavesNothingInTheQueue) {
    startWithMuchToRender();
    scrollTo(Role::button, q("Add roll to print queue"));
    click(Role::button, q("Add roll to print queue"));
    static_cast<void>(waitFor(Role::button, q("Cancel")));
    expectPromptEnd();
    EXPECT_EQ(QDir(workspace()).entryList({q("*.pdf*")}, QDir::Files | QDir::Hidden), QStringList());
    EXPECT_FALSE(QFile::exists(workspace() + q("/queue.json")));
    EXPECT_EQ(leftovers(), QStringList());
}

TEST_F(ClosingTest, aBrokenOffExportLeavesNoFile) {
    startWithMuchToRender();
    QDir(desktop.folder().path()).mkdir(q("exports"));
    const QString path = desktop.folder().path(q("exports/roll.pdf"));
    desktop.press(q("ctrl+e"));
    chooseFile(path);
    static_cast<void>(waitFor(Role::button, q("Cancel")));
    expectPromptEnd();
    EXPECT_EQ(filesBeside(path), QStringList());
    EXPECT_EQ(leftovers(), QStringList());
}

// What is open

TEST_F(ClosingTest, anOpenFileDialogDoesNotKeepItAlive) {
    startWithOneArtwork();
    const RollLayout before = saved();
    desktop.press(q("ctrl+o"));
    static_cast<void>(waitFor(Role::field, q("File name:")));
    expectPromptEnd();
    EXPECT_EQ(saved(), before);
}

TEST_F(ClosingTest, anOpenSaveDialogSavesNothing) {
    startWithOneArtwork();
    const QString path = desktop.folder().path(q("layout.json"));
    desktop.press(q("ctrl+s"));
    fill(q("File name:"), path);
    expectPromptEnd();
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(ClosingTest, anOpenBatchPanelAppliesNothing) {
    startWithOneArtwork();
    const RollLayout before = saved();
    choose(q("File"), q("Batch sizes & compact layout…"));
    fill(q("Common size"), q("12"));
    click(Role::button, q("Fill Selected"));
    expectPromptEnd();
    EXPECT_EQ(saved(), before);
}

TEST_F(ClosingTest, anAlertDoesNotKeepItAlive) {
    printSystem.reset();
    launch();
    EXPECT_TRUE(alertText().startsWith(q("Could not read printer status: ")));
    expectPromptEnd();
}

TEST_F(ClosingTest, anOpenMenuDoesNotKeepItAlive) {
    startWithOneArtwork();
    click(Role::menuItem, q("File"));
    static_cast<void>(waitFor(Role::menuItem, q("Quit")));
    expectPromptEnd();
}

// Other ways

TEST_F(ClosingTest, theCrossOfTheWindowAppliesATypedWidth) {
    startWithOneArtwork();
    fill(q("Canvas width"), q("42.5"));
    desktop.close(q("orvex"));
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    EXPECT_EQ(saved().widthInches, 42.5);
}

TEST_F(ClosingTest, theCrossOfTheWindowEndsALongImport) {
    start(largePictures(manyPictures));
    eventually("the first artwork is on the roll", [this] { return !saved().items.isEmpty(); });
    desktop.close(q("orvex"));
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    EXPECT_GE(saved().items.size(), 1);
    EXPECT_LT(saved().items.size(), manyPictures) << "the import was over";
    EXPECT_EQ(leftovers(), QStringList());
}

TEST_F(ClosingTest, interruptsAndHangUpsAreRequestsToEndAsWell) {
    for (const int number : {SIGINT, SIGHUP}) {
        start();
        orvex->signal(number);
        EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    }
}

} // namespace orvex::test
