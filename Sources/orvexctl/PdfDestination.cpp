#include "PdfDestination.h"

#include "CommandFiles.h"
#include "Files/Paths.h"

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
    if (isStandardOutput()) {
        printFile(path_, stop);
    }
}

} // namespace orvex
