#pragma once

#include "SessionServices.h"

#include <QPointer>
#include <QWidget>

namespace orvex {

/// The desktop as the session meets it: Qt's dialogs over the main window, the desktop's file manager. Main thread.
class DesktopServices : public SessionServices {
public:
    /// The window over which dialogs open; without one they stand alone.
    void setWindow(QWidget* window) { window_ = window; }

    /// The folder in which the next dialog opens; empty for the home folder.
    void setFolder(const QString& folder) { folder_ = folder; }

    [[nodiscard]] const QString& folder() const { return folder_; }

    [[nodiscard]] QList<QUrl> openFiles(const OpenFilesRequest& request) override;
    [[nodiscard]] std::optional<QUrl> saveFile(const SaveFileRequest& request) override;
    void revealFile(const QUrl& file) override;
    [[nodiscard]] QCoro::Task<std::optional<QString>> openApplication(const QUrl& application) override;
    void raiseWindow() override;
    void commitEditing() override;

    /// Raises OrvexError: this version has no print window of its own yet.
    [[nodiscard]] std::unique_ptr<NativePrintOperation> prepareNativePrint(const NativePrintRequest& request) override;

private:
    [[nodiscard]] QString startFolder() const;

    QPointer<QWidget> window_;
    QString folder_;
};

} // namespace orvex
