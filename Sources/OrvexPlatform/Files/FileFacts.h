#pragma once

#include <QString>

#include <optional>

namespace orvex::platform {

/// What the system says about a file at this moment; links are followed and nothing is cached.
struct FileFacts {
    bool isRegularFile = false;
    qint64 sizeBytes = 0;
    qint64 modifiedNanoseconds = 0; ///< since 1970-01-01 00:00:00 UTC

    /// Raises FileSystemError if the system gives no answer.
    [[nodiscard]] static FileFacts read(const QString& path);

    bool operator==(const FileFacts&) const = default;
};

/// Whether there is anything at a path, links followed. Raises FileSystemError if the system does not tell.
[[nodiscard]] bool isThere(const QString& path);

} // namespace orvex::platform
