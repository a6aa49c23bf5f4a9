#include "DesktopServices.h"

#include "Controls/InchFieldView.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Shell/FileKinds.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>

namespace orvex {

namespace {

void openFolderOf(const QUrl& file) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(platform::localPath(file)).absolutePath()));
}

/// What file managers of the common desktops answer to.
QDBusMessage showItemsCall(const QUrl& file) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{file.toString(QUrl::FullyEncoded)} << QString();
    return call;
}

/// The files of a dialog, or none if it was cancelled. The folder is remembered for the next one.
QList<QUrl> run(QFileDialog& dialog, QString& folder) {
    if (dialog.exec() != QDialog::Accepted) {
        return {};
    }
    folder = dialog.directory().absolutePath();
    return dialog.selectedUrls();
}

} // namespace

QList<QUrl> DesktopServices::openFiles(const OpenFilesRequest& request) {
    QFileDialog dialog(window_, request.title, startFolder());
    dialog.setObjectName(QStringLiteral("openFilesDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(request.allowsMultiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    dialog.setNameFilters(FileKinds::filters(request.kind));
    return run(dialog, folder_);
}

std::optional<QUrl> DesktopServices::saveFile(const SaveFileRequest& request) {
    QFileDialog dialog(window_, {}, startFolder());
    dialog.setObjectName(QStringLiteral("saveFileDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(FileKinds::filters(request.kind));
    dialog.setDefaultSuffix(FileKinds::suffix(request.kind));
    dialog.selectFile(request.proposedName);
    const QList<QUrl> chosen = run(dialog, folder_);
    return chosen.isEmpty() ? std::nullopt : std::optional(chosen.first());
}

QString DesktopServices::startFolder() const {
    return folder_.isEmpty() ? QDir::homePath() : folder_;
}

/// Without a file manager that can mark a file, its folder opens.
void DesktopServices::revealFile(const QUrl& file) {
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(showItemsCall(file)));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, file] {
        if (QDBusPendingReply<>(*watcher).isError()) {
            openFolderOf(file);
        }
        watcher->deleteLater();
    });
}

QCoro::Task<std::optional<QString>> DesktopServices::openApplication(const QUrl& application) {
    if (QDesktopServices::openUrl(application)) {
        co_return std::nullopt;
    }
    co_return spt("无法打开应用程序：%1", "Could not open the application: %1").arg(platform::localPath(application));
}

void DesktopServices::raiseWindow() {
    if (!window_) {
        return;
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void DesktopServices::commitEditing() {
    if (window_) {
        CommittingField::commitEditingIn(*window_);
    }
}

std::unique_ptr<NativePrintOperation> DesktopServices::prepareNativePrint(const NativePrintRequest&) {
    throw OrvexError::invalid(spt("此版本尚不能打开打印窗口。请改为导出 PDF；尚未提交打印。",
                                  "This version cannot open the print window yet. Export the PDF; printing has not "
                                  "been submitted."));
}

} // namespace orvex
