#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace orvex::platform {

/// The path of a file URL, percent-decoded; empty for any other URL.
[[nodiscard]] QString localPath(const QUrl& url);

/// The absolute file URL of a path as a person typed it, which the system would take for the same file; relative paths
/// start at the current folder. Links stay, unless a ".." behind one has to be followed.
[[nodiscard]] QUrl fileUrl(const QString& path);

/// The bytes by which the system knows a path. Raises FileSystemError for an empty path or one with a NUL character,
/// which the system would cut short.
[[nodiscard]] QByteArray nativePath(const QString& path);

/// The path without ".", ".." and doubled slashes, by its text alone: no link is followed.
[[nodiscard]] QString standardizedPath(const QString& path);

/// The path with every link in it followed, as far as it exists, and standardised.
[[nodiscard]] QString resolvingSymlinks(const QString& path);

/// Whether both paths exist and lead to the very same file, by whatever links.
[[nodiscard]] bool isSameFile(const QString& first, const QString& second);

} // namespace orvex::platform
