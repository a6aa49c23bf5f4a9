#include "Board/RollBoardView.h"
#include "InChinese.h"
#include "WindowTest.h"

#include <QAction>
#include <QDialog>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QStackedWidget>
#include <QTabBar>

namespace orvex::test {

namespace {

class MainWindowTest : public WindowTest {
protected:
    [[nodiscard]] QAction& action(const char* name) const { return *find<QAction>(name); }

    /// The titles of a menu's items, separators as dashes.
    [[nodiscard]] QStringList titles(int menu) const {
        QStringList titles;
        for (const QAction* each : window->menuBar()->actions()[menu]->menu()->actions()) {
            titles.append(each->isSeparator() ? QStringLiteral("-") : each->text());
        }
        return titles;
    }

    /// Whether the window takes what is dragged onto it, and with which action.
    bool drag(const QMimeData& data) const {
        QDragEnterEvent event({100, 100}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    void drop(const QMimeData& data) const {
        QDropEvent event({100, 100}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &event);
    }
};

} // namespace

TEST_F(MainWindowTest, ItIsCalledAfterTheProgramAndHasItsSizes) {
    start();
    open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("orvex"));
    EXPECT_EQ(window->size(), QSize(1440, 940));
    EXPECT_EQ(window->centralWidget()->minimumSize(), QSize(1120, 740));
}

TEST_F(MainWindowTest, TheMenuOfFilesHasTheCommandsInTheirGroups) {
    start();
    open();
    EXPECT_EQ(titles(0),
              (QStringList{QStringLiteral("Add artworks…"), QStringLiteral("Export PDF…"), QStringLiteral("-"),
                           QStringLiteral("Save layout…"), QStringLiteral("Open layout…"),
                           QStringLiteral("Batch sizes && compact layout…"), QStringLiteral("-"),
                           QStringLiteral("Print roll…"), QStringLiteral("-"), QStringLiteral("Quit")}));
}

TEST_F(MainWindowTest, MenusSpeakChineseWhereTheProgramDoes) {
    const InChinese chinese;
    start();
    open();
    EXPECT_EQ(titles(0).first(), QStringLiteral("添加作品…"));
    EXPECT_EQ(window->menuBar()->actions()[0]->text(), QStringLiteral("文件"));
}

TEST_F(MainWindowTest, CommandsHaveTheirShortcuts) {
    start();
    open();
    EXPECT_EQ(action("addArtworksAction").shortcut().toString(), QStringLiteral("Ctrl+O"));
    EXPECT_EQ(action("exportPDFAction").shortcut().toString(), QStringLiteral("Ctrl+E"));
    EXPECT_EQ(action("saveLayoutAction").shortcut().toString(), QStringLiteral("Ctrl+S"));
    EXPECT_EQ(action("openLayoutAction").shortcut().toString(), QStringLiteral("Ctrl+Shift+O"));
    EXPECT_EQ(action("printRollAction").shortcut().toString(), QStringLiteral("Ctrl+P"));
    EXPECT_TRUE(action("batchSizesAction").shortcut().isEmpty());
}

TEST_F(MainWindowTest, AShortcutRunsItsCommand) {
    start();
    open();
    QTest::keyClick(window.get(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(services.openRequests.size(), 1);
    EXPECT_EQ(services.openRequests.first().kind, FileKind::image);
    QTest::keyClick(window.get(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(services.openRequests.last().kind, FileKind::layout);
    QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(services.saveRequests.last().kind, FileKind::layout);
}

TEST_F(MainWindowTest, AnEmptyCanvasIsNeitherExportedNorSizedInBatches) {
    start();
    open();
    EXPECT_TRUE(action("addArtworksAction").isEnabled());
    EXPECT_TRUE(action("saveLayoutAction").isEnabled());
    EXPECT_FALSE(action("exportPDFAction").isEnabled());
    EXPECT_FALSE(action("batchSizesAction").isEnabled());
    EXPECT_FALSE(action("printRollAction").isEnabled());
}

TEST_F(MainWindowTest, WorkInTheBackgroundGreysTheCommands) {
    startWith(1);
    open();
    EXPECT_TRUE(action("batchSizesAction").isEnabled());
    const HeldBusy busy(*model);
    turn();
    for (const char* name :
         {"addArtworksAction", "exportPDFAction", "saveLayoutAction", "openLayoutAction", "batchSizesAction"}) {
        EXPECT_FALSE(action(name).isEnabled()) << name;
    }
}

TEST_F(MainWindowTest, TheBatchPanelGreysTheCommands) {
    startWith(1);
    open();
    QMetaObject::invokeMethod(&action("batchSizesAction"), &QAction::trigger);
    turn();
    EXPECT_TRUE(model->batchSizingPresented());
    ASSERT_NE(QApplication::activeModalWidget(), nullptr);
    for (const char* name : {"addArtworksAction", "saveLayoutAction", "openLayoutAction", "batchSizesAction"}) {
        EXPECT_FALSE(action(name).isEnabled()) << name;
    }
    QApplication::activeModalWidget()->close();
    turn();
    EXPECT_FALSE(model->batchSizingPresented());
}

TEST_F(MainWindowTest, UndoAndRedoFollowTheHistory) {
    startWith(1);
    open();
    EXPECT_FALSE(action("undoLayoutAction").isEnabled());
    model->rotateSelectedArtwork();
    turn();
    activate();
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    settle();
    turn();
    EXPECT_EQ(model->selectedArtwork()->rotationQuarterTurns, 0);
    EXPECT_TRUE(action("redoLayoutAction").isEnabled());
}

TEST_F(MainWindowTest, TabsFollowTheSessionAndTheOtherWayRound) {
    start();
    open();
    auto* selector = find<QTabBar>("tabSelector");
    EXPECT_EQ(selector->tabText(0), QStringLiteral("Roll layout"));
    EXPECT_EQ(selector->tabText(1), QStringLiteral("Print queue · 0"));
    EXPECT_EQ(selector->tabText(2), QStringLiteral("Driver diagnostics"));
    EXPECT_EQ(selector->tabText(3), QStringLiteral("Device && colour log"));
    model->setTab(3);
    turn();
    EXPECT_EQ(selector->currentIndex(), 3);
    QTest::mouseClick(selector, Qt::LeftButton, Qt::NoModifier, selector->tabRect(1).center());
    EXPECT_EQ(model->tab(), 1);
}

TEST_F(MainWindowTest, ClosingGivesWhatIsTypedToTheSession) {
    startWith(1);
    open();
    auto* field = find<QLineEdit>("artworkWidthField");
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("24"));
    window->close();
    EXPECT_EQ(model->selectedArtwork()->widthInches, 24.0);
}

TEST_F(MainWindowTest, TheSizeAndTheBordersInsideAreRemembered) {
    start();
    open().resize(1300, 800);
    desktop.setFolder(QStringLiteral("/pictures"));
    turn();
    const WindowState state = window->state();
    EXPECT_EQ(state.splitters.keys(), (QStringList{QStringLiteral("workspaceSplitter")}));
    DesktopServices others;
    MainWindow next(*model, others);
    next.restore(state);
    EXPECT_EQ(next.size(), QSize(1300, 800));
    EXPECT_EQ(others.folder(), QStringLiteral("/pictures"));
}

TEST_F(MainWindowTest, ADamagedStateOfTheWindowDoesNoHarm) {
    start();
    open().restore(
        {.geometry = "no geometry", .splitters = {{QStringLiteral("workspaceSplitter"), "x"}}, .folder = {}});
    EXPECT_EQ(window->size(), QSize(1440, 940));
}

TEST_F(MainWindowTest, DroppedImagesAreImported) {
    start();
    open();
    QMimeData data;
    data.setUrls({picture(QStringLiteral("a.png"), 100, 80), picture(QStringLiteral("b.png"), 80, 100)});
    EXPECT_TRUE(drag(data));
    drop(data);
    settle();
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

TEST_F(MainWindowTest, DroppedFilesOfOtherKindsAreNamed) {
    start();
    open();
    const QString path = folder.path(QStringLiteral("notes.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("nothing to print");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path), QUrl(QStringLiteral("https://example.com/a.png"))});
    EXPECT_TRUE(drag(data));
    drop(data);
    settle();
    EXPECT_TRUE(model->rollLayout().items.isEmpty());
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(QStringLiteral("notes.txt")));
    EXPECT_TRUE(model->errorMessage()->contains(QStringLiteral("a.png")));
}

TEST_F(MainWindowTest, NothingIsTakenWhileTheSessionIsLocked) {
    startWith(1);
    open();
    QMimeData data;
    data.setUrls({picture(QStringLiteral("a.png"), 100, 80)});
    const HeldBusy busy(*model);
    EXPECT_FALSE(drag(data));
    drop(data);
    EXPECT_EQ(model->rollLayout().items.size(), 1);
}

TEST_F(MainWindowTest, ADraggedTextIsNotTaken) {
    start();
    open();
    QMimeData data;
    data.setText(QStringLiteral("/tmp/a.png"));
    EXPECT_FALSE(drag(data));
}

TEST_F(MainWindowTest, UndoInTheMiddleOfADragTakesTheDragBack) {
    startWith(1);
    open();
    const QUuid id = model->rollLayout().items.first().id;
    model->moveArtwork(id, 3.0, std::nullopt);
    const RollLayout before = model->rollLayout();
    ASSERT_TRUE(model->beginArrangeGesture());
    model->dragArtwork(id, 10.0, 0.0);
    ASSERT_NE(model->rollLayout(), before);
    turn();
    action("undoLayoutAction").trigger();
    EXPECT_EQ(model->rollLayout(), before);
    EXPECT_FALSE(model->arrangingGesture());
}

TEST_F(MainWindowTest, ADialogEndsADragAsFarAsItCame) {
    startWith(1);
    open();
    auto* board = find<RollBoardView>("rollBoardView");
    const QPoint grip = board->frameOf(model->rollLayout().items.first().id).center().toPoint();
    QTest::mousePress(board->viewport(), Qt::LeftButton, Qt::NoModifier, grip);
    QTest::mouseMove(board->viewport(), grip + QPoint(20, 0));
    QTest::mouseMove(board->viewport(), grip + QPoint(100, 0));
    ASSERT_TRUE(model->arrangingGesture());
    QDialog dialog(window.get());
    dialog.open();
    EXPECT_FALSE(model->arrangingGesture());
    EXPECT_GT(model->rollLayout().items.first().xInches, 0.0);
}

} // namespace orvex::test
