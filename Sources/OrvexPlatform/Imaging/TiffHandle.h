#pragma once

#include "Files/RandomAccessFile.h"
#include "Imaging/TiffDirectory.h"

#include <QString>

#include <tiffio.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace orvex::platform {

/// libtiff on one file, read-only, at the file's first directory. Nothing of libtiff's reaches the standard error
/// output. While pixels are read, every error it reports is raised as ImageError, and so are its warnings, since those
/// tell of data that is missing or damaged; the few that do not are named in the source. While the directory is read,
/// warnings about tags are left to the caller, who knows which tags matter. Failures of the file itself are raised as
/// FileSystemError. One thread; any number of handles may be on the same file.
class TiffHandle {
public:
    /// Where a strip or tile lies in the file.
    struct Extent {
        qint64 offset = 0;
        qint64 byteCount = 0;
    };

    /// The directory is the file's; reading it has shown that its tags do not fill the memory. `decodedBytes` is what a
    /// decoder that keeps its segment's pixels to itself may hold of them.
    TiffHandle(std::shared_ptr<const RandomAccessFile> file, const TiffDirectory& directory, qint64 decodedBytes = 0);

    [[nodiscard]] TIFF* get() const { return tiff_.get(); }

    /// The value of a tag that libtiff delivers as a `Value`, or absent.
    template <typename Value>
    [[nodiscard]] std::optional<Value> field(quint32 tag) const {
        Value value{};
        return TIFFGetField(get(), tag, &value) == 1 ? std::optional(value) : std::nullopt;
    }

    /// The same with libtiff's default for a tag that is absent.
    template <typename Value>
    [[nodiscard]] Value defaulted(quint32 tag) const {
        Value value{};
        TIFFGetFieldDefaulted(get(), tag, &value);
        return value;
    }

    /// The extent of a strip or tile as the directory gives it, unchecked but for its signs.
    [[nodiscard]] Extent extent(quint32 segment);

    /// Decodes a whole strip or tile, which must fill `into` exactly.
    void readStrip(quint32 strip, std::span<std::byte> into);
    void readTile(quint32 tile, std::span<std::byte> into);

    /// Decodes the next row of a plane; `into` is of one row's size.
    void readScanline(quint32 row, quint16 plane, std::span<std::byte> into);

private:
    struct Client {
        std::shared_ptr<const RandomAccessFile> file;
        std::vector<TiffDirectory::Range> idleTypes;
        quint64 position = 0;
        bool isReadingPixels = false;
        QString problem;                ///< the first one reported
        std::exception_ptr fileFailure; ///< libtiff's frames lie between the read and the caller
    };

    struct Close {
        void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    };

    static tmsize_t readBytes(thandle_t client, void* buffer, tmsize_t size);
    static tmsize_t refuseToWrite(thandle_t client, void* buffer, tmsize_t size);
    static toff_t seek(thandle_t client, toff_t offset, int whence);
    static int closeNothing(thandle_t client);
    static toff_t size(thandle_t client);
    static int onError(TIFF* tiff, void* client, const char* module, const char* format, va_list arguments);
    static int onWarning(TIFF* tiff, void* client, const char* module, const char* format, va_list arguments);

    void finish(bool isComplete);

    std::unique_ptr<Client> client_; ///< outlives the handle that points to it
    std::unique_ptr<TIFF, Close> tiff_;
};

} // namespace orvex::platform
