#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// What stands at a path itself: links are never followed. Paths are the bytes by which the system knows them, which
/// need be no text. All failures are FileSystemError. Any thread.
namespace orvex::platform {

enum class ItemKind { regularFile, directory, symbolicLink, other };

/// What the system says of an item at this moment.
struct ItemFacts {
    ItemKind kind = ItemKind::other;
    qint64 sizeBytes = 0;
    quint64 fileNumber = 0;         ///< the inode
    qint64 modifiedNanoseconds = 0; ///< since 1970-01-01 00:00:00 UTC

    [[nodiscard]] static ItemFacts read(const QByteArray& path);

    bool operator==(const ItemFacts&) const = default;
};

/// The names in a folder, sorted, without "." and "..".
[[nodiscard]] QByteArrayList folderEntries(const QByteArray& path);

/// The text of a symbolic link.
[[nodiscard]] QByteArray linkTarget(const QByteArray& path);

} // namespace orvex::platform
