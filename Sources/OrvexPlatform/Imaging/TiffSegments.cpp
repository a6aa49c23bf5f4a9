#include "Imaging/TiffSegments.h"

#include "Imaging/ImageError.h"

#include <QtEndian>

#include <algorithm>

namespace orvex::platform {

namespace {

/// Strips of up to this size are decoded at once, which is the fastest way for some methods; longer ones row by row.
constexpr qint64 wholeStripBytes = 16 << 20;

using SharedFile = std::shared_ptr<const RandomAccessFile>;

TiffHandle reopen(const SharedFile& file, const TiffLayout& layout) {
    const TiffDirectory directory = TiffDirectory::read(file);
    // The decoder of WebP has the pixels of a whole segment in its own memory before it hands over any.
    const bool holdsSegment = layout.compression == COMPRESSION_WEBP;
    TiffHandle handle(file, directory, holdsSegment ? layout.segmentBytes(layout.segmentHeight) : 0);
    if (TiffLayout::read(handle, directory, file->size()) != layout) {
        throw ImageError(QStringLiteral("the TIFF file has changed"));
    }
    return handle;
}

std::span<std::byte> part(std::span<std::byte> bytes, qint64 offset, qint64 count) {
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
}

std::size_t indexOf(const std::vector<int>& planes, int plane) {
    return static_cast<std::size_t>(std::find(planes.begin(), planes.end(), plane) - planes.begin());
}

/// Uncompressed strips and tiles, read straight from the file: only the rows that are asked for are held, whatever the
/// size of a strip.
class StoredSegments : public TiffSegments {
public:
    StoredSegments(const SharedFile& file, const TiffLayout& layout)
        : file_(file),
          layout_(layout),
          handle_(reopen(file, layout)) {}

    void read(const Region& region, std::span<std::byte> into) override {
        const qint64 band = region.row / layout_.segmentHeight;
        const auto extent = handle_.extent(layout_.segmentIndex(region.plane, band, region.column));
        layout_.checkExtent(extent, band, file_->size());
        const qint64 skipped = (region.row - band * layout_.segmentHeight) * layout_.segmentRowBytes();
        if (file_->readAt(extent.offset + skipped, into) != static_cast<qint64>(into.size())) {
            throw ImageError(QStringLiteral("the TIFF file has become shorter"));
        }
        toMachineOrder(into);
    }

private:
    void toMachineOrder(std::span<std::byte> samples) const;

    SharedFile file_;
    const TiffLayout& layout_;
    TiffHandle handle_;
};

/// Does what libtiff does with the data it decompresses.
void StoredSegments::toMachineOrder(std::span<std::byte> samples) const {
    const auto size = static_cast<qsizetype>(samples.size());
    if (layout_.fillOrder == FILLORDER_LSB2MSB) {
        TIFFReverseBits(reinterpret_cast<quint8*>(samples.data()), size);
    }
    if (!layout_.isByteSwapped) {
        return;
    }
    switch (layout_.bits) {
    case 16:
        qbswap<2>(samples.data(), size / 2, samples.data());
        return;
    case 24:
        TIFFSwabArrayOfTriples(reinterpret_cast<quint8*>(samples.data()), size / 3);
        return;
    case 32:
        qbswap<4>(samples.data(), size / 4, samples.data());
        return;
    case 64:
        qbswap<8>(samples.data(), size / 8, samples.data());
        return;
    default: // other widths are a stream of bits, the same in both orders
        return;
    }
}

/// Compressed strips. Each plane has a handle of its own, so that a long strip can be decoded row by row while the
/// others advance as well; its compressed bytes are in memory as a whole.
class CodedStrips : public TiffSegments {
public:
    CodedStrips(const SharedFile& file, const TiffLayout& layout, const std::vector<int>& planes)
        : fileSize_(file->size()),
          layout_(layout),
          planes_(planes) {
        for (std::size_t index = 0; index < planes.size(); ++index) {
            strips_.push_back({reopen(file, layout), -1, {}});
        }
    }

    void read(const Region& region, std::span<std::byte> into) override {
        Strip& strip = strips_.at(indexOf(planes_, region.plane));
        const qint64 band = region.row / layout_.segmentHeight;
        if (strip.band != band) {
            enter(strip, region.plane, band);
        }
        const qint64 rowBytes = layout_.segmentRowBytes();
        if (!strip.pixels.empty()) {
            const qint64 skipped = (region.row - band * layout_.segmentHeight) * rowBytes;
            std::ranges::copy(part(strip.pixels, skipped, region.rowCount * rowBytes), into.begin());
            return;
        }
        for (qint64 row = 0; row < region.rowCount; ++row) {
            strip.handle.readScanline(static_cast<quint32>(region.row + row), static_cast<quint16>(region.plane),
                                      part(into, row * rowBytes, rowBytes));
        }
    }

private:
    struct Strip {
        TiffHandle handle;
        qint64 band;
        std::vector<std::byte> pixels; ///< of the whole strip; empty for one that is read row by row
    };

