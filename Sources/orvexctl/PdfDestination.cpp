#include "PdfDestination.h"

#include "CommandFiles.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Interrupted.h"

namespace orvex {

PdfDestination::PdfDestination(const QString& path) : path_(path) {
    if (isStandardStream(path)) {
        folder_ = std::make_unique<platform::TemporaryFolder>();
        path_ = folder_->filePath(QStringLiteral("roll.pdf"));
    }
}

QUrl PdfDestination::url() const {
    return platform::fileUrl(path_);
}

void PdfDestination::deliver(const std::stop_token& stop) const {
    if (!isStandardOutput()) {
        return;
    }
    constexpr qint64 pieceBytes = 1 << 20;
    const auto file = platform::RandomAccessFile::open(path_);
    for (qint64 offset = 0; offset < file.size(); offset += pieceBytes) {
        platform::throwIfStopped(stop);
        writeOutput(QStringLiteral("-"), file.bytesAt(offset, pieceBytes));
    }
}

} // namespace orvex
