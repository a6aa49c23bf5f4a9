#include "MainWindow.h"

#include "BatchSizing/BatchSizingPresenter.h"
#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "Shell/AlertPresenter.h"
#include "Shell/ContentView.h"
#include "Shell/DesktopServices.h"
#include "Shell/FocusKeeper.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>

namespace orvex {

namespace {

constexpr int batchPictureSide = 256; // as large as a picture in the batch panel's drawing becomes

} // namespace

MainWindow::MainWindow(OrvexModel& session, DesktopServices& services)
    : session_(session),
      services_(services),
      content_(new ContentView(session, pictures_)),
      batchSizing_(new BatchSizingPresenter(session, this, [this](const RollArtwork& artwork) {
          return pictures_.picture(session_.metadataFor(artwork), batchPictureSide);
      })) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("orvex"));
    setAcceptDrops(true);
    content_->setMinimumSize(minimumContentSize);
    setCentralWidget(content_);
    resize(defaultSize);
    buildMenus();
    services_.setWindow(this);
    new FocusKeeper(*this);
    new AlertPresenter(session_, *this);
    connect(&pictures_, &BoardPictures::pictureReady, batchSizing_, &BatchSizingPresenter::updatePictures);
    connect(&session_, &OrvexModel::changed, this, &MainWindow::syncFromSession);
    syncFromSession();
}

MainWindow::~MainWindow() {
    delete takeCentralWidget(); // it uses what goes with this object
    services_.setWindow(nullptr);
}

// Menus

void MainWindow::buildMenus() {
    QMenu* file = addMenu(spt("文件", "File"));
    addCommands(*file, MenuCommands::rollCommands(session_));
    file->addSeparator();
    addCommands(*file, MenuCommands::layoutCommands(session_));
    file->addSeparator();
    addCommands(*file, MenuCommands::printCommands(session_));
    file->addSeparator();
    addCommands(*file, {{.name = QStringLiteral("quitAction"),
                         .title = spt("退出", "Quit"),
                         .shortcut = QKeySequence(Qt::CTRL | Qt::Key_Q),
                         .run = [this] { close(); },
                         .isEnabled = [] { return true; }}});
    addCommands(*addMenu(spt("编辑", "Edit")), MenuCommands::editCommands(session_));
    addCommands(*addMenu(spt("显示", "View")), MenuCommands::viewCommands(session_));
}

QMenu* MainWindow::addMenu(const QString& title) {
    return menuBar()->addMenu(controls::literal(title));
}

void MainWindow::addCommands(QMenu& menu, const QList<Command>& commands) {
    for (const Command& command : commands) {
        QAction* action = menu.addAction(controls::literal(command.title));
        action->setObjectName(command.name);
        action->setShortcut(command.shortcut);
        connect(action, &QAction::triggered, this, [this, run = command.run] {
            services_.commitEditing(); // a shortcut takes the keyboard from no field
            run();
        });
        commands_.emplace_back(command, action);
    }
}

void MainWindow::syncFromSession() {
    for (const auto& [command, action] : commands_) {
        action->setEnabled(command.isEnabled());
    }
}

// Size and place

WindowState MainWindow::state() const {
    return {.geometry = saveGeometry(), .splitters = content_->splitterStates(), .folder = services_.folder()};
}

void MainWindow::restore(const WindowState& state) {
    restoreGeometry(state.geometry);
    content_->restoreSplitters(state.splitters);
    services_.setFolder(state.folder);
}

/// What is being typed reaches the session before it ends.
void MainWindow::closeEvent(QCloseEvent* event) {
    services_.commitEditing();
    session_.endKeyboardNudge();
    session_.stopRefreshing();
    QMainWindow::closeEvent(event);
}

/// Return presses the button that has the keyboard, as Space does. Held down it presses once.
void MainWindow::keyPressEvent(QKeyEvent* event) {
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (button == nullptr || !isReturn) {
        QMainWindow::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        button->click();
    }
}

// Files that are dropped

/// The same as the command for adding artworks, under the same locks.
void MainWindow::takeIfImportable(QDropEvent& event) const {
    const bool isFree = !session_.busy() && !session_.batchSizingPresented();
    if (!isFree || !event.mimeData()->hasUrls()) {
        event.ignore();
        return;
    }
    event.setDropAction(Qt::CopyAction); // the files stay where they are
    event.accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    takeIfImportable(*event);
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
    takeIfImportable(*event);
}

void MainWindow::dropEvent(QDropEvent* event) {
    takeIfImportable(*event);
    if (event->isAccepted()) {
        services_.commitEditing();
        session_.importFiles(event->mimeData()->urls());
    }
}

} // namespace orvex
