#include "Imaging/PngWriter.h"

#include "Imaging/ImageError.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstring>
#include <exception>

namespace orvex::platform {

namespace {

constexpr double metresPerInch = 0.0254;

/// What is written, and what libpng's callbacks need. libpng leaves by longjmp, which runs no destructors: so all
/// objects live here, outside the functions that it may leave.
struct WriteContext {
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    int bitDepth = 8;
    int colorType = PNG_COLOR_TYPE_RGB;
    std::optional<png_uint_32> pixelsPerMetre;
    std::span<const std::byte> samples;

    QByteArray file;
    std::exception_ptr writeFailure;
    std::array<char, 160> message{};

    bool append(const char* bytes, std::size_t count) noexcept {
        try {
            file.append(bytes, static_cast<qsizetype>(count));
            return true;
        } catch (...) {
            writeFailure = std::current_exception();
            return false;
        }
    }
};

void writeData(png_structp png, png_bytep bytes, std::size_t count) {
    auto* context = static_cast<WriteContext*>(png_get_io_ptr(png));
    if (!context->append(reinterpret_cast<const char*>(bytes), count)) {
        png_error(png, "no memory");
    }
}

void flushNothing(png_structp /*png*/) {
    // The file is in memory.
}

[[noreturn]] void keepError(png_structp png, png_const_charp message) {
    auto* context = static_cast<WriteContext*>(png_get_error_ptr(png));
    std::strncpy(context->message.data(), message, context->message.size() - 1);
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp /*png*/, png_const_charp /*message*/) {
    // None is about the pixels.
}

/// Owns libpng's structures.
struct Library {
    explicit Library(WriteContext& context)
        : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &context, keepError, ignoreWarning)),
          info(png != nullptr ? png_create_info_struct(png) : nullptr) {}

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    ~Library() { png_destroy_write_struct(&png, &info); }

    png_structp png;
    png_infop info;
};

/// The only function that libpng may leave by longjmp; it holds nothing that a destructor would have to release.
bool write(png_structp png, png_infop info, WriteContext* context) noexcept {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_write_fn(png, context, writeData, flushNothing);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, context->width, context->height, context->bitDepth, context->colorType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (context->pixelsPerMetre) {
        png_set_pHYs(png, info, *context->pixelsPerMetre, *context->pixelsPerMetre, PNG_RESOLUTION_METER);
    }
    png_write_info(png, info);
    if (context->bitDepth == 16 && std::endian::native == std::endian::little) {
        png_set_swap(png);
    }
    const std::size_t rowBytes = context->samples.size() / context->height;
    for (std::size_t row = 0; row < context->height; ++row) {
        png_write_row(png, reinterpret_cast<png_const_bytep>(context->samples.data() + row * rowBytes));
    }
    png_write_end(png, info);
    return true;
}

int colorType(const PixelFormat& format) {
    const bool isGray = format.model == ColorModel::gray;
    if (format.hasAlpha) {
        return isGray ? PNG_COLOR_TYPE_GRAY_ALPHA : PNG_COLOR_TYPE_RGB_ALPHA;
    }
    return isGray ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB;
}

bool isSide(qint64 pixels) {
    return pixels >= 1 && pixels <= qint64{PNG_UINT_31_MAX};
}

/// The count of bytes of such a picture; absent if there can be none.
std::optional<qint64> sampleBytes(qint64 width, qint64 height, const PixelFormat& format) {
    const bool isStorable = format.model != ColorModel::cmyk && !format.isFloat &&
                            (format.bitsPerComponent == 8 || format.bitsPerComponent == 16);
    qint64 bytes = 0;
    if (!isStorable || !isSide(width) || !isSide(height) ||
        __builtin_mul_overflow(width * format.bytesPerPixel(), height, &bytes)) {
        return std::nullopt;
    }
    return bytes;
}

std::optional<png_uint_32> perMetre(std::optional<double> pixelsPerInch) {
    const double density = pixelsPerInch.value_or(0) / metresPerInch;
    const bool isStorable = density >= 0.5 && density < PNG_UINT_31_MAX;
    return isStorable ? std::optional(static_cast<png_uint_32>(std::lround(density))) : std::nullopt;
}

} // namespace

QByteArray encodePng(qint64 width, qint64 height, const PixelFormat& format, std::span<const std::byte> samples,
                     std::optional<double> pixelsPerInch) {
    if (sampleBytes(width, height, format) != static_cast<qint64>(samples.size())) {
        throw ImageError(QStringLiteral("samples that cannot be a PNG file"));
    }
    WriteContext context;
    context.width = static_cast<png_uint_32>(width);
    context.height = static_cast<png_uint_32>(height);
    context.bitDepth = format.bitsPerComponent;
    context.colorType = colorType(format);
    context.pixelsPerMetre = perMetre(pixelsPerInch);
    context.samples = samples;
    const Library library(context);
    if (library.info == nullptr) {
        throw std::bad_alloc();
    }
    if (!write(library.png, library.info, &context)) {
        if (context.writeFailure) {
            std::rethrow_exception(context.writeFailure);
        }
        throw ImageError(QStringLiteral("PNG: ") + QString::fromLatin1(context.message.data()));
    }
    return context.file;
}

} // namespace orvex::platform
