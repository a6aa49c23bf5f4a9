#pragma once

#include "Failure.h"

namespace orvex::platform {

/// A failure of the file system: the system's own words, and its code (an errno value), so that 'missing' can be told
/// from 'unreadable'.
class FileSystemError : public Failure {
public:
    FileSystemError(int code, const QString& path);

    [[nodiscard]] int code() const { return code_; }

    [[nodiscard]] bool isMissing() const;

    /// The failure that errno tells of now.
    [[nodiscard]] static FileSystemError last(const QString& path);

private:
    int code_;
};

} // namespace orvex::platform
