// The program while it works: it answers, and it takes nothing that it could mix up with the work.

#include "DesktopTest.h"

namespace orvex::test {

class LongWorkTest : public DesktopTest {
protected:
    /// Starts with an import that takes many seconds.
    void startWithLongImport() {
        start(largePictures(manyPictures));
        static_cast<void>(waitForPart(Role::label, q("Adding artwork ")));
    }

    [[nodiscard]] bool isImporting() { return shows(Role::button, q("Cancel")); }

    /// How long it takes from a click on a tab until the tab is open, in milliseconds.
    qint64 millisecondsToOpen(const QString& tab) {
        const QPoint place = waitFor(Role::tab, tab).place.center();
        QElapsedTimer timer;
        timer.start();
        desktop.click(place);
        eventually("the tab is open", [&] { return waitFor(Role::tab, tab).isSelected; });
        return timer.elapsed();
    }

    /// The longest time without an answer while the work goes on, in milliseconds.
    qint64 longestSilence() {
        qint64 longest = 0;
        for (bool goesOn = true; goesOn;) {
            QElapsedTimer timer;
            timer.start();
            goesOn = saved().items.size() < 4;
            static_cast<void>(desktop.screenReader().isAnswering());
            longest = std::max(longest, timer.elapsed());
        }
        return longest;
    }
};

TEST_F(LongWorkTest, tabsOpenWhileArtworksAreRead) {
    startWithLongImport();
    for (const char* tab : {"Driver diagnostics", "Device & colour log", "Roll layout"}) {
        EXPECT_LT(millisecondsToOpen(q(tab)), promptMilliseconds / 2) << tab;
    }
    EXPECT_TRUE(isImporting()) << "nothing went on meanwhile";
}

TEST_F(LongWorkTest, theWindowNeverFallsSilent) {
    startWithLongImport();
    EXPECT_LT(longestSilence(), promptMilliseconds / 4);
    EXPECT_TRUE(isImporting()) << "nothing went on meanwhile";
}

TEST_F(LongWorkTest, anImportIsCancelledAtOnce) {
    startWithLongImport();
    QElapsedTimer timer;
    timer.start();
    click(Role::button, q("Cancel"));
    static_cast<void>(waitForPart(Role::label, q("The import was cancelled.")));
    EXPECT_LT(timer.elapsed(), promptMilliseconds / 2);
    EXPECT_LT(saved().items.size(), manyPictures);
}

TEST_F(LongWorkTest, filesAreNotTakenMeanwhile) {
    startWithLongImport();
    const auto source = dragSource({picture(q("dropped.png"), 4, 4)});
    EXPECT_EQ(dragOntoBoard(*source), q("refused"));
    ASSERT_TRUE(isImporting()) << "nothing went on meanwhile";
    click(Role::button, q("Cancel"));
    static_cast<void>(waitForPart(Role::label, q("The import was cancelled.")));
    for (const RollArtwork& item : saved().items) {
        EXPECT_EQ(item.title, q("large.png"));
    }
}

TEST_F(LongWorkTest, filesAreNotTakenBelowTheBatchPanel) {
    leaveLayoutWithOneArtwork();
    start();
    const RollLayout before = saved();
    choose(q("File"), q("Batch sizes & compact layout…"));
    static_cast<void>(waitFor(Role::button, q("Fill Selected")));
    const auto source = dragSource({picture(q("dropped.png"), 4, 4)});
    EXPECT_EQ(dragOntoBoard(*source), q("refused"));
    EXPECT_EQ(saved(), before);
}

} // namespace orvex::test
