#include "Files/ApplicationFolder.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

#include <cerrno>

namespace orvex::platform {

namespace {

constexpr mode_t ownerOnly = 0700; // what the XDG Base Directory Specification asks for

/// The errno value, 0 for success.
int makeOneFolder(const QString& path) {
    if (::mkdir(nativePath(path).constData(), ownerOnly) != 0) {
        return errno;
    }
    synchronizeFolderIfPossible(QFileInfo(path).path());
    return 0;
}

} // namespace

QString applicationFolder() {
    const QString named = qEnvironmentVariable("XDG_DATA_HOME");
    // One that is not absolute has to be ignored; Qt takes it, and the place would depend on the current folder.
    const QString dataFolder = named.startsWith(u'/') ? named : QDir::homePath() + QStringLiteral("/.local/share");
    return platform::standardizedPath(dataFolder + QStringLiteral("/ORVEX"));
}

QUrl storeFolder(const std::optional<QUrl>& directory, const QString& name) {
    const QString ownPlace = standardizedPath(applicationFolder() + u'/' + name);
    const QUrl folder = directory.value_or(QUrl::fromLocalFile(ownPlace));
    makeFolder(localPath(folder));
    return folder;
}

void makeFolder(const QString& path) {
    static_cast<void>(nativePath(path)); // what is no path is refused in the system's words
    const auto isThere = [&path] { return QFileInfo(path).isDir(); };
    if (isThere()) {
        return;
    }
    int code = makeOneFolder(path);
    if (code == ENOENT) {
        makeFolder(QFileInfo(path).path());
        code = makeOneFolder(path);
    }
    // Another process may have been faster.
    if (code != 0 && !(code == EEXIST && isThere())) {
        throw FileSystemError(code == EEXIST ? ENOTDIR : code, path);
    }
}

} // namespace orvex::platform
