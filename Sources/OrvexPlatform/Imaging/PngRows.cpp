#include "Imaging/PngRows.h"

#include "Imaging/OverlappedRows.h"
#include "Imaging/PngFilter.h"
#include "Imaging/PngImageData.h"
#include "Imaging/PngInterlace.h"
#include "Imaging/PngSamples.h"

namespace orvex::platform {

namespace {

std::size_t size(qint64 count) {
    return static_cast<std::size_t>(count);
}

/// The rows of the image data as inflated, each with its filter's number in front. Holds a strip.
class FilteredRows : public RowSource {
public:
    FilteredRows(const RandomAccessFile& file, const PngHeader& header, qint64 stripRows)
        : file_(file),
          offset_(header.imageDataOffset),
          height_(header.height),
          rowBytes_(1 + header.packedBytes(header.width)),
          stripRows_(stripRows) {}

    [[nodiscard]] qint64 rowBytes() const { return rowBytes_; }

    void rows(const RowSink& sink) const override {
        PngInflater inflater(file_, offset_);
        std::vector<std::byte> strip(size(stripRows_ * rowBytes_));
        for (qint64 row = 0; row < height_; row += stripRows_) {
            const qint64 count = std::min(stripRows_, height_ - row);
            const std::span bytes = std::span(strip).first(size(count * rowBytes_));
            inflater.read(bytes);
            sink({row, count, bytes});
        }
        inflater.finish();
    }

private:
    const RandomAccessFile& file_;
    qint64 offset_;
    qint64 height_;
    qint64 rowBytes_;
    qint64 stripRows_;
};

} // namespace

/// Turns unfiltered rows into those of the raster and hands them over.
class PngRows::Delivery {
public:
    Delivery(const PngHeader& header, qint64 stripRows, const RowSink& sink)
        : packedBytes_(size(header.packedBytes(header.width))),
          sampleBytes_(size(header.width * header.format().bytesPerPixel())),
          samples_(header),
          strip_(samples_.isIdentity() ? 0 : size(stripRows) * sampleBytes_),
          sink_(sink) {}

    void deliver(qint64 firstRow, std::span<const std::byte> packed) {
        const std::size_t count = packed.size() / packedBytes_;
        std::span<const std::byte> bytes = packed;
        if (!samples_.isIdentity()) {
            const std::span strip = std::span(strip_).first(count * sampleBytes_);
            samples_.convert(packed, strip);
            bytes = strip;
        }
        sink_({firstRow, static_cast<qint64>(count), bytes});
    }

private:
    std::size_t packedBytes_; ///< of a stored row
    std::size_t sampleBytes_; ///< of a row of the raster
    PngSamples samples_;
    std::vector<std::byte> strip_;
    const RowSink& sink_;
};

PngRows::PngRows(std::shared_ptr<const RandomAccessFile> file, PngHeader header)
    : file_(std::move(file)),
      header_(std::move(header)),
      stripRows_(std::min(stripRowsFor(header_.width * header_.format().bytesPerPixel()), header_.height)) {}

void PngRows::rows(const RowSink& sink) const {
    Delivery delivery(header_, stripRows_, sink);
    if (header_.isInterlaced) {
        rowsOfPasses(delivery);
    } else {
        rowsInOrder(delivery);
    }
}

void PngRows::rowsInOrder(Delivery& delivery) const {
    const std::size_t rowBytes = size(header_.packedBytes(header_.width));
    const std::size_t pixelBytes = size(header_.packedBytes(1));
    auto source = std::make_shared<FilteredRows>(*file_, header_, stripRows_);
    const PixelFormat bytes{ColorModel::gray, 8, false, false};
    const Raster filtered(source->rowBytes(), header_.height, 1, bytes, std::nullopt, source);
    // The row above, which is zero at the top, and then those of a strip.
    std::vector<std::byte> rows((size(stripRows_) + 1) * rowBytes);
    overlappedRows(filtered, [&](const RowStrip& strip) {
        undoPngFilters(strip.bytes, rowBytes, pixelBytes, rows);
        const std::span unfiltered = std::span(rows).subspan(rowBytes, size(strip.rowCount) * rowBytes);
        delivery.deliver(strip.firstRow, unfiltered);
        std::ranges::copy(unfiltered.last(rowBytes), rows.begin());
    });
}

void PngRows::rowsOfPasses(Delivery& delivery) const {
    PngInflater inflater(*file_, header_.imageDataOffset);
    const std::vector<std::byte> picture = readInterlacedPng(inflater, header_);
    inflater.finish();
    const std::size_t rowBytes = size(header_.packedBytes(header_.width));
    for (qint64 row = 0; row < header_.height; row += stripRows_) {
        const qint64 count = std::min(stripRows_, header_.height - row);
        delivery.deliver(row, std::span(picture).subspan(size(row) * rowBytes, size(count) * rowBytes));
    }
}

} // namespace orvex::platform
