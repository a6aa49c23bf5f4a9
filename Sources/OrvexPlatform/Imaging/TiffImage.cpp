#include "Color/IccProfile.h"
#include "Imaging/Codecs.h"
#include "Imaging/ImageError.h"
#include "Imaging/TiffLayout.h"
#include "Imaging/TiffSamples.h"
#include "Imaging/TiffSegments.h"

#include <algorithm>

namespace orvex::platform {

namespace {

using SharedFile = std::shared_ptr<const RandomAccessFile>;

/// One pass over the pixels: gathers strips of the raster from segments of the file.
///
/// Uncompressed data is read straight to where it goes. Compressed strips are decoded as a whole if they are short and
/// otherwise row by row, with their compressed bytes in memory; of tiles a whole row is held.
class TiffPass {
public:
    TiffPass(const SharedFile& file, const TiffLayout& layout)
        : layout_(layout),
          samples_(layout),
          segments_(TiffSegments::open(file, layout, samples_.planes())),
          rasterRowBytes_(layout.width * layout.format.bytesPerPixel()),
          stored_(samples_.planes().size()) {}

    /// Fills `strip` with the rows from `firstRow`. Strips are asked for in order.
    void fill(qint64 firstRow, std::span<std::byte> strip);

private:
    [[nodiscard]] qint64 pieceRows(qint64 row, qint64 end) const;
    void fillPiece(qint64 row, qint64 rowCount, qint64 column, std::span<std::byte> rows);
    void readPlanes(qint64 row, qint64 rowCount, qint64 column);

    const TiffLayout& layout_;
    TiffSamples samples_;
    std::unique_ptr<TiffSegments> segments_;
    qint64 rasterRowBytes_;
    std::vector<std::vector<std::byte>> stored_; ///< rows of a segment as stored, for each plane
};

std::span<std::byte> part(std::span<std::byte> bytes, qint64 offset, qint64 count) {
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
}

void TiffPass::fill(qint64 firstRow, std::span<std::byte> strip) {
    const qint64 end = firstRow + static_cast<qint64>(strip.size()) / rasterRowBytes_;
    for (qint64 row = firstRow; row < end;) {
        const qint64 count = pieceRows(row, end);
        const auto rows = part(strip, (row - firstRow) * rasterRowBytes_, count * rasterRowBytes_);
        for (qint64 column = 0; column < layout_.columns(); ++column) {
            fillPiece(row, count, column, rows);
        }
        row += count;
    }
}

/// The rows from `row` that lie in one band and whose stored form, which may be far larger, is about a strip's size.
qint64 TiffPass::pieceRows(qint64 row, qint64 end) const {
    const qint64 bandEnd = (row / layout_.segmentHeight + 1) * layout_.segmentHeight;
    return std::min({end - row, bandEnd - row, stripRowsFor(layout_.segmentRowBytes())});
}

void TiffPass::fillPiece(qint64 row, qint64 rowCount, qint64 column, std::span<std::byte> rows) {
    if (samples_.isIdentity() && layout_.segmentWidth == layout_.width) {
        return segments_->read({0, column, row, rowCount}, rows);
    }
    readPlanes(row, rowCount, column);
    const qint64 left = column * layout_.segmentWidth;
    const qint64 width = std::min(layout_.segmentWidth, layout_.width - left);
    const qint64 pixelBytes = layout_.format.bytesPerPixel();
    const qint64 storedRowBytes = layout_.segmentRowBytes();
    std::vector<std::span<const std::byte>> planeRows(stored_.size());
    for (qint64 index = 0; index < rowCount; ++index) {
        std::transform(stored_.begin(), stored_.end(), planeRows.begin(), [&](std::vector<std::byte>& plane) {
            return part(plane, index * storedRowBytes, storedRowBytes);
        });
        samples_.convertRow(planeRows, part(rows, index * rasterRowBytes_ + left * pixelBytes, width * pixelBytes));
    }
}

void TiffPass::readPlanes(qint64 row, qint64 rowCount, qint64 column) {
    for (std::size_t index = 0; index < stored_.size(); ++index) {
        stored_[index].resize(static_cast<std::size_t>(rowCount * layout_.segmentRowBytes()));
        segments_->read({samples_.planes()[index], column, row, rowCount}, stored_[index]);
    }
}

class TiffRows : public RowSource {
public:
    TiffRows(SharedFile file, TiffLayout layout) : file_(std::move(file)), layout_(std::move(layout)) {}

