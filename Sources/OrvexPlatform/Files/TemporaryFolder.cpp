#include "Files/TemporaryFolder.h"

#include "Files/FileSystemError.h"
#include "Files/LiveTemporaries.h"
#include "Files/Paths.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

#include <cstdlib>

namespace orvex::platform {

namespace {

/// Not asked of Qt: where the folder that TMPDIR names is missing, it would take the root folder for it.
QString parentFolder() {
    const QByteArray named = qgetenv("TMPDIR");
    return named.isEmpty() ? QStringLiteral("/tmp") : QDir::current().absoluteFilePath(QFile::decodeName(named));
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    const QString parent = parentFolder();
    QByteArray path = nativePath(parent + QStringLiteral("/orvex-XXXXXX"));
    if (::mkdtemp(path.data()) == nullptr) {
        throw FileSystemError::last(parent);
    }
    path_ = QFile::decodeName(path);
    LiveTemporaries::add(path_);
}

TemporaryFolder::TemporaryFolder(const QString& name) : path_(parentFolder() + u'/' + name) {
    constexpr mode_t ownerOnly = 0700;
    if (::mkdir(nativePath(path_).constData(), ownerOnly) != 0) {
        throw FileSystemError::last(path_);
    }
    LiveTemporaries::add(path_);
}

TemporaryFolder::~TemporaryFolder() {
    QDir(path_).removeRecursively();
    LiveTemporaries::remove(path_);
}

} // namespace orvex::platform
