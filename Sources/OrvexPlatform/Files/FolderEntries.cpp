#include "Files/FolderEntries.h"

#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Text.h"

#include <QFile>

#include <algorithm>
#include <filesystem>

namespace orvex::platform {

QStringList folderEntries(const QString& path, const std::function<bool(const QString& name)>& isWanted) {
    using Entries = std::filesystem::directory_iterator;
    QStringList names;
    std::error_code failed;
    for (Entries entry(nativePath(path).toStdString(), failed); !failed && entry != Entries();
         entry.increment(failed)) {
        const QString name = QFile::decodeName(QByteArray::fromStdString(entry->path().filename().string()));
        if (isWanted(name)) {
            names.append(name);
        }
    }
    if (failed) {
        throw FileSystemError(failed.value(), path);
    }
    std::sort(names.begin(), names.end(), ScalarOrder());
    return names;
}

QStringList folderEntries(const QString& path) {
    return folderEntries(path, [](const QString&) { return true; });
}

} // namespace orvex::platform
