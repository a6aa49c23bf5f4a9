#include "Files/FolderItem.h"

#include "Files/FileSystemError.h"
#include "Files/FileTimes.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <new>

namespace orvex::platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

using FolderHandle = std::unique_ptr<DIR, CloseFolder>;

[[noreturn]] void fail(const QByteArray& path) {
    throw FileSystemError::last(QFile::decodeName(path));
}

ItemKind kindOf(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return ItemKind::regularFile;
    case S_IFDIR:
        return ItemKind::directory;
    case S_IFLNK:
        return ItemKind::symbolicLink;
    default:
        return ItemKind::other;
    }
}

FolderHandle openFolder(const QByteArray& path) {
    const int descriptor = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        fail(path);
    }
    FolderHandle folder(::fdopendir(descriptor));
    if (!folder) {
        ::close(descriptor);
        throw std::bad_alloc(); // the only failure that is left
    }
    return folder;
}

bool isEntry(const QByteArray& name) {
    return name != "." && name != "..";
}

} // namespace

ItemFacts ItemFacts::read(const QByteArray& path) {
    struct stat facts {};

    if (::lstat(path.constData(), &facts) != 0) {
        fail(path);
    }
    return {.kind = kindOf(facts.st_mode),
            .sizeBytes = facts.st_size,
            .fileNumber = facts.st_ino,
            .modifiedNanoseconds = modifiedNanosecondsOf(facts)};
}

QByteArrayList folderEntries(const QByteArray& path) {
    const FolderHandle folder = openFolder(path);
    QByteArrayList names;
    errno = 0; // tells the end from a failure
    while (const dirent* entry = ::readdir(folder.get())) {
        if (const QByteArray name = entry->d_name; isEntry(name)) {
            names.append(name);
        }
        errno = 0;
    }
    if (errno != 0) {
        fail(path);
    }
    std::sort(names.begin(), names.end());
    return names;
}

QByteArray linkTarget(const QByteArray& path) {
    QByteArray target(PATH_MAX, Qt::Uninitialized); // the system keeps no longer ones
    const ssize_t size = ::readlink(path.constData(), target.data(), static_cast<std::size_t>(target.size()));
    if (size < 0) {
        fail(path);
    }
    target.truncate(size);
    return target;
}

} // namespace orvex::platform
