#include "Files/Paths.h"

#include "Files/FileSystemError.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

namespace orvex::platform {

QString localPath(const QUrl& url) {
    return url.scheme() == u"file" ? url.path(QUrl::FullyDecoded) : QString();
}

QUrl fileUrl(const QString& path) {
    const QString absolute = path.startsWith(u'/') ? path : QDir::currentPath() + u'/' + path;
    // Behind a link, ".." leads elsewhere than the text says: the system is asked then.
    const bool climbs = absolute.contains(QStringLiteral("/../")) || absolute.endsWith(QStringLiteral("/.."));
    if (!climbs) {
        return QUrl::fromLocalFile(standardizedPath(absolute));
    }
    const QString name = absolute.section(u'/', -1);
    const bool isFolderName = name.isEmpty() || name == u"." || name == u"..";
    return QUrl::fromLocalFile(isFolderName ? resolvingSymlinks(absolute)
                                            : resolvingSymlinks(absolute.chopped(name.size())) + u'/' + name);
}

QByteArray nativePath(const QString& path) {
    if (path.isEmpty() || path.contains(QChar(u'\0'))) {
        throw FileSystemError(ENOENT, path);
    }
    return QFile::encodeName(path);
}

QString standardizedPath(const QString& path) {
    QString cleaned = QDir::cleanPath(path);
    // Qt leaves what climbs above the root, where the system stays at the root.
    while (cleaned.startsWith(QStringLiteral("/../"))) {
        cleaned.remove(0, 3);
    }
    return cleaned == u"/.." ? QStringLiteral("/") : cleaned;
}

QString resolvingSymlinks(const QString& path) {
    std::error_code failed;
    const auto resolved = std::filesystem::weakly_canonical(nativePath(path).toStdString(), failed);
    return standardizedPath(failed ? path : QFile::decodeName(QByteArray::fromStdString(resolved.string())));
}

bool isSameFile(const QString& first, const QString& second) {
    struct stat a {};

    struct stat b {};

    return ::stat(nativePath(first).constData(), &a) == 0 && ::stat(nativePath(second).constData(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

} // namespace orvex::platform
