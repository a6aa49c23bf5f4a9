#pragma once

#include "Imaging/Raster.h"
#include "Imaging/RowProgress.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <stop_token>

namespace orvex::platform {

/// What the headers of image 0 of a file say.
struct ImageProperties {
    qint64 pixelWidth = 0; ///< stored, before the orientation is applied
    qint64 pixelHeight = 0;
    int orientation = 1;            ///< 1 to 8; what is absent or out of range counts as 1
    std::optional<double> dpiWidth; ///< pixels per inch along the stored rows, as the file states it, unchecked
    std::optional<double> dpiHeight;
};

/// An encoded pixel stream that a PDF can hold exactly as it stands in the file. What a PDF shows of it is what
/// `ImageSource::full` delivers.
struct EncodedStream {
    enum class Filter { dct, flatePng };

    Filter filter = Filter::dct;
    qint64 width = 0;
    qint64 height = 0;
    ColorModel model = ColorModel::rgb; ///< of the palette for an indexed picture
    int bitsPerComponent = 8;           ///< 1, 2, 4, 8 or 16, as stored
    bool isInverted = false;            ///< CMYK stored with 0 as full ink
    int dctColorTransform = 0;          ///< the DCT filter's ColorTransform: 1 for YCbCr and YCCK
    QByteArray palette;                 ///< RGB triples of an indexed picture; empty otherwise

    /// Hands over the stream's bytes in order, in pieces. Raises FileSystemError, or ImageError if the file no longer
    /// has the bytes it had.
    std::function<void(const std::function<void(std::span<const std::byte>)>&)> copy;
};

/// One opened image file: its headers are read, no pixel is decoded yet. The file stays open. Any thread.
class ImageSource {
public:
    virtual ~ImageSource() = default;
    ImageSource(const ImageSource&) = delete;
    ImageSource& operator=(const ImageSource&) = delete;

    /// Opens a JPEG, PNG, TIFF or HEIC file by its content. Raises ImageError for anything that is no such image or
    /// whose headers are damaged, FileSystemError if the file cannot be read.
    ///
    /// Once a stop is requested, whatever reads or decodes the source, its rasters included, soon raises Interrupted.
    /// What cannot be stopped is a codec at work on one tile of a HEIC file or one segment of a TIFF file.
    [[nodiscard]] static std::unique_ptr<ImageSource> open(const QString& path, const std::stop_token& stop = {});

    [[nodiscard]] virtual ImageProperties properties() const = 0;

    /// The whole picture, lazily: reading its rows decodes them.
    [[nodiscard]] virtual Raster full() const = 0;

    /// The picture decoded through the codec's own reduction, where it has one, to a size that is at least
    /// `targetWidth` x `targetHeight` (stored orientation); otherwise the same as `full`. All of the file's pixel data
    /// is read on the way, so that damage anywhere is found.
    [[nodiscard]] virtual Raster reduced(qint64 targetWidth, qint64 targetHeight) const {
        (void)targetWidth;
        (void)targetHeight;
        return full();
    }

    /// The stream to embed untouched, if a PDF can hold this file's.
    [[nodiscard]] virtual std::optional<EncodedStream> encodedStream() const { return std::nullopt; }

    /// An upright, materialised picture of the whole image whose longer side is `maximum` at most; depth, float flag,
    /// model, alpha and colour space stay those of the source. Never larger than the source.
    ///
    /// `progress` is told of the source's stored rows, on the calling thread.
    [[nodiscard]] Raster preview(qint64 maximum, const RowProgress& progress = {}) const;

protected:
    ImageSource() = default;

private:
    std::stop_token stop_;
};

} // namespace orvex::platform
