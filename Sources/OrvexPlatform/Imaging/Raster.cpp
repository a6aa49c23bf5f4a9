#include "Imaging/Raster.h"

#include <algorithm>

namespace orvex::platform {

int componentCount(ColorModel model) {
    switch (model) {
    case ColorModel::gray:
        return 1;
    case ColorModel::rgb:
        return 3;
    case ColorModel::cmyk:
        return 4;
    }
    return 0;
}

bool isQuarterTurned(int orientation) {
    return orientation >= 5 && orientation <= 8;
}

qint64 stripRowsFor(qint64 rowBytes) {
    return std::clamp<qint64>(Raster::preferredStripBytes / std::max<qint64>(rowBytes, 1), 1, Raster::largestStripRows);
}

Raster::Raster(qint64 storedWidth, qint64 storedHeight, int orientation, PixelFormat format,
               std::optional<QByteArray> iccProfile, std::shared_ptr<const RowSource> source)
    : storedWidth_(storedWidth),
      storedHeight_(storedHeight),
      orientation_(orientation),
      format_(format),
      iccProfile_(std::move(iccProfile)),
      source_(std::move(source)) {}

qint64 Raster::width() const {
    return isQuarterTurned(orientation_) ? storedHeight_ : storedWidth_;
}

qint64 Raster::height() const {
    return isQuarterTurned(orientation_) ? storedWidth_ : storedHeight_;
}

qint64 Raster::stripRows() const {
    return stripRowsFor(rowBytes());
}

} // namespace orvex::platform
