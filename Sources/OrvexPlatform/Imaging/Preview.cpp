#include "Imaging/AreaAverager.h"
#include "Imaging/ImageSource.h"
#include "Imaging/MemoryRaster.h"
#include "Imaging/OverlappedRows.h"
#include "Interrupted.h"

#include <cstring>

namespace orvex::platform {

namespace {

/// The length of a side where the longer one of the picture becomes `target`: rounded, and 1 at least.
qint64 scaledSide(qint64 side, qint64 longer, qint64 target) {
    return std::max<qint64>((2 * side * target + longer) / (2 * longer), 1);
}

/// Lays the stored rows of a picture into memory so that it stands upright.
class UprightPicture {
public:
    UprightPicture(AreaAverager::Size stored, int orientation, qint64 pixelBytes)
        : pixelBytes_(pixelBytes),
          bytes_(stored.width * stored.height * pixelBytes, Qt::Uninitialized) {
        // EXIF 2.32, 4.6.4: which upright side the first stored row and column are.
        const bool isTurned = isQuarterTurned(orientation);
        const bool areColumnsReversed = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
        const bool areRowsReversed = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
        columnStep_ = isTurned ? stored.height : 1;
        rowStep_ = isTurned ? 1 : stored.width;
        if (areColumnsReversed) {
            origin_ += (stored.width - 1) * columnStep_;
            columnStep_ = -columnStep_;
        }
        if (areRowsReversed) {
            origin_ += (stored.height - 1) * rowStep_;
            rowStep_ = -rowStep_;
        }
    }

    void setRow(qint64 row, std::span<const std::byte> pixels) {
        char* target = bytes_.data() + (origin_ + row * rowStep_) * pixelBytes_;
        if (columnStep_ == 1) {
            std::memcpy(target, pixels.data(), pixels.size());
            return;
        }
        const auto size = static_cast<std::size_t>(pixelBytes_);
        for (std::size_t offset = 0; offset < pixels.size(); offset += size) {
            std::memcpy(target, pixels.data() + offset, size);
            target += columnStep_ * pixelBytes_;
        }
    }

    [[nodiscard]] QByteArray bytes() const { return bytes_; }

private:
    qint64 pixelBytes_;
    QByteArray bytes_;
    // In pixels from the first upright one:
    qint64 origin_ = 0;
    qint64 columnStep_ = 1;
    qint64 rowStep_ = 1;
};

RowSink rowCopier(const Raster& raster, UprightPicture& picture) {
    const auto rowBytes = static_cast<std::size_t>(raster.rowBytes());
    return [rowBytes, &picture](const RowStrip& strip) {
        for (qint64 row = 0; row < strip.rowCount; ++row) {
            picture.setRow(strip.firstRow + row,
                           strip.bytes.subspan(static_cast<std::size_t>(row) * rowBytes, rowBytes));
        }
    };
}

RowSink rowAverager(const Raster& raster, AreaAverager::Size target, UprightPicture& picture) {
    const std::shared_ptr<AreaAverager> averager =
        AreaAverager::make(raster.format(), {raster.storedWidth(), raster.storedHeight()}, target,
                           [&picture](qint64 row, std::span<const std::byte> pixels) { picture.setRow(row, pixels); });
    return [averager](const RowStrip& strip) { averager->add(strip); };
}

} // namespace

Raster ImageSource::preview(qint64 maximum, const RowProgress& progress) const {
    const ImageProperties stored = properties();
    const qint64 longer = std::max(stored.pixelWidth, stored.pixelHeight);
    const qint64 targetLonger = std::min(maximum, longer);
    const AreaAverager::Size target{scaledSide(stored.pixelWidth, longer, targetLonger),
                                    scaledSide(stored.pixelHeight, longer, targetLonger)};
    const Raster source = reduced(target.width, target.height);
    UprightPicture picture(target, source.orientation(), source.format().bytesPerPixel());
    const bool isSameSize = source.storedWidth() == target.width && source.storedHeight() == target.height;
    const RowSink layRows = isSameSize ? rowCopier(source, picture) : rowAverager(source, target, picture);
    const auto tell = [&](qint64 rowsDone) {
        if (progress) {
            progress(stored.pixelHeight * rowsDone / source.storedHeight(), stored.pixelHeight);
        }
    };
    tell(0);
    overlappedRows(source, [&](const RowStrip& strip) {
        throwIfStopped(stop_);
        layRows(strip);
        tell(strip.firstRow + strip.rowCount);
    });
    const bool isTurned = isQuarterTurned(source.orientation());
    return memoryRaster(isTurned ? target.height : target.width, isTurned ? target.width : target.height,
                        source.format(), source.iccProfile(), picture.bytes());
}

} // namespace orvex::platform
