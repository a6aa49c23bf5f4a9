#include "Imaging/PngInterlace.h"

#include "Imaging/ImageError.h"
#include "Imaging/PngFilter.h"

#include <array>

namespace orvex::platform {

namespace {

std::size_t size(qint64 count) {
    return static_cast<std::size_t>(count);
}

/// Which pixels of the picture a pass has.
struct Pass {
    qint64 firstColumn;
    qint64 firstRow;
    qint64 columnStep;
    qint64 rowStep;

    [[nodiscard]] qint64 width(qint64 all) const { return (all - firstColumn + columnStep - 1) / columnStep; }

    [[nodiscard]] qint64 height(qint64 all) const { return (all - firstRow + rowStep - 1) / rowStep; }
};

constexpr std::array<Pass, 7> adam7 = {
    {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};

/// Puts the pixels of a pass's row to their places in the picture's row, which is zero there.
void scatter(const std::byte* row, const Pass& pass, const PngHeader& header, std::byte* pictureRow) {
    const std::size_t bits = size(header.bitsPerPixel());
    const std::size_t width = size(pass.width(header.width));
    std::size_t column = size(pass.firstColumn);
    for (std::size_t pixel = 0; pixel < width; ++pixel, column += size(pass.columnStep)) {
        if (bits >= 8) {
            std::copy_n(row + pixel * bits / 8, bits / 8, pictureRow + column * bits / 8);
            continue;
        }
        const std::byte mask{static_cast<std::uint8_t>((1U << bits) - 1U)};
        const std::byte value = (row[pixel * bits / 8] >> (8 - bits - pixel * bits % 8)) & mask;
        pictureRow[column * bits / 8] |= value << (8 - bits - column * bits % 8);
    }
}

void readPass(PngInflater& inflater, const Pass& pass, const PngHeader& header, std::byte* picture) {
    const std::size_t pictureRowBytes = size(header.packedBytes(header.width));
    const std::size_t rowBytes = size(header.packedBytes(pass.width(header.width)));
    std::vector<std::byte> filtered(1 + rowBytes);
    std::vector<std::byte> rows(2 * rowBytes); // the one above, and the one of the moment
    const qint64 height = pass.height(header.height);
    for (qint64 row = 0; row < height; ++row) {
        inflater.read(filtered);
        undoPngFilters(filtered, rowBytes, size(header.packedBytes(1)), rows);
        std::copy_n(rows.data() + rowBytes, rowBytes, rows.data());
        scatter(rows.data(), pass, header, picture + size(pass.firstRow + row * pass.rowStep) * pictureRowBytes);
    }
}

} // namespace

std::vector<std::byte> readInterlacedPng(PngInflater& inflater, const PngHeader& header) {
    std::vector<std::byte> picture;
    try {
        picture.resize(size(header.height * header.packedBytes(header.width)));
    } catch (const std::bad_alloc&) {
        throw ImageError(QStringLiteral("there is not enough memory for an interlaced PNG file of this size"));
    }
    for (const Pass& pass : adam7) {
        // PNG 1.2, 2.6: a pass without pixels has no rows at all.
        if (pass.width(header.width) > 0) {
            readPass(inflater, pass, header, picture.data());
        }
    }
    return picture;
}

} // namespace orvex::platform
