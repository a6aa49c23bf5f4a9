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

/// What a JSON file of a store may have at most: some million records.
inline constexpr qint64 largestBytes = 1 << 30;

/// The path of the file of that name in a store's folder.
[[nodiscard]] QString path(const QUrl& directory, const QString& name);

/// The list of records in a JSON file; an empty one if there is no such file.
template <typename Record>
[[nodiscard]] QList<Record> readList(const QString& path) {
    const auto content = platform::readFileIfThere(path, largestBytes);
    return content ? platform::readManyRecords<Record>(*content) : QList<Record>();
}

/// Replaces a JSON file by the list of records.
template <typename Record>
void writeList(const QString& path, const QList<Record>& records) {
    platform::FileReplacer::replace(path,
                                    platform::writeManyRecords(records, platform::JsonForm::prettyEscapedSlashes));
}

/// The content of a regular file, or as much of it as `limitBytes`. Anything else is refused; a link is no regular
/// file.
[[nodiscard]] QByteArray readRegularFile(const QString& path, qint64 limitBytes);

} // namespace orvex::StoreFiles
