#include "Imaging/PngHeader.h"

#include "Files/ByteReader.h"
#include "Imaging/ImageError.h"
#include "Imaging/PngChunk.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <exception>

namespace orvex::platform {

namespace {

constexpr quint32 largestChunkBytes = 0x7FFFFFFF; // PNG 1.2, 3.2
constexpr quint32 largestExifBytes = 64U << 20U;
constexpr png_alloc_size_t largestHeaderChunkBytes = (64U << 20U) + (64U << 10U); // a profile and the words around it
constexpr qint64 largestInflation = 1032;                                         // deflate: 258 bytes from 2 bits
constexpr double metresPerInch = 0.0254;

// ---------------------------------------------------------------------------------------------------------------------
// The chunks of the whole file

struct Chunk {
    quint64 offset = 0;
    quint32 length = 0;
    quint32 type = 0;

    [[nodiscard]] quint64 dataOffset() const { return offset + 8; }

    [[nodiscard]] quint64 end() const { return offset + 12 + length; }
};

bool isLetters(quint32 type) {
    for (int shift = 0; shift < 32; shift += 8) {
        const quint32 lower = ((type >> shift) & 0xFFU) | 0x20U;
        if (lower < 'a' || lower > 'z') {
            return false;
        }
    }
    return true;
}

bool isCritical(quint32 type) {
    return (type & 0x20000000U) == 0; // PNG 1.2, 3.3: an upper-case first letter
}

Chunk chunkAt(ByteReader& reader, quint64 offset) {
    const std::optional<quint32> length = reader.u32(offset, ByteOrder::big);
    const std::optional<quint32> type = reader.u32(offset + 4, ByteOrder::big);
    const Chunk chunk{offset, length.value_or(0), type.value_or(0)};
    if (!length || !type || chunk.end() > reader.size()) {
        throw ImageError(QStringLiteral("the PNG file is cut off"));
    }
    if (chunk.length > largestChunkBytes || !isLetters(chunk.type)) {
        throw ImageError(QStringLiteral("the PNG file has something that is no chunk"));
    }
    return chunk;
}

/// The chunk's data if its checksum holds.
std::optional<QByteArray> checkedData(ByteReader& reader, const Chunk& chunk) {
    std::optional<QByteArray> data = reader.bytes(chunk.dataOffset(), chunk.length);
    const std::optional<quint32> stated = reader.u32(chunk.end() - 4, ByteOrder::big);
    const bool isWhole = data && stated == pngChecksum(pngTypeChecksum(chunk.type), std::as_bytes(std::span(*data)));
    return isWhole ? data : std::nullopt;
}

/// Follows the chunks one after another and notes what they say of the image data and the EXIF block, which may stand
/// on either side of it.
class ChunkWalk {
public:
    explicit ChunkWalk(const RandomAccessFile& file) : reader_(file) {}

    void run(PngHeader& header) {
        Chunk chunk = chunkAt(reader_, pngSignatureBytes);
        if (chunk.type != pngImageHeader) {
            throw ImageError(QStringLiteral("the PNG file does not begin with its header"));
        }
        for (; chunk.type != pngEnd; chunk = chunkAt(reader_, chunk.end())) {
            visit(chunk, header);
        }
        if (place_ == Place::before) {
            throw ImageError(QStringLiteral("the PNG file has no image data"));
        }
        if (chunk.length != 0 || !checkedData(reader_, chunk)) {
            throw ImageError(QStringLiteral("the last chunk of the PNG file is damaged"));
        }
    }

private:
    enum class Place { before, within, after };

    void visit(const Chunk& chunk, PngHeader& header) {
        if (chunk.type == pngImageData) {
            visitImageData(chunk, header);
            return;
        }
        if (place_ == Place::within) {
            place_ = Place::after;
        }
        if (place_ == Place::after && isCritical(chunk.type)) {
            throw ImageError(QStringLiteral("the PNG file has a header chunk behind its image data"));
        }
        if (chunk.type == pngExif && header.exif.isEmpty() && chunk.length <= largestExifBytes) {
            header.exif = checkedData(reader_, chunk).value_or(QByteArray());
        }
    }

