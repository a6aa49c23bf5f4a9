#pragma once

#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <stdexcept>

namespace orvex::test {

/// The bytes of all regular files below a folder by their paths, hidden ones too; no link is followed.
inline QMap<QString, QByteArray> contentOf(const QString& folder) {
    QMap<QString, QByteArray> content;
    QDirIterator items(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (items.hasNext()) {
        QFile file(items.next());
        if (!file.open(QIODevice::ReadOnly)) {
            throw std::runtime_error("a test file cannot be read");
        }
        content.insert(file.fileName(), file.readAll());
    }
    return content;
}

/// The paths of all folders below a folder, each after the one that it is in.
inline QStringList foldersIn(const QString& folder) {
    QStringList paths;
    QDirIterator items(folder, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (items.hasNext()) {
        paths.append(items.next());
    }
    paths.sort();
    return paths;
}

/// Whether a file is one that was not yet given its final name.
inline bool isTemporary(const QString& path) {
    static const QRegularExpression form(
        QStringLiteral("/\\.[^/]+\\.[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.tmp\\z"));
    return form.match(path).hasMatch();
}

inline QStringList temporariesIn(const QString& folder) {
    QStringList paths;
    for (const QString& path : contentOf(folder).keys()) {
        if (isTemporary(path)) {
            paths.append(path);
        }
    }
    return paths;
}

/// The name of a temporary file for a file, as another process would give it.
inline QString temporaryFor(const QString& file, int number = 0) {
    const QFileInfo info(file);
    return QStringLiteral("%1/.%2.01234567-89ab-cdef-0123-%3.tmp")
        .arg(info.path(), info.fileName())
        .arg(number, 12, 16, QLatin1Char('0'));
}

} // namespace orvex::test
