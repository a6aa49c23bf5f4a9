#include "Files/LiveTemporaries.h"

#include <QFile>
#include <QSet>

#include <unistd.h>

#include <filesystem>
#include <mutex>
#include <system_error>

namespace orvex::platform::LiveTemporaries {

namespace {

std::mutex pathsMutex;
QSet<QString> paths;

} // namespace

void add(const QString& path) {
    const std::scoped_lock lock(pathsMutex);
    paths.insert(path);
}

void remove(const QString& path) {
    const std::scoped_lock lock(pathsMutex);
    paths.remove(path);
}

void removeAllAndExit(int status) {
    // The lock is kept: from here on no thread gets as far as making another one.
    pathsMutex.lock();
    for (const QString& path : std::as_const(paths)) {
        std::error_code ignored; // nothing more can be done about what cannot be removed
        std::filesystem::remove_all(QFile::encodeName(path).toStdString(), ignored);
    }
    ::_exit(status);
}

} // namespace orvex::platform::LiveTemporaries
