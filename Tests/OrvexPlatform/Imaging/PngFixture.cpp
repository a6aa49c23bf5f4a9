#include "PngFixture.h"

#include <QtEndian>

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <random>
#include <stdexcept>

namespace orvex::test {

namespace {

const QByteArray signature("\x89PNG\r\n\x1a\n", 8);

QByteArray number(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

const Bytef* zlibBytes(const QByteArray& bytes) {
    return reinterpret_cast<const Bytef*>(bytes.constData());
}

struct MemoryReader {
    const QByteArray& file;
    qsizetype offset = 0;
};

void readFromMemory(png_structp png, png_bytep target, std::size_t count) {
    auto* reader = static_cast<MemoryReader*>(png_get_io_ptr(png));
    if (reader->offset + static_cast<qsizetype>(count) > reader->file.size()) {
        png_error(png, "end of the file");
    }
    std::memcpy(target, reader->file.constData() + reader->offset, count);
    reader->offset += static_cast<qsizetype>(count);
}

[[noreturn]] void failSilently(png_structp png, png_const_charp /*message*/) {
    png_longjmp(png, 1);
}

void beSilent(png_structp /*png*/, png_const_charp /*message*/) {}

/// The only function that libpng may leave by longjmp.
bool readAll(png_structp png, png_infop info, MemoryReader* reader, QByteArray* pixels,
             std::vector<png_bytep>* rows) noexcept {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_read_fn(png, reader, readFromMemory);
    png_read_info(png, info);
    png_set_expand(png);
    if (png_get_bit_depth(png, info) == 16) {
        png_set_swap(png);
    }
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    const std::size_t height = png_get_image_height(png, info);
    pixels->resize(static_cast<qsizetype>(rowBytes * height));
    rows->resize(height);
    for (std::size_t row = 0; row < height; ++row) {
        (*rows)[row] = reinterpret_cast<png_bytep>(pixels->data()) + row * rowBytes;
    }
    png_read_image(png, rows->data());
    png_read_end(png, info);
    return true;
}

} // namespace

QByteArray PngChunk::bytes() const {
    const QByteArray covered = type + data;
    const auto checksum = static_cast<quint32>(crc32(0, zlibBytes(covered), static_cast<uInt>(covered.size())));
    return number(static_cast<quint32>(data.size())) + covered + number(checksum);
}

std::vector<PngChunk> pngChunks(const QByteArray& file) {
    std::vector<PngChunk> chunks;
    for (qsizetype offset = signature.size(); offset < file.size();) {
        const auto length = qsizetype{qFromBigEndian<quint32>(file.constData() + offset)};
        chunks.push_back({file.sliced(offset + 4, 4), file.sliced(offset + 8, length)});
        offset += 12 + length;
    }
    return chunks;
}

QByteArray pngFile(const std::vector<PngChunk>& chunks) {
    QByteArray file = signature;
    for (const PngChunk& chunk : chunks) {
        file += chunk.bytes();
    }
    return file;
}

QByteArray withChunksBefore(const QByteArray& file, const QByteArray& type, const std::vector<PngChunk>& added) {
    std::vector<PngChunk> chunks = pngChunks(file);
    const auto place = std::ranges::find(chunks, type, &PngChunk::type);
    if (place == chunks.end()) {
        throw std::runtime_error("no such chunk in a test file");
    }
    chunks.insert(place, added.begin(), added.end());
    return pngFile(chunks);
}

QByteArray imageData(const QByteArray& file) {
    QByteArray data;
    for (const PngChunk& chunk : pngChunks(file)) {
        data += chunk.type == "IDAT" ? chunk.data : QByteArray();
    }
    return data;
}

QByteArray withImageData(const QByteArray& file, const QByteArray& data, const std::vector<qsizetype>& sizes) {
    std::vector<PngChunk> chunks;
    qsizetype offset = 0;
    for (const PngChunk& chunk : pngChunks(file)) {
        if (chunk.type != "IDAT") {
            chunks.push_back(chunk);
        } else if (chunks.back().type != "IDAT") {
            for (const qsizetype size : sizes) {
                chunks.push_back({"IDAT", data.mid(offset, size)});
                offset += chunks.back().data.size();
            }
            chunks.push_back({"IDAT", data.mid(offset)});
        }
    }
    return pngFile(chunks);
}

QByteArray deflated(const QByteArray& bytes) {
    auto size = compressBound(static_cast<uLong>(bytes.size()));
    QByteArray stream(static_cast<qsizetype>(size), '\0');
    compress2(reinterpret_cast<Bytef*>(stream.data()), &size, zlibBytes(bytes), static_cast<uLong>(bytes.size()),
              Z_BEST_SPEED);
    return stream.first(static_cast<qsizetype>(size));
}

std::optional<QByteArray> inflated(const QByteArray& stream) {
    QByteArray bytes(1 << 20, '\0');
    auto size = static_cast<uLongf>(bytes.size());
    const int result =
        uncompress(reinterpret_cast<Bytef*>(bytes.data()), &size, zlibBytes(stream), static_cast<uLong>(stream.size()));
    return result == Z_OK ? std::optional(bytes.first(static_cast<qsizetype>(size))) : std::nullopt;
}

PngChunk pngDensity(quint32 x, quint32 y, quint8 unit) {
    return {"pHYs", number(x) + number(y) + static_cast<char>(unit)};
}

int PngFixture::bitsPerPixel() const {
    constexpr std::array<int, 7> samples{1, 0, 3, 1, 2, 0, 4};
    return samples.at(colorType) * bitDepth;
}

QByteArray PngFixture::filteredRows() const {
    struct Pass {
        quint32 x, y, dx, dy;
    };

    const std::vector<Pass> passes = isInterlaced
                                         ? std::vector<Pass>{{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                                             {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}
                                         : std::vector<Pass>{{0, 0, 1, 1}};
    std::mt19937 random(seed);
    QByteArray rows;
    for (const Pass& pass : passes) {
        const quint32 columns = width > pass.x ? (width - pass.x + pass.dx - 1) / pass.dx : 0;
        const quint32 lines = height > pass.y ? (height - pass.y + pass.dy - 1) / pass.dy : 0;
        const quint64 rowBytes = (quint64{columns} * static_cast<quint64>(bitsPerPixel()) + 7) / 8;
        for (quint32 line = 0; columns > 0 && line < lines; ++line) {
            rows += static_cast<char>(filter.value_or(static_cast<quint8>(random() % 5)));
            for (quint64 index = 0; index < rowBytes; ++index) {
                rows += static_cast<char>(random());
            }
        }
    }
    return rows;
}

QByteArray PngFixture::header() const {
    return number(width) + number(height) + static_cast<char>(bitDepth) + static_cast<char>(colorType) +
           QByteArray(2, '\0') + static_cast<char>(isInterlaced);
}

QByteArray PngFixture::palette() const {
    std::mt19937 random(seed + 1);
    QByteArray triples;
    for (int index = 0; index < 3 * paletteSize; ++index) {
        triples += static_cast<char>(random());
    }
    return triples;
}

QByteArray PngFixture::bytes() const {
    std::vector<PngChunk> chunks{{"IHDR", header()}};
    chunks.insert(chunks.end(), headerChunks.begin(), headerChunks.end());
    if (paletteSize > 0) {
        chunks.push_back({"PLTE", palette()});
    }
    if (!transparency.isEmpty()) {
        chunks.push_back({"tRNS", transparency});
    }
    chunks.push_back({"IDAT", deflated(filteredRows())});
    chunks.push_back({"IEND", {}});
    return pngFile(chunks);
}

QByteArray decodedByLibpng(const QByteArray& file) {
    MemoryReader reader{file};
    QByteArray pixels;
    std::vector<png_bytep> rows;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, failSilently, beSilent);
    png_infop info = png_create_info_struct(png);
    const bool isRead = readAll(png, info, &reader, &pixels, &rows);
    png_destroy_read_struct(&png, &info, nullptr);
    return isRead ? pixels : QByteArray();
}

} // namespace orvex::test
