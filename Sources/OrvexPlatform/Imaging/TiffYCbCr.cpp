#include "Imaging/TiffYCbCr.h"

#include "Imaging/ImageError.h"
#include "Imaging/TiffHandle.h"

#include <algorithm>
#include <cmath>

namespace orvex::platform {

namespace {

bool isFactor(int value) {
    return value == 1 || value == 2 || value == 4;
}

template <std::size_t Count>
std::array<float, Count> numbers(const TiffHandle& handle, quint32 tag) {
    const auto* values = handle.defaulted<const float*>(tag);
    std::array<float, Count> copy{};
    if (values != nullptr) {
        std::copy_n(values, Count, copy.begin());
    }
    return copy;
}

bool areFinite(std::span<const float> values) {
    return std::all_of(values.begin(), values.end(), [](float value) { return std::isfinite(value); });
}

std::byte rounded(float value) {
    return static_cast<std::byte>(std::lround(std::clamp(value, 0.0F, 255.0F)));
}

} // namespace

TiffYCbCr TiffYCbCr::read(const TiffHandle& handle) {
    quint16 horizontal = 0;
    quint16 vertical = 0;
    TIFFGetFieldDefaulted(handle.get(), TIFFTAG_YCBCRSUBSAMPLING, &horizontal, &vertical);
    TiffYCbCr result;
    result.horizontal = horizontal;
    result.vertical = vertical;
    result.luma = numbers<3>(handle, TIFFTAG_YCBCRCOEFFICIENTS);
    result.blackAndWhite = numbers<6>(handle, TIFFTAG_REFERENCEBLACKWHITE);
    const auto& range = result.blackAndWhite;
    const bool isUsable = isFactor(result.horizontal) && isFactor(result.vertical) && areFinite(result.luma) &&
                          areFinite(range) && result.luma[1] != 0 && range[0] != range[1] && range[2] != range[3] &&
                          range[4] != range[5];
    if (!isUsable) {
        throw ImageError(QStringLiteral("TIFF YCbCr of an unknown kind"));
    }
    return result;
}

TiffYCbCrConverter::TiffYCbCrConverter(const TiffYCbCr& ycbcr) : ycbcr_(ycbcr) {
    const auto& [black, white, noCb, fullCb, noCr, fullCr] = ycbcr.blackAndWhite;
    const auto [red, green, blue] = ycbcr.luma;
    for (std::size_t index = 0; index < luminance_.size(); ++index) {
        const auto code = static_cast<float>(index);
        luminance_[index] = (code - black) * 255 / (white - black);
        redOfCr_[index] = (code - noCr) * 127 / (fullCr - noCr) * (2 - 2 * red);
        blueOfCb_[index] = (code - noCb) * 127 / (fullCb - noCb) * (2 - 2 * blue);
        greenOfCr_[index] = -redOfCr_[index] * red / green;
        greenOfCb_[index] = -blueOfCb_[index] * blue / green;
    }
}

void TiffYCbCrConverter::convertRow(std::span<const std::byte> units, qint64 row, std::span<std::byte> pixels) const {
    const auto horizontal = static_cast<std::size_t>(ycbcr_.horizontal);
    const auto unitBytes = static_cast<std::size_t>(ycbcr_.unitBytes());
    const std::size_t firstLuminance = static_cast<std::size_t>(row) * horizontal;
    const auto [red, green, blue] = ycbcr_.luma;
    const float greenOfLuminance = (1 - red - blue) / green;
    for (std::size_t pixel = 0; pixel < pixels.size() / 3; ++pixel) {
        const auto unit = units.subspan(pixel / horizontal * unitBytes, unitBytes);
        const float luminance = luminance_[std::to_integer<std::size_t>(unit[firstLuminance + pixel % horizontal])];
        const auto cb = std::to_integer<std::size_t>(unit[unitBytes - 2]);
        const auto cr = std::to_integer<std::size_t>(unit[unitBytes - 1]);
        const auto rgb = pixels.subspan(pixel * 3, 3);
        rgb[0] = rounded(luminance + redOfCr_[cr]);
        rgb[1] = rounded(luminance * greenOfLuminance + greenOfCr_[cr] + greenOfCb_[cb]);
        rgb[2] = rounded(luminance + blueOfCb_[cb]);
    }
}

} // namespace orvex::platform
