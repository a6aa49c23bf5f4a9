#pragma once

#include "NativePrint.h"
#include "Timestamp.h"

#include <QCoroTask>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>

namespace orvex {

/// The kinds of files that a file dialog offers.
enum class FileKind { image, layout, outputProfile, pdf, plainText };

/// A dialog that asks for existing files; folders cannot be chosen.
struct OpenFilesRequest {
    QString title;
    FileKind kind = FileKind::image;
    bool allowsMultiple = false;
};

/// A dialog that asks for a place to save a file.
struct SaveFileRequest {
    QString proposedName;
    FileKind kind = FileKind::pdf;
};

/// What the session needs of the desktop: dialogs, the clock, other programs, the print window. All on the main thread.
class SessionServices {
public:
    SessionServices() = default;
    SessionServices(const SessionServices&) = delete;
    SessionServices& operator=(const SessionServices&) = delete;
    virtual ~SessionServices() = default;

    /// The files that the user chose, in the dialog's order; none if it was cancelled. Returns when the dialog is
    /// closed.
    [[nodiscard]] virtual QList<QUrl> openFiles(const OpenFilesRequest& request) = 0;

    /// The place that the user chose, over an existing file only if the user agreed to that; absent if cancelled.
    [[nodiscard]] virtual std::optional<QUrl> saveFile(const SaveFileRequest& request) = 0;

    /// Shows a file in the desktop's file manager, where there is one.
    virtual void revealFile(const QUrl& file) = 0;

    /// Starts an application. The message of what kept it from starting, or nothing.
    [[nodiscard]] virtual QCoro::Task<std::optional<QString>> openApplication(const QUrl& application) = 0;

    /// Brings the window to the front, for a user who has started the program again.
    virtual void raiseWindow() = 0;

    /// Lets the field that is being typed in give its value to the session.
    virtual void commitEditing() = 0;

    /// Gets a print ready for the print window. Raises Failure if it must not be printed.
    [[nodiscard]] virtual std::unique_ptr<NativePrintOperation>
    prepareNativePrint(const NativePrintRequest& request) = 0;

    [[nodiscard]] virtual platform::Timestamp now() const { return platform::Timestamp::now(); }

    /// Waits, without holding up the event loop, until the time is over or a stop is requested.
    [[nodiscard]] virtual QCoro::Task<> sleep(std::chrono::nanoseconds duration, std::stop_token stop);
};

} // namespace orvex