    void visitImageData(const Chunk& chunk, PngHeader& header) {
        if (place_ == Place::after) {
            throw ImageError(QStringLiteral("the PNG file's image data is not in one piece"));
        }
        if (place_ == Place::before) {
            place_ = Place::within;
            header.imageDataOffset = static_cast<qint64>(chunk.offset);
        }
        header.imageDataBytes += chunk.length;
    }

    ByteReader reader_;
    Place place_ = Place::before;
};

// ---------------------------------------------------------------------------------------------------------------------
// The header chunks, by libpng

/// What libpng's callbacks need. libpng leaves by longjmp, which runs no destructors: so all objects live here, outside
/// the functions that it may leave, and no exception goes through it.
struct ReadContext {
    explicit ReadContext(const RandomAccessFile& readFile) : file(readFile) {}

    const RandomAccessFile& file;
    qint64 position = 0;
    std::array<std::byte, 16384> window{};
    qint64 windowOffset = 0;
    qint64 windowBytes = 0;
    std::exception_ptr readFailure;
    std::array<char, 160> message{};

    bool read(std::span<std::byte> target) noexcept {
        try {
            return readOrThrow(target);
        } catch (...) {
            readFailure = std::current_exception();
            return false;
        }
    }

private:
    bool readOrThrow(std::span<std::byte> target) {
        while (!target.empty()) {
            if (position < windowOffset || position >= windowOffset + windowBytes) {
                windowOffset = position;
                windowBytes = file.readAt(position, window);
            }
            const qint64 skipped = position - windowOffset;
            const auto count = std::min(target.size(), static_cast<std::size_t>(windowBytes - skipped));
            if (count == 0) {
                return false;
            }
            std::memcpy(target.data(), window.data() + skipped, count);
            target = target.subspan(count);
            position += static_cast<qint64>(count);
        }
        return true;
    }
};

void readData(png_structp png, png_bytep target, std::size_t count) {
    auto* context = static_cast<ReadContext*>(png_get_io_ptr(png));
    if (!context->read(std::as_writable_bytes(std::span(target, count)))) {
        png_error(png, "the file is cut off");
    }
}

[[noreturn]] void keepError(png_structp png, png_const_charp message) {
    auto* context = static_cast<ReadContext*>(png_get_error_ptr(png));
    std::strncpy(context->message.data(), message, context->message.size() - 1);
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp /*png*/, png_const_charp /*message*/) {
    // All that libpng only warns of in the header is about chunks that it then leaves out.
}

/// Owns libpng's structures.
struct Library {
    explicit Library(ReadContext& context)
        : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &context, keepError, ignoreWarning)),
          info(png != nullptr ? png_create_info_struct(png) : nullptr) {}

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    ~Library() { png_destroy_read_struct(&png, &info, nullptr); }

    png_structp png;
    png_infop info;
};

/// The only function that libpng may leave by longjmp; it holds nothing that a destructor would have to release.
bool readInfo(png_structp png, png_infop info, ReadContext* context) noexcept {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_read_fn(png, context, readData);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_malloc_max(png, largestHeaderChunkBytes);
    // Nothing but these is wanted; a file may have any number of texts that inflate to any size.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    constexpr png_byte wanted[] = "iCCP\0sRGB\0pHYs";
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, wanted, 3);
    png_read_info(png, info);
    return true;
}

QByteArray bytesOf(const void* data, qsizetype count) {
    return {static_cast<const char*>(data), count};
}

void takeSize(const Library& library, PngHeader& header) {
    header.width = png_get_image_width(library.png, library.info);
    header.height = png_get_image_height(library.png, library.info);
    header.bitDepth = png_get_bit_depth(library.png, library.info);
    header.color = static_cast<PngColor>(png_get_color_type(library.png, library.info));
    header.isInterlaced = png_get_interlace_type(library.png, library.info) != PNG_INTERLACE_NONE;
}

void takePalette(const Library& library, PngHeader& header) {
    png_colorp colors = nullptr;
    int count = 0;
    if (header.color != PngColor::palette || png_get_PLTE(library.png, library.info, &colors, &count) == 0) {
        return;
    }
    for (const png_color& color : std::span(colors, static_cast<std::size_t>(count))) {
        const std::array triple{color.red, color.green, color.blue};
        header.palette += bytesOf(triple.data(), 3);
    }
}

