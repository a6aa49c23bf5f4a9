#pragma once

#include "Board/BoardPictures.h"
#include "OrvexModel.h"
#include "Shell/MenuCommands.h"
#include "WindowState.h"

#include <QMainWindow>

#include <utility>
#include <vector>

namespace orvex {

class BatchSizingPresenter;
class ContentView;
class DesktopServices;

/// The one window: the menus, the content, what opens over it, and files that are dropped on it. Main thread.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    static constexpr QSize minimumContentSize{1120, 740};
    static constexpr QSize defaultSize{1440, 940};

    MainWindow(OrvexModel& session, DesktopServices& services);
    ~MainWindow() override;

    void syncFromSession();

    /// How the user arranged the window.
    [[nodiscard]] WindowState state() const;
    void restore(const WindowState& state);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildMenus();
    QMenu* addMenu(const QString& title);
    void addCommands(QMenu& menu, const QList<Command>& commands);
    void takeIfImportable(QDropEvent& event) const;

    OrvexModel& session_;
    DesktopServices& services_;
    BoardPictures pictures_{this};
    ContentView* content_;
    BatchSizingPresenter* batchSizing_;
    std::vector<std::pair<Command, QAction*>> commands_;
};

} // namespace orvex
