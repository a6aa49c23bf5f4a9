#pragma once

#include "Files/TemporaryFolder.h"

#include <QString>
#include <QUrl>

#include <memory>

namespace orvex {

/// A command's input as a file that can be read at any place: the one that was named, or a temporary one with all of
/// standard input for "-", which goes when this does.
class InputFile {
public:
    /// Raises FileSystemError if standard input cannot be read or stored. A file that is named is not looked at.
    explicit InputFile(const QString& path);

    [[nodiscard]] const QString& path() const { return path_; }

    [[nodiscard]] QUrl url() const;

private:
    QString path_;
    std::unique_ptr<platform::TemporaryFolder> folder_;
};

} // namespace orvex
