#include "Imaging/MemoryRaster.h"

namespace orvex::platform {

namespace {

class MemoryRowSource : public RowSource {
public:
    MemoryRowSource(qint64 height, qint64 rowBytes, QByteArray bytes)
        : height_(height),
          rowBytes_(rowBytes),
          bytes_(std::move(bytes)) {}

    void rows(const RowSink& sink) const override {
        const qint64 stripRows = stripRowsFor(rowBytes_);
        const std::span all = std::as_bytes(std::span(bytes_.constData(), static_cast<std::size_t>(bytes_.size())));
        for (qint64 row = 0; row < height_; row += stripRows) {
            const qint64 count = std::min(stripRows, height_ - row);
            sink({row, count,
                  all.subspan(static_cast<std::size_t>(row * rowBytes_), static_cast<std::size_t>(count * rowBytes_))});
        }
    }

private:
    qint64 height_;
    qint64 rowBytes_;
    QByteArray bytes_;
};

} // namespace

Raster memoryRaster(qint64 width, qint64 height, PixelFormat format, std::optional<QByteArray> iccProfile,
                    QByteArray bytes) {
    auto source = std::make_shared<MemoryRowSource>(height, width * format.bytesPerPixel(), std::move(bytes));
    return {width, height, 1, format, std::move(iccProfile), std::move(source)};
}

} // namespace orvex::platform
