#pragma once

#include "Files/FileDescriptor.h"

#include <QByteArray>
#include <QByteArrayList>

namespace orvex::platform {

enum class ItemKind { regularFile, directory, symbolicLink, other };

/// What the system says of an item itself at one moment.
struct ItemFacts {
    ItemKind kind = ItemKind::other;
    qint64 sizeBytes = 0;
    quint64 fileNumber = 0;         ///< the inode
    qint64 modifiedNanoseconds = 0; ///< since 1970-01-01 00:00:00 UTC

    bool operator==(const ItemFacts&) const = default;
};

/// An item and all below it, looked at without ever following a link: neither one that stands there nor one that comes
/// to stand on the way while somebody looks. Only the folder that the item itself lies in may be reached through links.
///
/// Paths are the bytes by which the system knows them, which need be no text. Those given to the functions are that of
/// the item, or begin with it. All failures are FileSystemError. Any thread.
class LinkFreeView {
public:
    /// `path` is absolute and standardised; the item need not exist, but its folder must.
    explicit LinkFreeView(const QByteArray& path);

    [[nodiscard]] ItemFacts facts(const QByteArray& path) const;

    /// The names in a folder, sorted, without "." and "..".
    [[nodiscard]] QByteArrayList entries(const QByteArray& path) const;

    /// The text of a symbolic link.
    [[nodiscard]] QByteArray linkTarget(const QByteArray& path) const;

    /// Opens a regular file for reading; anything else is refused and never waited for.
    [[nodiscard]] FileDescriptor openFile(const QByteArray& path) const;

private:
    [[nodiscard]] FileDescriptor open(const QByteArray& path, int flags) const;

    qsizetype folderSize_; ///< of the path's part that the folder stands for
    FileDescriptor folder_;
};

} // namespace orvex::platform
