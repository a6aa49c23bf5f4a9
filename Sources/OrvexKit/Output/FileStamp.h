#pragma once

#include <QUrl>

namespace orvex {

/// Identifies one state of a source file between the stages of a rendering.
struct FileStamp {
    qint64 size = 0;     ///< bytes
    qint64 modified = 0; ///< nanoseconds since 1970-01-01 00:00:00 UTC

    /// The file's stamp at this moment, never a cached one. Raises FileSystemError as the system gave it, and
    /// OrvexError if there is no regular file.
    [[nodiscard]] static FileStamp read(const QUrl& url);

    bool operator==(const FileStamp&) const = default;
};

} // namespace orvex
