#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QUrl>

#include <optional>

namespace orvex {

/// By which a second start of the program brings the first one's window to the front: a file "raise-window" in the
/// folder of the stores, which the second puts there and the first takes away. Main thread.
class RaiseRequests : public QObject {
    Q_OBJECT

public:
    /// Watches the given folder, or else the application folder, for requests from now on; one that lies there already
    /// is removed without a signal. Belongs to the process that holds the SessionLock. Where the folder cannot be
    /// watched or changed, no request is ever seen, and nothing is raised.
    explicit RaiseRequests(const std::optional<QUrl>& directory = std::nullopt, QObject* parent = nullptr);

    /// Asks the process that watches the folder to raise its window. Raises FileSystemError.
    static void send(const std::optional<QUrl>& directory = std::nullopt);

Q_SIGNALS:
    /// A request has been taken away.
    void raiseRequested();

private:
    /// Whether there was a request.
    [[nodiscard]] bool take() const;
    void watch(const std::optional<QUrl>& directory);

    QString requestPath_;
    QFileSystemWatcher watcher_;
};

} // namespace orvex
