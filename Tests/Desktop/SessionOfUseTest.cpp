// One sitting of the program's user, from the first artwork to the next morning.

#include "DesktopTest.h"
#include "Layout/RollInteraction.h"

#include <cmath>

namespace orvex::test {

class SessionOfUseTest : public DesktopTest {
protected:
    void dropTwoArtworks() {
        const auto source = dragSource({picture(q("poster.png"), 10, 5), picture(q("square.png"), 8, 8)});
        EXPECT_EQ(dragOntoBoard(*source), q("copy"));
        eventually("both artworks are on the roll", [this] { return saved().items.size() == 2; });
        desktop.activate(q("orvex"));
    }

    /// Does something and gives the layout that it leads to.
    RollLayout after(const std::function<void()>& action) {
        const RollLayout before = saved();
        action();
        return savedAfter(before);
    }

    void undoLeadsTo(const RollLayout& layout) {
        desktop.press(q("ctrl+z"));
        eventually("undo leads back", [&] { return saved() == layout; });
        desktop.press(q("ctrl+shift+z"));
        eventually("redo leads forth", [&] { return saved() != layout; });
    }

    /// How many points of the screen an inch of the poster takes.
    double scale() { return frame(q("poster.png")).width() / savedArtwork(q("poster.png")).trimRectInches().width; }

    void expectWholePdf(const QString& path) {
        EXPECT_NO_THROW(outputOf(q("qpdf"), {q("--check"), path}, desktop.environment()));
        const RollLayout layout = saved();
        const QString size =
            q("%1 x %2 pts").arg(QString::number(layout.widthInches * 72), QString::number(layout.lengthInches() * 72));
        EXPECT_TRUE(QString::fromUtf8(outputOf(q("pdfinfo"), {path}, desktop.environment())).contains(size))
            << outputOf(q("pdfinfo"), {path}, desktop.environment()).constData() << size.toStdString();
    }

    void moveWithTheMouse() {
        const RollLayout before = saved();
        const double x = savedArtwork(q("poster.png")).xInches;
        const QPoint grip = frame(q("poster.png")).center();
        const double inches = 200 / scale();
        static_cast<void>(after([&] { desktop.drag(grip, grip + QPoint(200, 0)); }));
        const RollArtwork moved = savedArtwork(q("poster.png"));
        EXPECT_NEAR(moved.xInches, x + inches, 0.25);
        EXPECT_EQ(std::fmod(moved.xInches, 0.25), 0.0) << "it snaps";
        undoLeadsTo(before);
    }

    void scaleByTheHandle() {
        const RollLayout before = saved();
        const RollArtwork artwork = savedArtwork(q("poster.png"));
        const QPoint handle = frame(q("poster.png")).bottomRight() - QPoint(8, 8);
        const double inches = 60 / scale();
        static_cast<void>(after([&] { desktop.drag(handle, handle + QPoint(60, 60)); }));
        const double expected = RollInteraction::resizedWidth(artwork.widthInches, artwork.heightInches(), inches,
                                                              inches, artwork.xInches, before.widthInches);
        EXPECT_NEAR(savedArtwork(q("poster.png")).widthInches, expected, 0.5);
        undoLeadsTo(before);
    }

    void nudgeByKeys() {
        const RollLayout before = saved();
        const double x = savedArtwork(q("poster.png")).xInches;
        static_cast<void>(after([&] { desktop.hold(q("Left"), 1000); }));
        EXPECT_LT(savedArtwork(q("poster.png")).xInches, x - 0.015) << "more than one step";
        undoLeadsTo(before);
    }

    void setSizesOfAll() {
        const RollLayout before = saved();
        choose(q("File"), q("Batch sizes & compact layout…"));
        fill(q("Common size"), q("12"));
        click(Role::button, q("Fill Selected"));
        click(Role::button, q("Calculate Preview"));
        static_cast<void>(after([&] { click(Role::button, q("Apply Sizes & Layout")); }));
        EXPECT_EQ(savedArtwork(q("poster.png")).widthInches, 12.0);
        EXPECT_EQ(savedArtwork(q("square.png")).widthInches, 12.0);
        undoLeadsTo(before);
    }

    void packAfterMovingAway() {
        const QPoint grip = frame(q("poster.png")).center();
        RollLayout expected = after([&] { desktop.drag(grip, grip + QPoint(40, 100)); });
        expected.autoArrange(0.0);
        EXPECT_EQ(after([&] { click(Role::button, q("Auto Pack")); }), expected);
    }

    void stageIntoTheQueue() {
        scrollTo(Role::button, q("Add roll to print queue"));
        click(Role::button, q("Add roll to print queue"));
        static_cast<void>(waitFor(Role::tab, q("Print queue · 1")));
        const QStringList pdfs = QDir(workspace()).entryList({q("*.pdf")});
        ASSERT_EQ(pdfs.size(), 1);
        expectWholePdf(workspace() + u'/' + pdfs.first());
        EXPECT_TRUE(
            TemporaryFolder::read(workspace() + q("/queue.json")).contains(pdfs.first().section(u'.', 0, 0).toUtf8()));
    }

    void exportToFile() {
        const QString path = desktop.folder().path(q("my roll.pdf"));
        desktop.press(q("ctrl+e"));
        chooseFile(path);
        eventually("the file is shown", [this] { return !desktop.fileManager().shown().isEmpty(); });
        EXPECT_EQ(desktop.fileManager().shown(), QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)});
        expectWholePdf(path);
    }
};

TEST_F(SessionOfUseTest, leadsFromDroppedFilesToAPdfAndIsThereOnTheNextDay) {
    start();
    dropTwoArtworks();
    moveWithTheMouse();
    scaleByTheHandle();
    nudgeByKeys();
    setSizesOfAll();
    packAfterMovingAway();
    stageIntoTheQueue();
    exportToFile();
    const RollWorkspaceFile left = *savedFile();
    desktop.press(q("ctrl+q"));
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    EXPECT_EQ(leftovers(), QStringList());

    start();
    const QRect shown = frame(q("poster.png"));
    EXPECT_NEAR(shown.height(), shown.width() * 11.0 / 17.0, 3.0) << "12 x 6 inches and the borders";
    EXPECT_FALSE(waitFor(Role::button, q("Undo Layout")).isEnabled);
    desktop.press(q("ctrl+q"));
    EXPECT_LT(millisecondsToEnd(), promptMilliseconds);
    EXPECT_EQ(*savedFile(), left);
}

} // namespace orvex::test
