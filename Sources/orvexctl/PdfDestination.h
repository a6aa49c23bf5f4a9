#pragma once

#include "Files/TemporaryFolder.h"

#include <QString>
#include <QUrl>

#include <memory>
#include <stop_token>

namespace orvex {

/// Where a command's PDF goes: a file, or a temporary one that is copied to standard output for "-".
class PdfDestination {
public:
    explicit PdfDestination(const QString& path);

    /// The file to render to.
    [[nodiscard]] QUrl url() const;

    [[nodiscard]] bool isStandardOutput() const { return folder_ != nullptr; }

    /// Copies the finished PDF to standard output if that is where it goes. Raises FileSystemError and Interrupted.
    void deliver(const std::stop_token& stop) const;

private:
    QString path_;
    std::unique_ptr<platform::TemporaryFolder> folder_;
};

} // namespace orvex
