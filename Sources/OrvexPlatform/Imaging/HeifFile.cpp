#include "Imaging/HeifFile.h"

#include "Imaging/ImageError.h"

#include <QtEndian>

#include <bit>

namespace orvex::platform {

namespace {

constexpr std::size_t exifOffsetBytes = 4; // ISO 23008-12, A.2.1: how far behind it the TIFF header is

struct OptionsRelease {
    void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};

using Options = std::unique_ptr<heif_decoding_options, OptionsRelease>;

heif_chroma chromaFor(const HeifHeader& header) {
    if (header.bitDepth <= 8) {
        return header.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    }
    constexpr bool isLittle = std::endian::native == std::endian::little;
    if (header.hasAlpha) {
        return isLittle ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBBAA_BE;
    }
    return isLittle ? heif_chroma_interleaved_RRGGBB_LE : heif_chroma_interleaved_RRGGBB_BE;
}

} // namespace

HeifFile::HeifFile(const RandomAccessFile& file) : file_(file), context_(heif_context_alloc()) {
    if (!context_) {
        throw std::bad_alloc();
    }
    reader_ = {1, &HeifFile::position, &HeifFile::read, &HeifFile::seek, &HeifFile::waitForFileSize};
    check(heif_context_read_from_reader(context_.get(), &reader_, this, nullptr));
    heif_image_handle* handle = nullptr;
    check(heif_context_get_primary_image_handle(context_.get(), &handle));
    handle_.reset(handle);
}

std::int64_t HeifFile::position(void* self) {
    return static_cast<HeifFile*>(self)->position_;
}

int HeifFile::read(void* target, std::size_t count, void* self) {
    const std::span bytes(static_cast<std::byte*>(target), count);
    return static_cast<HeifFile*>(self)->readHere(bytes) ? 0 : 1;
}

int HeifFile::seek(std::int64_t position, void* self) {
    static_cast<HeifFile*>(self)->position_ = position;
    return 0;
}

heif_reader_grow_status HeifFile::waitForFileSize(std::int64_t size, void* self) {
    return size <= static_cast<HeifFile*>(self)->file_.size() ? heif_reader_grow_status_size_reached
                                                              : heif_reader_grow_status_size_beyond_eof;
}

bool HeifFile::readHere(std::span<std::byte> target) noexcept {
    try {
        const qint64 count = file_.readAt(position_, target);
        position_ += count;
        return count == static_cast<qint64>(target.size());
    } catch (...) {
        readFailure_ = std::current_exception();
        return false;
    }
}

void HeifFile::check(const heif_error& error) const {
    if (readFailure_) {
        std::rethrow_exception(readFailure_);
    }
    if (error.code != heif_error_Ok) {
        throw ImageError(QStringLiteral("HEIF: ") + QString::fromUtf8(error.message));
    }
}

HeifHeader HeifFile::header() const {
    const heif_image_handle* handle = handle_.get();
    // A negative depth means that it is known only after decoding; such pictures come as 8 bits.
    return {heif_image_handle_get_width(handle), heif_image_handle_get_height(handle),
            std::max(heif_image_handle_get_luma_bits_per_pixel(handle), 8),
            heif_image_handle_has_alpha_channel(handle) != 0, heif_image_handle_is_premultiplied_alpha(handle) != 0};
}

std::optional<QByteArray> HeifFile::iccProfile() {
    const std::size_t size = heif_image_handle_get_raw_color_profile_size(handle_.get());
    if (size == 0) {
        return std::nullopt;
    }
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    check(heif_image_handle_get_raw_color_profile(handle_.get(), profile.data()));
    return profile;
}

QByteArray HeifFile::exif() {
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle_.get(), "Exif", &id, 1) == 0) {
        return {};
    }
    const std::size_t size = heif_image_handle_get_metadata_size(handle_.get(), id);
    QByteArray block(static_cast<qsizetype>(size), '\0');
    check(heif_image_handle_get_metadata(handle_.get(), id, block.data()));
    if (size < exifOffsetBytes) {
        return {};
    }
    const qsizetype offset = qsizetype{exifOffsetBytes} + qFromBigEndian<quint32>(block.constData());
    return block.mid(offset);
}

HeifPicture HeifFile::decode() {
    const Options options(heif_decoding_options_alloc());
    if (!options) {
        throw std::bad_alloc();
    }
    options->strict_decoding = 1;
    heif_image* image = nullptr;
    const heif_error error =
        heif_decode_image(handle_.get(), &image, heif_colorspace_RGB, chromaFor(header()), options.get());
    HeifPicture picture(image);
    check(error);
    if (heif_image_get_decoding_warnings(image, 0, nullptr, 0) > 0) {
        throw ImageError(QStringLiteral("the HEIF file's coded picture is damaged"));
    }
    return picture;
}

} // namespace orvex::platform
