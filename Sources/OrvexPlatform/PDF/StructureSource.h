#pragma once

#include "Files/RandomAccessFile.h"
#include "PDF/QpdfHeaders.h"

#include <QByteArray>

#include <exception>
#include <string>

namespace orvex::platform {

/// Feeds qpdf from a file that is open already, by plain reads within the thread's StructureBudget. The file must
/// outlive it.
class StructureSource : public InputSource {
public:
    explicit StructureSource(const RandomAccessFile& file) : file_(file) {}

    /// The failure of the file system that ended the reading, if one did: qpdf takes it for damage.
    [[nodiscard]] const std::exception_ptr& failure() const { return failure_; }

    qpdf_offset_t findAndSkipNextEOL() override;

    [[nodiscard]] const std::string& getName() const override { return name_; }

    qpdf_offset_t tell() override { return position_; }

    void seek(qpdf_offset_t offset, int whence) override;

    void rewind() override { position_ = 0; }

    size_t read(char* output, size_t length) override;
    void unreadCh(char ch) override;

private:
    [[nodiscard]] QByteArrayView available();

    const RandomAccessFile& file_;
    std::string name_ = "PDF";
    qint64 position_ = 0;
    QByteArray window_;
    qint64 windowOffset_ = 0;
    std::exception_ptr failure_;
};

} // namespace orvex::platform
