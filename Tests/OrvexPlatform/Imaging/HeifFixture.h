#pragma once

#include <QByteArray>

#include <libheif/heif.h>

#include <functional>
#include <vector>

namespace orvex::test {

/// A HEIF file made by libheif's own encoder, as free of loss as that can be.
struct HeifFixture {
    /// The samples of the pixel at x, y: one for monochrome, else three or four, of `bitDepth` bits.
    using Painter = std::function<std::vector<int>(int x, int y)>;

    int width = 96;
    int height = 64;
    int bitDepth = 8;
    bool isMonochrome = false;
    bool hasAlpha = false;
    bool isPremultiplied = false;
    heif_orientation orientation = heif_orientation_normal; ///< by the container's transforms
    QByteArray profile{};
    QByteArray exif{}; ///< from the TIFF header on
    Painter painter = [](int, int) { return std::vector<int>{200, 120, 40, 255}; };

    [[nodiscard]] QByteArray bytes() const;
};

} // namespace orvex::test
