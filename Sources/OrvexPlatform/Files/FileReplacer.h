#pragma once

#include "Files/FileDescriptor.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

namespace orvex::platform {

/// The one door for writing files: the destination keeps its old content, or has the complete new one, whatever
/// happens in between.
///
/// The content goes to a temporary file in the destination's folder, locked (flock) for as long as it is written.
/// `commit` synchronises it to the disk, renames it over the destination and synchronises the folder; without a
/// `commit` the temporary file is removed. Every write is checked. A destination that is a link to a regular file has
/// its target replaced; one that is anything but a regular file or absent is refused, as is one that the user may not
/// write, or whose folder cannot be opened for synchronising. Existing permissions are kept, save for set-user-ID and
/// its like. All failures are FileSystemError. One thread.
class FileReplacer {
public:
    /// Opens the temporary file. `temporaryName` is its file name; an empty one gives ".{name}.{UUID}.tmp", the name
    /// cut where the whole would be too long for the system, and removes the stale ones of the same destination.
    [[nodiscard]] static FileReplacer open(const QString& destination, const QString& temporaryName = {});

    FileReplacer(FileReplacer&&) noexcept;
    FileReplacer& operator=(FileReplacer&&) = delete;
    ~FileReplacer();

    /// Appends bytes.
    void write(QByteArrayView bytes);

    /// The count of bytes written so far.
    [[nodiscard]] qint64 position() const { return position_; }

    [[nodiscard]] const QString& temporaryPath() const { return temporaryPath_; }

    /// Makes the temporary file the destination.
    void commit();

    /// Replaces a file by the given content in one call.
    static void replace(const QString& destination, QByteArrayView content);

    /// The same for a content that comes in pieces.
    static void replace(const QString& destination, const QByteArrayList& pieces);

    /// Removes what killed processes have left of writing the files of a folder: regular files with the name that
    /// `open` gives the temporary ones which nobody has locked. Whatever cannot be removed stays, without a word.
    static void removeStaleTemporaries(const QString& folder);

private:
    FileReplacer(FileDescriptor folder, FileDescriptor descriptor, QString destination, QString temporaryPath)
        : folder_(std::move(folder)),
          descriptor_(std::move(descriptor)),
          destination_(std::move(destination)),
          temporaryPath_(std::move(temporaryPath)) {}

    /// Locks the temporary file. False if another process has just taken it for a stale one, before it was locked.
    [[nodiscard]] bool lock() const;

    FileDescriptor folder_;
    FileDescriptor descriptor_;
    QString destination_;
    QString temporaryPath_;
    qint64 position_ = 0;
};

} // namespace orvex::platform
