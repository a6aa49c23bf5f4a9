#include "Picture.h"

#include <algorithm>
#include <future>
#include <thread>
#include <utility>

namespace orvex::samples {

namespace {

constexpr int bandRows = 32;

using Band = std::vector<Pixel>;

Band makeBand(const Picture& picture, int firstRow) {
    const int rows = std::min(bandRows, picture.height - firstRow);
    const auto width = static_cast<std::size_t>(picture.width);
    Band band(width * static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
        picture.row(firstRow + row, std::span(band).subspan(static_cast<std::size_t>(row) * width, width));
    }
    return band;
}

} // namespace

Picture pictureOf(int width, int height, std::function<Pixel(int x, int y)> pixel) {
    return {width, height, [pixel = std::move(pixel)](int row, std::span<Pixel> pixels) {
                for (int x = 0; Pixel & each : pixels) {
                    each = pixel(x++, row);
                }
            }};
}

Picture storedForOrientation6(std::function<Pixel(int x, int y)> upright, int uprightWidth, int uprightHeight) {
    // The first stored row is the right side of the picture, the first stored column its top.
    return pictureOf(uprightHeight, uprightWidth, [upright = std::move(upright), uprightWidth](int column, int row) {
        return upright(uprightWidth - 1 - row, column);
    });
}

void forEachRow(const Picture& picture, const std::function<void(std::span<const Pixel>)>& sink) {
    const int workers = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    const auto width = static_cast<std::size_t>(picture.width);
    for (int first = 0; first < picture.height; first += workers * bandRows) {
        std::vector<std::future<Band>> bands;
        for (int row = first; row < std::min(picture.height, first + workers * bandRows); row += bandRows) {
            bands.push_back(std::async(std::launch::async, [&picture, row] { return makeBand(picture, row); }));
        }
        for (std::future<Band>& future : bands) {
            const Band band = future.get();
            for (std::size_t start = 0; start < band.size(); start += width) {
                sink(std::span(band).subspan(start, width));
            }
        }
    }
}

} // namespace orvex::samples
