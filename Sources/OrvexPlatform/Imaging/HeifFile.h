#pragma once

#include "Files/RandomAccessFile.h"

#include <QByteArray>

#include <libheif/heif.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>

namespace orvex::platform {

struct HeifContextRelease {
    void operator()(heif_context* context) const { heif_context_free(context); }
};

struct HeifHandleRelease {
    void operator()(const heif_image_handle* handle) const { heif_image_handle_release(handle); }
};

struct HeifImageRelease {
    void operator()(const heif_image* image) const { heif_image_release(image); }
};

using HeifPicture = std::unique_ptr<const heif_image, HeifImageRelease>;

/// What a HEIF file says of its primary image.
struct HeifHeader {
    qint64 width = 0; ///< with the container's transforms applied
    qint64 height = 0;
    int bitDepth = 8; ///< of the brightness as it is coded
    bool hasAlpha = false;
    bool isPremultiplied = false;

    bool operator==(const HeifHeader&) const = default;
};

/// A HEIF file parsed by libheif. Its coded data is read when it is asked for, so the file must outlive it. All calls
/// raise ImageError for what libheif does not accept or only warns of, FileSystemError when the file cannot be read.
/// One thread.
class HeifFile {
public:
    explicit HeifFile(const RandomAccessFile& file);
    HeifFile(const HeifFile&) = delete;
    HeifFile& operator=(const HeifFile&) = delete;

    [[nodiscard]] HeifHeader header() const;

    /// The embedded ICC profile.
    [[nodiscard]] std::optional<QByteArray> iccProfile();

    /// The first EXIF block from its TIFF header on; empty if there is none.
    [[nodiscard]] QByteArray exif();

    /// Decodes the primary image with the container's transforms to interleaved samples: RGB or RGBA of 8 bits, or of
    /// its own depth in 16-bit words of the machine's order if that is more than 8.
    [[nodiscard]] HeifPicture decode();

private:
    static std::int64_t position(void* self);
    static int read(void* target, std::size_t count, void* self);
    static int seek(std::int64_t position, void* self);
    static heif_reader_grow_status waitForFileSize(std::int64_t size, void* self);

    [[nodiscard]] bool readHere(std::span<std::byte> target) noexcept;
    void check(const heif_error& error) const;

    const RandomAccessFile& file_;
    qint64 position_ = 0;
    std::exception_ptr readFailure_; ///< no exception goes through the library
    heif_reader reader_{};
    std::unique_ptr<heif_context, HeifContextRelease> context_;
    std::unique_ptr<const heif_image_handle, HeifHandleRelease> handle_;
};

} // namespace orvex::platform
