#include "PDF/StructureSource.h"

#include "PDF/StructureBudget.h"

#include <algorithm>
#include <stdexcept>

namespace orvex::platform {

namespace {

constexpr qint64 windowBytes = 4096;       // one page: objects are read by hops
constexpr size_t tokenizerReadBytes = 128; // qpdf fills its tokenizer's buffer by reads of just this size

bool isEndOfLine(char byte) {
    return byte == '\r' || byte == '\n';
}

} // namespace

/// What the window holds from the present position on; empty only at the end of the file.
QByteArrayView StructureSource::available() {
    if (position_ < windowOffset_ || position_ >= windowOffset_ + window_.size()) {
        try {
            window_ = file_.bytesAt(position_, windowBytes);
        } catch (...) {
            failure_ = std::current_exception();
            throw;
        }
        windowOffset_ = position_;
    }
    return QByteArrayView(window_).sliced(position_ - windowOffset_);
}

size_t StructureSource::read(char* output, size_t length) {
    last_offset = position_;
    const auto spend = length == tokenizerReadBytes ? StructureBudget::spendOnParsing : StructureBudget::spendOnReading;
    size_t done = 0;
    while (done < length) {
        const QByteArrayView bytes = available();
        if (bytes.isEmpty()) {
            break;
        }
        const auto count = std::min(static_cast<size_t>(bytes.size()), length - done);
        spend(static_cast<qint64>(count));
        std::copy_n(bytes.data(), count, output + done);
        done += count;
        position_ += static_cast<qint64>(count);
    }
    return done;
}

void StructureSource::seek(qpdf_offset_t offset, int whence) {
    const qint64 base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position_ : file_.size();
    qint64 target = 0;
    if (__builtin_add_overflow(base, qint64{offset}, &target) || target < 0) {
        throw std::out_of_range("a position outside of the document");
    }
    position_ = target;
}

void StructureSource::unreadCh(char /*ch*/) {
    seek(-1, SEEK_CUR);
}

qpdf_offset_t StructureSource::findAndSkipNextEOL() {
    char byte = 0;
    while (read(&byte, 1) == 1 && !isEndOfLine(byte)) {
    }
    const qint64 endOfLine = isEndOfLine(byte) ? position_ - 1 : position_;
    while (isEndOfLine(byte) && read(&byte, 1) == 1) {
        if (!isEndOfLine(byte)) {
            unreadCh(byte);
        }
    }
    return endOfLine;
}

} // namespace orvex::platform