    void rows(const RowSink& sink) const override {
        TiffPass pass(file_, layout_);
        const qint64 rowBytes = layout_.width * layout_.format.bytesPerPixel();
        const qint64 stripRows = stripRowsFor(rowBytes);
        std::vector<std::byte> strip(static_cast<std::size_t>(std::min(stripRows, layout_.height) * rowBytes));
        for (qint64 row = 0; row < layout_.height; row += stripRows) {
            const qint64 count = std::min(stripRows, layout_.height - row);
            const auto bytes = part(strip, 0, count * rowBytes);
            pass.fill(row, bytes);
            sink({row, count, bytes});
        }
    }

private:
    SharedFile file_;
    TiffLayout layout_;
};

/// TIFF 6.0, section 8: the unit is the inch unless the file says otherwise.
std::optional<double> unitsPerInch(const TiffDirectory& directory) {
    if (directory.find(TIFFTAG_RESOLUTIONUNIT) == nullptr) {
        return 1;
    }
    constexpr double centimetresPerInch = 2.54;
    const std::optional<quint64> unit = directory.firstInteger(TIFFTAG_RESOLUTIONUNIT);
    if (unit == quint64{RESUNIT_CENTIMETER}) {
        return centimetresPerInch;
    }
    return unit == quint64{RESUNIT_INCH} ? std::optional(1.0) : std::nullopt;
}

std::optional<double> density(const TiffDirectory& directory, quint32 tag) {
    const std::optional<double> scale = unitsPerInch(directory);
    const std::optional<double> resolution = directory.number(tag);
    return scale && resolution ? std::optional(*resolution * *scale) : std::nullopt;
}

ImageProperties propertiesOf(const TiffLayout& layout, const TiffDirectory& directory) {
    ImageProperties properties;
    properties.pixelWidth = layout.width;
    properties.pixelHeight = layout.height;
    const quint64 orientation = directory.firstInteger(TIFFTAG_ORIENTATION).value_or(1);
    properties.orientation = orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
    properties.dpiWidth = density(directory, TIFFTAG_XRESOLUTION);
    properties.dpiHeight = density(directory, TIFFTAG_YRESOLUTION);
    return properties;
}

/// A profile that the file claims and does not hold tells of a file that was cut off; without it the colours of a sound
/// picture would be wrong.
std::optional<QByteArray> embeddedProfile(const TiffDirectory& directory, const TiffHandle& handle) {
    const TiffDirectory::Entry* entry = directory.find(TIFFTAG_ICCPROFILE);
    if (entry != nullptr && entry->type == TIFF_UNDEFINED && !directory.holdsValues(*entry)) {
        throw ImageError(QStringLiteral("the TIFF file ends before its profile does"));
    }
    quint32 size = 0;
    const char* data = nullptr;
    if (TIFFGetField(handle.get(), TIFFTAG_ICCPROFILE, &size, &data) != 1) {
        return std::nullopt;
    }
    return QByteArray(data, static_cast<qsizetype>(size));
}

class TiffImage : public ImageSource {
public:
    TiffImage(SharedFile file, const TiffDirectory& directory, TiffHandle& handle)
        : file_(std::move(file)),
          layout_(TiffLayout::read(handle, directory, file_->size())),
          properties_(propertiesOf(layout_, directory)),
          profile_(appliedProfile(embeddedProfile(directory, handle), layout_.format.model)) {}

    [[nodiscard]] ImageProperties properties() const override { return properties_; }

    [[nodiscard]] Raster full() const override {
        return {layout_.width,  layout_.height, properties_.orientation,
                layout_.format, profile_,       std::make_shared<TiffRows>(file_, layout_)};
    }

private:
    SharedFile file_;
    TiffLayout layout_;
    ImageProperties properties_;
    std::optional<QByteArray> profile_;
};

} // namespace

std::unique_ptr<ImageSource> openTiff(std::shared_ptr<const RandomAccessFile> file) {
    const TiffDirectory directory = TiffDirectory::read(file);
    TiffHandle handle(file, directory);
    return std::make_unique<TiffImage>(std::move(file), directory, handle);
}

} // namespace orvex::platform
