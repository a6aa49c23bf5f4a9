#include "Files/TemporaryFolder.h"

#include "Files/FileSystemError.h"
#include "Files/LiveTemporaries.h"
#include "Files/Paths.h"

#include <QDir>
#include <QFile>

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

TemporaryFolder::~TemporaryFolder() {
    QDir(path_).removeRecursively();
    LiveTemporaries::remove(path_);
}

} // namespace orvex::platform
