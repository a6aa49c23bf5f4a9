// How the program is started: once more, with files, with options.

#include "DesktopTest.h"

namespace orvex::test {

class SecondStartTest : public DesktopTest {
protected:
    /// Starts the program once more and gives what it says; it must end with that status.
    QString sayingOf(const QStringList& arguments, int status) const {
        QProcessEnvironment environment = desktop.environment();
        environment.remove(q("DISPLAY"));
        Program program(QStringLiteral(ORVEX_PROGRAM), arguments, environment);
        EXPECT_EQ(program.exitStatus(), status);
        return QString::fromUtf8(program.output());
    }

    void startOnceMore() {
        const auto second = run(inWorkspace());
        EXPECT_EQ(second->exitStatus(), 0);
        eventually("the first window is in front", [this] { return desktop.activeWindow() == q("orvex"); });
        EXPECT_TRUE(orvex->isRunning());
    }
};

TEST_F(SecondStartTest, bringsTheFirstWindowToTheFront) {
    start();
    const auto other = dragSource({});
    desktop.activate(q("drag source"));
    startOnceMore();
}

TEST_F(SecondStartTest, bringsBackAMinimizedWindow) {
    start();
    desktop.minimizeActiveWindow();
    eventually("the window is gone", [this] { return desktop.activeWindow() != q("orvex"); });
    startOnceMore();
}

TEST_F(SecondStartTest, opensALayoutThatIsNamed) {
    leaveLayoutWithOneArtwork();
    const QString file = desktop.folder().path(q("kept layout.json"));
    ASSERT_TRUE(QFile::rename(workspace() + q("/roll-layout.json"), file));
    start({file});
    static_cast<void>(waitForPart(Role::image, q("art.png, 10.00 by 5.00 inches, trim frame 20.00 inches")));
    EXPECT_EQ(saved(), RollWorkspaceFile::decode(TemporaryFolder::read(file)).layout);
}

TEST_F(SecondStartTest, addsImagesThatAreNamedToTheLayoutOfTheLastTime) {
    leaveLayoutWithOneArtwork();
    const RollArtwork kept = savedArtwork(q("art.png"));
    start({picture(q("second.png"), 4, 4), picture(q("第三.png"), 6, 4)});
    eventually("both are added", [this] { return saved().items.size() == 3; });
    EXPECT_EQ(savedArtwork(q("art.png")), kept);
    EXPECT_EQ(savedArtwork(q("第三.png")).widthInches, 6.0);
}

TEST_F(SecondStartTest, tellsOfAFileThatIsNoLayoutAndKeepsTheOneOfTheLastTime) {
    leaveLayoutWithOneArtwork();
    const RollLayout before = saved();
    launch({desktop.folder().write(q("no-layout.json"), "[1, 2, 3]")});
    static_cast<void>(waitFor(Role::label, q("Could not complete action")));
    click(Role::button, q("OK"));
    eventually("the window is in front", [this] { return desktop.activeWindow() == q("orvex"); });
    static_cast<void>(waitForPart(Role::image, q("art.png, ")));
    EXPECT_EQ(saved(), before);
}

TEST_F(SecondStartTest, tellsOfImagesThatCannotBeRead) {
    launch({desktop.folder().write(q("broken.png"), "no picture")});
    EXPECT_TRUE(alertText().startsWith(q("broken.png：")));
}

TEST_F(SecondStartTest, needsNoDisplayToSayWhatItIs) {
    EXPECT_EQ(sayingOf({q("--version")}, 0), q("orvex 0.8.4\n"));
    EXPECT_TRUE(sayingOf({q("--help")}, 0).contains(q("usage: orvex [options] [LAYOUT.json | IMAGE...]")));
}

TEST_F(SecondStartTest, refusesAWrongUsage) {
    for (const QStringList& arguments : {QStringList{q("--nonsense")},
                                         {q("a.json"), q("b.json")},
                                         {q("a.json"), q("b.png")},
                                         {q("--orvex-qa-workspace")},
                                         {q("--orvex-qa-workspace"), q("relative")}}) {
        EXPECT_TRUE(sayingOf(arguments, 2).contains(q("usage: orvex"))) << arguments.join(u' ').toStdString();
    }
}

TEST_F(SecondStartTest, speaksTheLanguageOfTheUser) {
    desktop.setLanguage(q("zh_CN.UTF-8"));
    EXPECT_TRUE(sayingOf({q("--help")}, 0).contains(q("用法：orvex")));
    launch({}, q("卷布排版"));
    static_cast<void>(waitFor(Role::button, q("添加作品")));
    desktop.press(q("ctrl+q"));
    EXPECT_EQ(orvex->exitStatus(), 0);
}

} // namespace orvex::test
