#pragma once

#include "Imaging/Raster.h"
#include "Imaging/TiffDirectory.h"
#include "Imaging/TiffHandle.h"
#include "Imaging/TiffYCbCr.h"

#include <array>
#include <optional>
#include <vector>

namespace orvex::platform {

/// How the pixels of a TIFF file's first image lie in it, and what its samples mean. A value; any thread.
///
/// The picture is a grid of segments: strips, which are as wide as the picture, or tiles, whose last row and column
/// reach beyond it. With separate planes each sample of a pixel has a grid of its own, one after the other.
struct TiffLayout {
    enum class Alpha { none, unassociated, associated };

    qint64 width = 0;
    qint64 height = 0;
    quint16 compression = 0;
    quint16 fillOrder = 0;
    bool isByteSwapped = false; ///< the file's byte order is not the machine's

    bool isTiled = false;
    qint64 segmentWidth = 0;
    qint64 segmentHeight = 0;
    bool isSeparate = false; ///< each sample in a plane of its own

    /// For YCbCr that no JPEG decoder converts: how segments are stored, while everything else tells of the RGB pixels.
    std::optional<TiffYCbCr> ycbcr;

    int bits = 0; ///< of a sample
    bool isFloat = false;
    int samplesPerPixel = 0;                    ///< with all extra samples
    bool isInverted = false;                    ///< 0 is white
    std::vector<std::array<quint8, 3>> palette; ///< RGB by index; empty if the samples are colours
    Alpha alpha = Alpha::none;
    int alphaSample = 0; ///< its index among the samples
    PixelFormat format;  ///< of the raster

    /// Reads and checks the layout, and sets the handle to deliver pixels in that way. Raises ImageError for what is
    /// damaged or not supported, and for a size that the file's bytes cannot justify.
    [[nodiscard]] static TiffLayout read(TiffHandle& handle, const TiffDirectory& directory, qint64 fileSize);

    [[nodiscard]] int colorSamples() const { return palette.empty() ? componentCount(format.model) : 1; }

    [[nodiscard]] int planeCount() const { return isSeparate ? samplesPerPixel : 1; }

    [[nodiscard]] int samplesInPlane() const { return isSeparate ? 1 : samplesPerPixel; }

    [[nodiscard]] qint64 columns() const { return (width + segmentWidth - 1) / segmentWidth; }

    [[nodiscard]] qint64 bands() const { return (height + segmentHeight - 1) / segmentHeight; }

    /// The rows that the segments of a band hold: the last strip ends with the picture, a tile is always whole.
    [[nodiscard]] qint64 rowsOfBand(qint64 band) const;

    /// The bytes of a row of a segment; of RGB pixels for YCbCr.
    [[nodiscard]] qint64 segmentRowBytes() const;

    /// The bytes of so many rows of a segment when decompressed.
    [[nodiscard]] qint64 segmentBytes(qint64 rows) const;

    /// libtiff's number of a segment.
    [[nodiscard]] quint32 segmentIndex(int plane, qint64 band, qint64 column) const;

    /// Raises ImageError unless a segment of that band lies in the file and its bytes are enough for its pixels.
    void checkExtent(const TiffHandle::Extent& extent, qint64 band, qint64 fileSize) const;

    bool operator==(const TiffLayout&) const = default;
};

} // namespace orvex::platform
