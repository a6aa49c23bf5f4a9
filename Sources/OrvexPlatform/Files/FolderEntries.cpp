#include "Files/FolderEntries.h"

#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Text.h"

#include <QFile>

#include <filesystem>

namespace orvex::platform {

QStringList folderEntries(const QString& path) {
    using Entries = std::filesystem::directory_iterator;
    QStringList names;
    std::error_code failed;
    for (Entries entry(nativePath(path).toStdString(), failed); !failed && entry != Entries();
         entry.increment(failed)) {
        names.append(QFile::decodeName(QByteArray::fromStdString(entry->path().filename().string())));
    }
    if (failed) {
        throw FileSystemError(failed.value(), path);
    }
    std::sort(names.begin(), names.end(), ScalarOrder());
    return names;
}

} // namespace orvex::platform