void takeTransparency(const Library& library, PngHeader& header) {
    png_bytep alpha = nullptr;
    int count = 0;
    png_color_16p color = nullptr;
    if (png_get_tRNS(library.png, library.info, &alpha, &count, &color) == 0) {
        return;
    }
    // PNG 1.2, 4.2.1.1: of the key's two bytes those above the depth mean nothing.
    const auto sample = [&](unsigned value) { return static_cast<quint16>(value & ((1U << header.bitDepth) - 1U)); };
    if (header.color == PngColor::palette) {
        header.paletteAlpha = bytesOf(alpha, count);
    } else if (header.color == PngColor::gray) {
        header.transparentColor = {sample(color->gray), sample(color->gray), sample(color->gray)};
    } else if (header.color == PngColor::rgb) {
        header.transparentColor = {sample(color->red), sample(color->green), sample(color->blue)};
    }
}

void takeColorSpace(const Library& library, PngHeader& header) {
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 bytes = 0;
    int intent = 0;
    if (png_get_iCCP(library.png, library.info, &name, &compression, &profile, &bytes) != 0) {
        header.iccProfile = bytesOf(profile, bytes);
    }
    header.declaresSRGB = png_get_sRGB(library.png, library.info, &intent) != 0;
}

void takeDensity(const Library& library, PngHeader& header) {
    png_uint_32 horizontal = 0;
    png_uint_32 vertical = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(library.png, library.info, &horizontal, &vertical, &unit) != 0 && unit == PNG_RESOLUTION_METER) {
        header.dpiWidth = horizontal * metresPerInch;
        header.dpiHeight = vertical * metresPerInch;
    }
}

void readHeaderChunks(const RandomAccessFile& file, PngHeader& header) {
    ReadContext context(file);
    const Library library(context);
    if (library.info == nullptr) {
        throw std::bad_alloc();
    }
    if (!readInfo(library.png, library.info, &context)) {
        if (context.readFailure) {
            std::rethrow_exception(context.readFailure);
        }
        throw ImageError(QStringLiteral("PNG: ") + QString::fromLatin1(context.message.data()));
    }
    takeSize(library, header);
    takePalette(library, header);
    takeTransparency(library, header);
    takeColorSpace(library, header);
    takeDensity(library, header);
}

// ---------------------------------------------------------------------------------------------------------------------

/// Refuses what no image data of that size can hold, before memory or time is spent on it. An interlaced picture of
/// the same size needs a little more than the rows counted here.
void refuseBomb(const PngHeader& header) {
    const qint64 rowBytes = header.packedBytes(header.width);
    if (rowBytes > largestPngRowBytes) {
        throw ImageError(QStringLiteral("the rows of the PNG file are too wide"));
    }
    if (header.height * (1 + rowBytes) > header.imageDataBytes * largestInflation) {
        throw ImageError(QStringLiteral("the PNG file has far less image data than its size needs"));
    }
}

} // namespace

int PngHeader::bitsPerPixel() const {
    switch (color) {
    case PngColor::gray:
    case PngColor::palette:
        return bitDepth;
    case PngColor::grayAlpha:
        return 2 * bitDepth;
    case PngColor::rgb:
        return 3 * bitDepth;
    case PngColor::rgba:
        return 4 * bitDepth;
    }
    return 0;
}

PixelFormat PngHeader::format() const {
    const bool isGray = color == PngColor::gray || color == PngColor::grayAlpha;
    const bool hasAlpha = color == PngColor::grayAlpha || color == PngColor::rgba || hasTransparency();
    return {isGray ? ColorModel::gray : ColorModel::rgb, std::max(bitDepth, 8), false, hasAlpha};
}

PngHeader readPngHeader(const RandomAccessFile& file) {
    PngHeader header;
    ChunkWalk(file).run(header);
    readHeaderChunks(file, header);
    refuseBomb(header);
    return header;
}

} // namespace orvex::platform
