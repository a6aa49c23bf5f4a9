#include "InputFile.h"

#include "CommandFiles.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"

namespace orvex {

InputFile::InputFile(const QString& path) : path_(path) {
    if (!isStandardStream(path)) {
        return;
    }
    folder_ = std::make_unique<platform::TemporaryFolder>();
    path_ = folder_->filePath(path);
    auto copy = platform::FileReplacer::open(path_);
    readStandardInput([&](QByteArrayView piece) { copy.write(piece); });
    copy.commit();
}

QUrl InputFile::url() const {
    return platform::fileUrl(path_);
}

} // namespace orvex
