#include "Files/FileReplacer.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/FolderEntries.h"
#include "Files/LiveTemporaries.h"
#include "Files/Paths.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

namespace orvex::platform {

namespace {

constexpr qsizetype largestNameBytes = 255; // of one file name on Linux
constexpr mode_t permissionBits = 0777;     // never a set-user-ID bit: the new file may have another owner

/// The permissions of the file to be replaced; absent if there is none.
std::optional<mode_t> permissionsToKeep(const QString& destination) {
    struct stat facts {};

    if (::stat(nativePath(destination).constData(), &facts) != 0) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        throw FileSystemError::last(destination);
    }
    if (!S_ISREG(facts.st_mode)) {
        throw FileSystemError(S_ISDIR(facts.st_mode) ? EISDIR : EINVAL, destination);
    }
    if (::access(nativePath(destination).constData(), W_OK) != 0) {
        throw FileSystemError::last(destination);
    }
    return facts.st_mode & permissionBits;
}

/// Where the new file belongs: behind all links. A link that leads nowhere is refused rather than replaced.
QString destinationBehindLinks(const QString& destination) {
    const QString resolved = resolvingSymlinks(destination);
    const QByteArray path = nativePath(resolved);

    struct stat facts {};

    if (::lstat(path.constData(), &facts) == 0 && S_ISLNK(facts.st_mode) && ::stat(path.constData(), &facts) != 0) {
        throw FileSystemError::last(destination);
    }
    return resolved;
}

/// A name, cut where that of a temporary file beside it would be too long for the system.
QString cutName(QString name) {
    constexpr qsizetype additionalBytes = 1 + 1 + 36 + 4; // of a dot, a dot, a UUID and ".tmp"
    while (QFile::encodeName(name).size() > largestNameBytes - additionalBytes) {
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    }
    return name;
}

/// A hidden name for the temporary file beside `name`.
QString temporaryNameBeside(const QString& name) {
    return QStringLiteral(".%1.%2.tmp").arg(cutName(name), QUuid::createUuid().toString(QUuid::WithoutBraces));
}

/// The names that `temporaryNameBeside` gives for the names of a pattern.
QRegularExpression temporaryNames(const QString& namePattern) {
    return QRegularExpression(
        QStringLiteral("\\A\\.%1\\.[0-9a-f]{8}-([0-9a-f]{4}-){3}[0-9a-f]{12}\\.tmp\\z").arg(namePattern),
        QRegularExpression::DotMatchesEverythingOption);
}

bool isRegular(const FileDescriptor& file) {
    struct stat facts {};

    return ::fstat(file.get(), &facts) == 0 && S_ISREG(facts.st_mode);
}

/// Removes a temporary file that nobody writes any more: whoever writes one keeps it locked. Anything but a regular
/// file was made by somebody else.
void removeIfStale(const QString& path) {
    const QByteArray native = nativePath(path);
    const FileDescriptor file(::open(native.constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (file.isOpen() && isRegular(file) && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        ::unlink(native.constData());
    }
}

void removeStale(const QString& folder, const QString& namePattern) {
    try {
        const QRegularExpression names = temporaryNames(namePattern);
        for (const QString& name :
             folderEntries(folder, [&](const QString& each) { return names.match(each).hasMatch(); })) {
            removeIfStale(folder + u'/' + name);
        }
    } catch (const FileSystemError&) {
        // A leftover harms nothing, and what is wrong with the folder the writing itself will say.
    }
}

FileDescriptor createFile(const QString& path, mode_t permissions, const QString& destination) {
    FileDescriptor file(
        ::open(nativePath(path).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, permissions));
    if (!file.isOpen()) {
        throw FileSystemError::last(destination);
    }
    return file;
}

} // namespace

FileReplacer FileReplacer::open(const QString& destination, const QString& temporaryName) {
    const QString target = destinationBehindLinks(destination);
    const std::optional<mode_t> permissions = permissionsToKeep(target);
    const QFileInfo info(target);
    if (temporaryName.isEmpty()) {
        removeStale(info.path(), QRegularExpression::escape(cutName(info.fileName())));
    }
    for (;;) {
        // Opened before anything is written: a folder that could not be synchronised must not fail after the renaming.
        FileDescriptor folder = openFolder(info.path());
        const QString name = temporaryName.isEmpty() ? temporaryNameBeside(info.fileName()) : temporaryName;
        const QString temporaryPath = info.path() + u'/' + name;
        FileDescriptor descriptor = createFile(temporaryPath, permissions ? 0600 : 0666, destination);
        LiveTemporaries::add(temporaryPath);
        FileReplacer replacer(std::move(folder), std::move(descriptor), target, temporaryPath);
        if (!replacer.lock()) {
            continue;
        }
        if (permissions && ::fchmod(replacer.descriptor_.get(), *permissions) != 0) {
            throw FileSystemError::last(destination);
        }
        return replacer;
    }
}

bool FileReplacer::lock() const {
    if (::flock(descriptor_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            return false;
        }
        throw FileSystemError::last(destination_);
    }

    struct stat opened {};

    struct stat named {};

    if (::fstat(descriptor_.get(), &opened) != 0) {
        throw FileSystemError::last(destination_);
    }
    if (::lstat(nativePath(temporaryPath_).constData(), &named) != 0) {
        if (errno == ENOENT) {
            return false;
        }
        throw FileSystemError::last(destination_);
    }
    return opened.st_ino == named.st_ino;
}

void FileReplacer::removeStaleTemporaries(const QString& folder) {
    removeStale(folder, QStringLiteral(".+"));
}

FileReplacer::FileReplacer(FileReplacer&& other) noexcept
    : folder_(std::move(other.folder_)),
      descriptor_(std::move(other.descriptor_)),
      destination_(std::move(other.destination_)),
      temporaryPath_(std::exchange(other.temporaryPath_, {})),
      position_(other.position_) {}

FileReplacer::~FileReplacer() {
    if (!temporaryPath_.isEmpty()) {
        // Nothing more can be done about a file that cannot be removed.
        ::unlink(QFile::encodeName(temporaryPath_).constData());
        LiveTemporaries::remove(temporaryPath_);
    }
}

void FileReplacer::write(QByteArrayView bytes) {
    writeAt(descriptor_, position_, bytes, destination_);
    position_ += bytes.size();
}

void FileReplacer::commit() {
    synchronize(descriptor_, destination_);
    // The file stays open, and so locked, until it has its final name; what fsync has written cannot fail at closing.
    if (::rename(nativePath(temporaryPath_).constData(), nativePath(destination_).constData()) != 0) {
        throw FileSystemError::last(destination_);
    }
    LiveTemporaries::remove(std::exchange(temporaryPath_, {}));
    synchronize(folder_, destination_);
}

void FileReplacer::replace(const QString& destination, QByteArrayView content) {
    FileReplacer replacer = open(destination);
    replacer.write(content);
    replacer.commit();
}

void FileReplacer::replace(const QString& destination, const QByteArrayList& pieces) {
    FileReplacer replacer = open(destination);
    for (const QByteArray& piece : pieces) {
        replacer.write(piece);
    }
    replacer.commit();
}

} // namespace orvex::platform
