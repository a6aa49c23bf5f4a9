#pragma once

#include "Board/BoardPictures.h"

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <functional>
#include <stdexcept>

namespace orvex::test {

/// The rows of a preview, and who read them how often.
class CountedRows : public platform::RowSource {
public:
    /// The colour of a place from 0 to 1 on both sides.
    using Shade = std::function<QColor(double x, double y)>;

    CountedRows(const QSize& size, Shade shade) : size_(size), shade_(std::move(shade)) {}

    mutable std::atomic<int> reads = 0;
    mutable std::atomic<int> readsOnMainThread = 0;
    std::atomic<bool> isBroken = false;

    void rows(const platform::RowSink& sink) const override {
        ++reads;
        readsOnMainThread += QThread::currentThread() == QCoreApplication::instance()->thread() ? 1 : 0;
        if (isBroken) {
            throw std::runtime_error("the file has changed");
        }
        for (int y = 0; y < size_.height(); ++y) {
            const QByteArray row = rowAt(y);
            sink({.firstRow = y,
                  .rowCount = 1,
                  .bytes = std::as_bytes(std::span(row.constData(), static_cast<std::size_t>(row.size())))});
        }
    }

private:
    [[nodiscard]] QByteArray rowAt(int y) const {
        QByteArray row;
        for (int x = 0; x < size_.width(); ++x) {
            const QColor color = shade_((x + 0.5) / size_.width(), (y + 0.5) / size_.height());
            for (const int sample : {color.red(), color.green(), color.blue()}) {
                row.append(static_cast<char>(sample));
            }
        }
        return row;
    }

    QSize size_;
    Shade shade_;
};

/// A preview of which every reading is counted.
struct CountedPreview {
    std::shared_ptr<CountedRows> rows;
    SharedImageMetadata metadata;

    static CountedPreview make(const QSize& size, const CountedRows::Shade& shade) {
        auto rows = std::make_shared<CountedRows>(size, shade);
        ImageMetadata metadata{.url = QUrl(QStringLiteral("file:///pictures/nowhere.png")),
                               .pixelWidth = size.width(),
                               .pixelHeight = size.height(),
                               .profileName = {},
                               .sourceColorProfile = {},
                               .physicalSizeSource = {},
                               .preview = {size.width(), size.height(), 1, {}, std::nullopt, rows}};
        return {.rows = rows, .metadata = std::make_shared<const ImageMetadata>(std::move(metadata))};
    }

    static CountedPreview ofColor(const QColor& color, const QSize& size = {600, 400}) {
        return make(size, [color](double, double) { return color; });
    }
};

} // namespace orvex::test
