#pragma once

#include "OrvexModel.h"
#include "Shell/AppDelegate.h"
#include "Shell/Arguments.h"
#include "Shell/DesktopServices.h"
#include "Shell/EndingSignals.h"
#include "Shell/MainWindow.h"

#include <QApplication>
#include <QTranslator>

namespace orvex {

/// The program: the one session, the one window over it, and the task that keeps it up to date. Main thread.
class OrvexApp : public QObject {
    Q_OBJECT

public:
    /// Lives no longer than the application.
    OrvexApp(QApplication& application, Arguments arguments);
    ~OrvexApp() override;

    /// Opens the window and returns when the program ends. If another process has the session, its window is brought
    /// to the front instead.
    [[nodiscard]] int run();

private:
    void useLanguage(QApplication& application);
    [[nodiscard]] int leaveToOther() const;
    void openArguments();
    void saveWindowState() const;
    void end();

    AppDelegate delegate;
    const Arguments arguments_;
    bool areArgumentsOpened_ = false;
    DesktopServices services_;
    QTranslator toolkitTexts_;
    OrvexModel model;
    MainWindow window_;
    EndingSignals signals_;
    bool isWindowStateKept_ = true; ///< one that cannot be read stays as it is
};

} // namespace orvex
