#pragma once

#include "Files/RandomAccessFile.h"
#include "Imaging/Raster.h"

#include <QByteArray>

#include <array>
#include <optional>

namespace orvex::platform {

/// The colour type of a PNG, numbered as in its header.
enum class PngColor { gray = 0, rgb = 2, palette = 3, grayAlpha = 4, rgba = 6 };

/// What a PNG file says outside its image data.
struct PngHeader {
    qint64 width = 0;
    qint64 height = 0;
    int bitDepth = 8; ///< of a sample or palette index: 1, 2, 4, 8 or 16
    PngColor color = PngColor::rgb;
    bool isInterlaced = false;
    QByteArray palette;                                     ///< RGB triples; empty unless the colour type is palette
    QByteArray paletteAlpha;                                ///< one byte for each of the palette's first entries
    std::optional<std::array<quint16, 3>> transparentColor; ///< gray in all three, or RGB, as stored samples

    std::optional<QByteArray> iccProfile; ///< as the library accepted it
    bool declaresSRGB = false;
    std::optional<double> dpiWidth; ///< pixels per inch
    std::optional<double> dpiHeight;
    QByteArray exif; ///< begins with the TIFF header; empty if there is none

    qint64 imageDataOffset = 0; ///< where the first IDAT chunk begins
    qint64 imageDataBytes = 0;  ///< what all IDAT chunks hold

    /// The bits of a pixel as stored.
    [[nodiscard]] int bitsPerPixel() const;

    /// The bytes of `pixels` stored pixels: whole ones, without the row's filter byte.
    [[nodiscard]] qint64 packedBytes(qint64 pixels) const { return (pixels * bitsPerPixel() + 7) / 8; }

    [[nodiscard]] bool hasTransparency() const { return !paletteAlpha.isEmpty() || transparentColor.has_value(); }

    /// What the decoded samples are.
    [[nodiscard]] PixelFormat format() const;
};

/// Reads the header chunks through libpng, and follows all chunks to the end of the file without reading their data.
/// Raises ImageError for a file that is cut off, has a damaged critical chunk outside its image data or chunks out of
/// order, or announces more pixels than its image data can hold; FileSystemError. Ancillary chunks that libpng does not
/// accept are as good as absent.
[[nodiscard]] PngHeader readPngHeader(const RandomAccessFile& file);

/// The bytes of a row of a PNG that can be decoded. Some rows are held at once, so that their width must have a bound.
inline constexpr qint64 largestPngRowBytes = 64 << 20;

} // namespace orvex::platform
