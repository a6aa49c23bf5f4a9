#include "SessionLock.h"

#include "Files/ApplicationFolder.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <QDeadlineTimer>

#include <thread>

namespace orvex {

namespace {

constexpr std::chrono::milliseconds betweenAttempts{20};

std::optional<platform::FolderLock> lockWithPatience(const QString& folder) {
    const QDeadlineTimer end(SessionLock::patience);
    auto lock = platform::FolderLock::tryLock(folder);
    while (!lock && !end.hasExpired()) {
        std::this_thread::sleep_for(betweenAttempts);
        lock = platform::FolderLock::tryLock(folder);
    }
    return lock;
}

} // namespace

SessionLock SessionLock::acquire(const std::optional<QUrl>& directory) {
    try {
        auto lock = lockWithPatience(platform::localPath(platform::storeFolder(directory)));
        return lock ? SessionLock(*std::move(lock)) : SessionLock(State::heldByAnother);
    } catch (const platform::FileSystemError&) {
        // Whatever is wrong with the folder, the stores themselves will say; others are not kept out of it.
        return SessionLock(State::impossible);
    }
}

} // namespace orvex