    void enter(Strip& strip, int plane, qint64 band) {
        const quint32 index = layout_.segmentIndex(plane, band, 0);
        layout_.checkExtent(strip.handle.extent(index), band, fileSize_);
        const qint64 size = layout_.rowsOfBand(band) * layout_.segmentRowBytes();
        strip.band = band;
        strip.pixels.resize(size <= wholeStripBytes ? static_cast<std::size_t>(size) : 0);
        if (!strip.pixels.empty()) {
            strip.handle.readStrip(index, strip.pixels);
        }
    }

    qint64 fileSize_;
    const TiffLayout& layout_;
    const std::vector<int>& planes_;
    std::vector<Strip> strips_;
};

/// Segments that must be decompressed as a whole, and of which a band is held in memory.
class HeldSegments : public TiffSegments {
public:
    HeldSegments(const SharedFile& file, const TiffLayout& layout, const std::vector<int>& planes)
        : fileSize_(file->size()),
          layout_(layout),
          planes_(planes),
          handle_(reopen(file, layout)),
          segmentBytes_(layout.segmentBytes(layout.segmentHeight)),
          bytes_(planes.size() * static_cast<std::size_t>(layout.columns() * segmentBytes_)) {}

    void read(const Region& region, std::span<std::byte> into) override {
        const qint64 band = region.row / layout_.segmentHeight;
        if (band_ != band) {
            enter(band);
        }
        const auto segment = held(indexOf(planes_, region.plane), region.column);
        readRows(segment, region.row - band * layout_.segmentHeight, into);
    }

protected:
    /// Delivers rows from `row` of a segment that has been decompressed.
    virtual void readRows(std::span<std::byte> segment, qint64 row, std::span<std::byte> into) const = 0;

    [[nodiscard]] const TiffLayout& layout() const { return layout_; }

private:
    std::span<std::byte> held(std::size_t planeIndex, qint64 column) {
        const qint64 index = static_cast<qint64>(planeIndex) * layout_.columns() + column;
        return part(bytes_, index * segmentBytes_, segmentBytes_);
    }

    void enter(qint64 band) {
        band_ = band;
        const qint64 size = layout_.segmentBytes(layout_.rowsOfBand(band));
        for (std::size_t plane = 0; plane < planes_.size(); ++plane) {
            for (qint64 column = 0; column < layout_.columns(); ++column) {
                const quint32 index = layout_.segmentIndex(planes_.at(plane), band, column);
                layout_.checkExtent(handle_.extent(index), band, fileSize_);
                const auto segment = part(held(plane, column), 0, size);
                if (layout_.isTiled) {
                    handle_.readTile(index, segment);
                } else {
                    handle_.readStrip(index, segment);
                }
            }
        }
    }

    qint64 fileSize_;
    const TiffLayout& layout_;
    const std::vector<int>& planes_;
    TiffHandle handle_;
    qint64 segmentBytes_;
    std::vector<std::byte> bytes_;
    qint64 band_ = -1;
};

class CodedTiles : public HeldSegments {
public:
    using HeldSegments::HeldSegments;

protected:
    void readRows(std::span<std::byte> segment, qint64 row, std::span<std::byte> into) const override {
        const auto rows = part(segment, row * layout().segmentRowBytes(), static_cast<qint64>(into.size()));
        std::ranges::copy(rows, into.begin());
    }
};

/// YCbCr strips and tiles, of whatever compression but JPEG.
class YCbCrSegments : public HeldSegments {
public:
    YCbCrSegments(const SharedFile& file, const TiffLayout& layout, const std::vector<int>& planes)
        : HeldSegments(file, layout, planes),
          ycbcr_(*layout.ycbcr),
          converter_(ycbcr_) {}

protected:
    void readRows(std::span<std::byte> segment, qint64 row, std::span<std::byte> into) const override {
        const qint64 unitRowBytes = ycbcr_.unitRowBytes(layout().segmentWidth);
        const qint64 rowBytes = layout().segmentRowBytes();
        const qint64 count = static_cast<qint64>(into.size()) / rowBytes;
        for (qint64 index = 0; index < count; ++index, ++row) {
            const auto units = part(segment, row / ycbcr_.vertical * unitRowBytes, unitRowBytes);
            converter_.convertRow(units, row % ycbcr_.vertical, part(into, index * rowBytes, rowBytes));
        }
    }

private:
    TiffYCbCr ycbcr_;
    TiffYCbCrConverter converter_;
};

} // namespace

std::unique_ptr<TiffSegments> TiffSegments::open(const std::shared_ptr<const RandomAccessFile>& file,
                                                 const TiffLayout& layout, const std::vector<int>& planes) {
    if (layout.ycbcr) {
        return std::make_unique<YCbCrSegments>(file, layout, planes);
    }
    if (layout.compression == COMPRESSION_NONE) {
        return std::make_unique<StoredSegments>(file, layout);
    }
    if (layout.isTiled) {
        return std::make_unique<CodedTiles>(file, layout, planes);
    }
    return std::make_unique<CodedStrips>(file, layout, planes);
}

} // namespace orvex::platform
