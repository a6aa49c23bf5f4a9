#include "Files/LinkFreeView.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/FileTimes.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
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

bool isEntry(const QByteArray& name) {
    return name != "." && name != "..";
}

/// Opens what a relative path leads to without links, or gives a negative number and errno.
int openWithoutLinks(int folder, const char* relativePath, int flags) {
    struct open_how how {};

    how.flags = static_cast<quint64>(flags);
    how.resolve = RESOLVE_NO_SYMLINKS;
    const long descriptor = ::syscall(SYS_openat2, folder, relativePath, &how, sizeof how);
    if (descriptor < 0 && errno == ENOSYS) {
        return ::openat(folder, relativePath, flags); // before Linux 5.6 only the last part is looked at
    }
    return static_cast<int>(descriptor);
}

FileDescriptor openFolderOf(const QByteArray& path, qsizetype folderSize) {
    FileDescriptor folder(
        ::open(path.first(std::max<qsizetype>(folderSize, 1)).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) {
        fail(path);
    }
    return folder;
}

} // namespace

LinkFreeView::LinkFreeView(const QByteArray& path)
    : folderSize_(path.lastIndexOf('/')),
      folder_(openFolderOf(path, folderSize_)) {}

FileDescriptor LinkFreeView::open(const QByteArray& path, int flags) const {
    const QByteArray relative = path.sliced(folderSize_ + 1);
    FileDescriptor item(openWithoutLinks(folder_.get(), relative.isEmpty() ? "." : relative.constData(),
                                         flags | O_NOFOLLOW | O_CLOEXEC));
    if (!item.isOpen()) {
        fail(path);
    }
    return item;
}

ItemFacts LinkFreeView::facts(const QByteArray& path) const {
    const FileDescriptor item = open(path, O_PATH);

    struct stat facts {};

    if (::fstat(item.get(), &facts) != 0) {
        fail(path);
    }
    return {.kind = kindOf(facts.st_mode),
            .sizeBytes = facts.st_size,
            .fileNumber = facts.st_ino,
            .modifiedNanoseconds = modifiedNanosecondsOf(facts)};
}

QByteArrayList LinkFreeView::entries(const QByteArray& path) const {
    FileDescriptor descriptor = open(path, O_RDONLY | O_DIRECTORY);
    const FolderHandle folder(::fdopendir(descriptor.get()));
    if (!folder) {
        throw std::bad_alloc(); // the only failure that is left
    }
    static_cast<void>(descriptor.release()); // it belongs to the handle now
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

QByteArray LinkFreeView::linkTarget(const QByteArray& path) const {
    const FileDescriptor link = open(path, O_PATH);
    QByteArray target(PATH_MAX, Qt::Uninitialized); // the system keeps no longer ones
    const ssize_t size = ::readlinkat(link.get(), "", target.data(), static_cast<std::size_t>(target.size()));
    if (size < 0) {
        // The item is there: the system says "missing" of one that is no link.
        throw FileSystemError(errno == ENOENT ? EINVAL : errno, QFile::decodeName(path));
    }
    target.truncate(size);
    return target;
}

FileDescriptor LinkFreeView::openFile(const QByteArray& path) const {
    FileDescriptor file = open(path, O_RDONLY | O_NONBLOCK);
    requireRegularFile(file, QFile::decodeName(path));
    return file;
}

} // namespace orvex::platform
