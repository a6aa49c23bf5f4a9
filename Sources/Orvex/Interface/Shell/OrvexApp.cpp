#include "OrvexApp.h"

#include "Files/ApplicationFolder.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"
#include "Theme/OrvexTheme.h"
#include "WindowState.h"

#include <QLibraryInfo>
#include <QLocale>

#include <cstdio>

namespace orvex {

namespace {

QUrl windowStateFile() {
    return WindowState::url(platform::storeFolder(OrvexQAWorkspace::directory()));
}

int complain(const QString& message) {
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    return 1;
}

} // namespace

OrvexApp::OrvexApp(QApplication& application, Arguments arguments)
    : arguments_(std::move(arguments)),
      model((useLanguage(application), services_)),
      window_(model, services_) {
    connect(&signals_, &EndingSignals::endRequested, this, &OrvexApp::end);
    connect(&model, &OrvexModel::changed, this, &OrvexApp::openArguments);
}

/// The session ends after this object: nothing that it announces then is for here.
OrvexApp::~OrvexApp() {
    model.disconnect(this);
}

/// The toolkit's own dialogs speak the language of the program, whatever the desktop's is.
void OrvexApp::useLanguage(QApplication& application) {
    OrvexTheme::apply(application);
    const QLocale locale(OrvexLanguage::current().localeIdentifier());
    if (toolkitTexts_.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&toolkitTexts_);
    }
}

int OrvexApp::run() {
    if (model.isHeldByAnother()) {
        return leaveToOther();
    }
    QApplication::setQuitOnLastWindowClosed(delegate.applicationShouldTerminateAfterLastWindowClosed());
    const auto failure = failureMessageOf([this] {
        if (const auto state = WindowState::load(windowStateFile())) {
            window_.restore(*state);
        }
    });
    if (failure) {
        isWindowStateKept_ = false;
        (void)complain(*failure);
    }
    delegate.applicationDidFinishLaunching(window_);
    model.startRefreshing();
    openArguments();
    const int status = QApplication::exec();
    saveWindowState();
    return status;
}

int OrvexApp::leaveToOther() const {
    if (const auto failure = failureMessageOf([] { RaiseRequests::send(OrvexQAWorkspace::directory()); })) {
        return complain(*failure);
    }
    if (arguments_.layout || !arguments_.images.isEmpty()) {
        return complain(
            spt("orvex 已在运行。请在其窗口中打开文件。", "orvex is already running. Open the files in its window."));
    }
    return 0;
}

/// Once, as soon as the canvas of the last time is complete: what is opened then is not mixed up with it.
void OrvexApp::openArguments() {
    if (areArgumentsOpened_ || model.busy()) {
        return;
    }
    areArgumentsOpened_ = true;
    if (arguments_.layout) {
        model.openLayoutFile(*arguments_.layout);
    } else {
        model.importFiles(arguments_.images);
    }
}

void OrvexApp::saveWindowState() const {
    if (!isWindowStateKept_) {
        return;
    }
    // Where the window stood is not worth a message to someone who is leaving.
    (void)failureMessageOf([this] { window_.state().save(windowStateFile()); });
}

/// Closes what is open from the top down, as the user would.
void OrvexApp::end() {
    while (QWidget* dialog = QApplication::activeModalWidget()) {
        if (!dialog->close()) {
            break;
        }
    }
    window_.close();
    QApplication::quit();
}

} // namespace orvex
