#pragma once

#include "Files/FileReplacer.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonRecords.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

/// What the stores share in reading and writing their files. All failures are FileSystemError, JsonError or OrvexError.
namespace orvex::StoreFiles {

/// What a list in a JSON file may have at most: that is a million jobs, or twenty thousand with large layouts.
inline constexpr qint64 largestListBytes = 1 << 29;

/// The path of the file of that name in a store's folder.
[[nodiscard]] QString path(const QUrl& directory, const QString& name);

/// Whether a file, by whatever path, is one of those that the stores keep in the folder `directory` and below it; they
/// are told by their names from what else somebody may have put there.
[[nodiscard]] bool isOwnFile(const QUrl& file, const QUrl& directory);

/// The list of records in a JSON file; an empty one if there is no such file.
template <typename Record>
[[nodiscard]] QList<Record> readList(const QString& path) {
    const auto content = platform::readFileIfThere(path, largestListBytes);
    return content ? platform::readManyRecords<Record>(*content) : QList<Record>();
}

/// Refuses to write what could not be read again: a list that is too large, or part of one. Raises FileSystemError.
void requireReadable(const QByteArrayList& pieces, const QString& path);

/// Replaces a JSON file by the list of records.
template <typename Record>
void writeList(const QString& path, const QList<Record>& records) {
    const QByteArrayList pieces = platform::writeManyRecords(records, platform::JsonForm::prettyEscapedSlashes);
    requireReadable(pieces, path);
    platform::FileReplacer::replace(path, pieces);
}

/// The content of a regular file; a link is none. Raises OrvexError for anything else, and FileSystemError for a file
/// larger than `limitBytes`.
[[nodiscard]] QByteArray readRegularFile(const QString& path, qint64 limitBytes);

} // namespace orvex::StoreFiles
