#include "Imaging/TiffHandle.h"

#include "Imaging/ImageError.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <string_view>

namespace orvex::platform {

namespace {

/// What libtiff may allocate at once beyond the size of the file: its tables and line buffers. Strips and tiles as they
/// stand in the file are never larger than that, and decoded ones go into our own memory, as a rule.
constexpr qint64 allocationAllowance = 64 << 20;

/// Beginnings of the warnings at decoding that leave no pixel in doubt: a last strip that holds more rows than the
/// picture has, byte counts far above the need, and a kind of JPEG that TIFF does not provide for.
constexpr std::array<std::string_view, 4> harmlessWarnings = {
    "JPEG strip size exceeds expected dimensions",
    "The JPEG strip/tile is encoded with progressive mode",
    "Too large strip byte count",
    "Too large tile byte count",
};

QString formatted(const char* module, const char* format, va_list arguments) {
    std::array<char, 500> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    return QStringLiteral("%1: %2").arg(QString::fromUtf8(module != nullptr ? module : "libtiff"),
                                        QString::fromUtf8(text.data()));
}

/// Puts zeros for what `bytes`, read at `position`, have of the ranges. libtiff would keep a copy of every tag's values
/// for each handle, and passes over a tag of no type.
void blank(const std::vector<TiffDirectory::Range>& ranges, quint64 position, std::span<std::byte> bytes) {
    for (const auto& [offset, size] : ranges) {
        const quint64 first = std::max(offset, position);
        const quint64 end = std::min(offset + size, position + bytes.size());
        if (first < end) {
            std::ranges::fill(bytes.subspan(first - position, end - first), std::byte{0});
        }
    }
}

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffHandle::TiffHandle(std::shared_ptr<const RandomAccessFile> file, const TiffDirectory& directory,
                       qint64 decodedBytes)
    : client_(std::make_unique<Client>()) {
    client_->file = std::move(file);
    client_->idleTypes = directory.idleTypes();
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (!options) {
        throw std::bad_alloc();
    }
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), client_->file->size() + allocationAllowance + decodedBytes);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &onError, client_.get());
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &onWarning, client_.get());
    // m: never mapped. c: a single uncompressed strip is not chopped up into millions. O: the tables of strips and
    // tiles are not loaded as a whole.
    tiff_.reset(TIFFClientOpenExt("image", "rmcO", client_.get(), &readBytes, &refuseToWrite, &seek, &closeNothing,
                                  &size, nullptr, nullptr, options.get()));
    if (client_->fileFailure) {
        std::rethrow_exception(client_->fileFailure);
    }
    if (!tiff_) {
        throw ImageError(client_->problem);
    }
    client_->problem.clear();
    client_->isReadingPixels = true;
}

tmsize_t TiffHandle::readBytes(thandle_t client, void* buffer, tmsize_t size) {
    Client& self = *static_cast<Client*>(client);
    const auto fileSize = static_cast<quint64>(self.file->size());
    if (size <= 0 || self.position >= fileSize) {
        return 0;
    }
    try {
        const std::span bytes(static_cast<std::byte*>(buffer), static_cast<std::size_t>(size));
        const qint64 count = self.file->readAt(static_cast<qint64>(self.position), bytes);
        if (!self.isReadingPixels) {
            blank(self.idleTypes, self.position, bytes.first(static_cast<std::size_t>(count)));
        }
        self.position += static_cast<quint64>(count);
        return count;
    } catch (...) {
        self.fileFailure = std::current_exception();
        return -1;
    }
}

tmsize_t TiffHandle::refuseToWrite(thandle_t /*client*/, void* /*buffer*/, tmsize_t /*size*/) {
    return -1;
}

toff_t TiffHandle::seek(thandle_t client, toff_t offset, int whence) {
    Client& self = *static_cast<Client*>(client);
    const quint64 origin = whence == SEEK_END   ? static_cast<quint64>(self.file->size())
                           : whence == SEEK_CUR ? self.position
                                                : 0;
    self.position = origin + offset;
    return self.position;
}

int TiffHandle::closeNothing(thandle_t /*client*/) {
    return 0;
}

toff_t TiffHandle::size(thandle_t client) {
    return static_cast<toff_t>(static_cast<Client*>(client)->file->size());
}

int TiffHandle::onError(TIFF* /*tiff*/, void* client, const char* module, const char* format, va_list arguments) {
    Client& self = *static_cast<Client*>(client);
    if (self.problem.isEmpty()) {
        self.problem = formatted(module, format, arguments);
    }
    return 1; // handled: nothing goes on to the standard error output
}

int TiffHandle::onWarning(TIFF* tiff, void* client, const char* module, const char* format, va_list arguments) {
    const std::string_view text(format);
    const bool isHarmless = std::any_of(harmlessWarnings.begin(), harmlessWarnings.end(),
                                        [&](std::string_view start) { return text.starts_with(start); });
    if (static_cast<Client*>(client)->isReadingPixels && !isHarmless) {
        onError(tiff, client, module, format, arguments);
    }
    return 1;
}

/// Raises what went wrong in a call of libtiff's, which says `isComplete` of it.
void TiffHandle::finish(bool isComplete) {
    if (client_->fileFailure) {
        std::rethrow_exception(client_->fileFailure);
    }
    if (!client_->problem.isEmpty()) {
        throw ImageError(client_->problem);
    }
    if (!isComplete) {
        throw ImageError(QStringLiteral("TIFF pixel data is missing"));
    }
}

TiffHandle::Extent TiffHandle::extent(quint32 segment) {
    int hasFailed = 0;
    const quint64 offset = TIFFGetStrileOffsetWithErr(get(), segment, &hasFailed);
    finish(hasFailed == 0);
    const quint64 byteCount = TIFFGetStrileByteCountWithErr(get(), segment, &hasFailed);
    constexpr quint64 largest = std::numeric_limits<qint64>::max();
    finish(hasFailed == 0 && offset <= largest && byteCount <= largest);
    return {static_cast<qint64>(offset), static_cast<qint64>(byteCount)};
}

void TiffHandle::readStrip(quint32 strip, std::span<std::byte> into) {
    const auto size = static_cast<tmsize_t>(into.size());
    finish(TIFFReadEncodedStrip(get(), strip, into.data(), size) == size);
}

void TiffHandle::readTile(quint32 tile, std::span<std::byte> into) {
    const auto size = static_cast<tmsize_t>(into.size());
    finish(TIFFReadEncodedTile(get(), tile, into.data(), size) == size);
}

void TiffHandle::readScanline(quint32 row, quint16 plane, std::span<std::byte> into) {
    finish(static_cast<std::size_t>(TIFFScanlineSize(get())) == into.size());
    finish(TIFFReadScanline(get(), into.data(), row, plane) == 1);
}

} // namespace orvex::platform
