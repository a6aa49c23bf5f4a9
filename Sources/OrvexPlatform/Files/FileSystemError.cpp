#include "Files/FileSystemError.h"

#include <cerrno>
#include <system_error>

namespace orvex::platform {

namespace {

QString describe(int code, const QString& path) {
    const QString words = QString::fromStdString(std::generic_category().message(code));
    return QStringLiteral("%1: %2").arg(path, words);
}

} // namespace

FileSystemError::FileSystemError(int code, const QString& path) : Failure(describe(code, path)), code_(code) {}

bool FileSystemError::isMissing() const {
    return code_ == ENOENT || code_ == ENOTDIR;
}

FileSystemError FileSystemError::last(const QString& path) {
    return {errno, path};
}

} // namespace orvex::platform
