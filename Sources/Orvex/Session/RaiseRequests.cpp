#include "RaiseRequests.h"

#include "Files/ApplicationFolder.h"
#include "Files/FileRemoval.h"
#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Stores/StoreFiles.h"

namespace orvex {

namespace {

QString requestPathIn(const QUrl& folder) {
    return StoreFiles::path(folder, QStringLiteral("raise-window"));
}

} // namespace

RaiseRequests::RaiseRequests(const std::optional<QUrl>& directory, QObject* parent) : QObject(parent) {
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (take()) {
            Q_EMIT raiseRequested();
        }
    });
    watch(directory);
}

void RaiseRequests::send(const std::optional<QUrl>& directory) {
    platform::FileReplacer::replace(requestPathIn(platform::storeFolder(directory)), QByteArrayView());
}

bool RaiseRequests::take() const {
    try {
        platform::removeFile(requestPath_);
        return true;
    } catch (const platform::FileSystemError&) {
        return false; // there is none, as after nearly every change in the folder, or it cannot be taken away
    }
}

void RaiseRequests::watch(const std::optional<QUrl>& directory) {
    try {
        const QUrl folder = platform::storeFolder(directory);
        requestPath_ = requestPathIn(folder);
        watcher_.addPath(platform::localPath(folder));
        static_cast<void>(take()); // from before the start
    } catch (const platform::FileSystemError&) {
        // Without a folder nobody can ask.
    }
}

} // namespace orvex
