#include "DisplayPicture.h"

#include "Imaging/AreaAverager.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace orvex {

namespace {

constexpr std::size_t mostKnownProfiles = 8;
constexpr std::size_t screenSamples = 3;

using Pixels = std::vector<quint8>;

/// A reduced picture in 8 bits: the colour samples of all pixels without alpha, and their alpha if there is any.
struct Reduced {
    qint64 width = 0;
    qint64 height = 0;
    Pixels colors;
    Pixels alpha;
};

platform::AreaAverager::Size reducedSize(const platform::Raster& raster, qint64 longestSide) {
    const qint64 longer = std::max(raster.width(), raster.height());
    const auto reduced = [&](qint64 side) {
        return longer <= longestSide ? side : std::max<qint64>(1, side * longestSide / longer);
    };
    return {.width = reduced(raster.width()), .height = reduced(raster.height())};
}

template <typename Sample>
Sample sampleAt(std::span<const std::byte> bytes, std::size_t index) {
    Sample sample{};
    std::memcpy(&sample, bytes.data() + index * sizeof(Sample), sizeof(Sample));
    return sample;
}

/// One sample of whatever depth as 8 bits.
quint8 screenSample(std::span<const std::byte> row, std::size_t index, const platform::PixelFormat& format) {
    if (format.isFloat) {
        const float value = sampleAt<float>(row, index);
        return static_cast<quint8>(std::lround(255.0F * (value > 0.0F ? std::min(value, 1.0F) : 0.0F)));
    }
    switch (format.bitsPerComponent) {
    case 8:
        return sampleAt<quint8>(row, index);
    case 16:
        return static_cast<quint8>((sampleAt<quint16>(row, index) + 128U) / 257U);
    default:
        return static_cast<quint8>(sampleAt<quint32>(row, index) >> 24U);
    }
}

void appendRow(Reduced& picture, std::span<const std::byte> row, const platform::PixelFormat& format) {
    const auto samples = static_cast<std::size_t>(format.samplesPerPixel());
    for (std::size_t index = 0; index < static_cast<std::size_t>(picture.width) * samples; ++index) {
        const bool isAlpha = format.hasAlpha && index % samples == samples - 1;
        (isAlpha ? picture.alpha : picture.colors).push_back(screenSample(row, index, format));
    }
}

Reduced reduce(const platform::Raster& raster, qint64 longestSide) {
    const auto size = reducedSize(raster, longestSide);
    Reduced picture{.width = size.width, .height = size.height, .colors = {}, .alpha = {}};
    const auto components = platform::componentCount(raster.format().model);
    picture.colors.reserve(static_cast<std::size_t>(size.width * size.height * components));
    const auto averager = platform::AreaAverager::make(
        raster.format(), {.width = raster.width(), .height = raster.height()}, size,
        [&](qint64, std::span<const std::byte> row) { appendRow(picture, row, raster.format()); });
    raster.rows([&](const platform::RowStrip& strip) { averager->add(strip); });
    return picture;
}

/// The device's own colours as they are, as near as a screen comes without knowing more.
QByteArray deviceColors(const Pixels& colors, platform::ColorModel model) {
    const auto components = static_cast<std::size_t>(platform::componentCount(model));
    QByteArray screen;
    screen.reserve(static_cast<qsizetype>(colors.size() / components * screenSamples));
    for (std::size_t pixel = 0; pixel < colors.size(); pixel += components) {
        for (std::size_t sample = 0; sample < screenSamples; ++sample) {
            switch (model) {
            case platform::ColorModel::gray:
                screen.append(static_cast<char>(colors[pixel]));
                break;
            case platform::ColorModel::rgb:
                screen.append(static_cast<char>(colors[pixel + sample]));
                break;
            case platform::ColorModel::cmyk:
                screen.append(static_cast<char>((255U - colors[pixel + sample]) * (255U - colors[pixel + 3]) / 255U));
                break;
            }
        }
    }
    return screen;
}

std::optional<QByteArray> converted(const Pixels& colors, const platform::ColorTransform& transform,
                                    std::size_t pixels) {
    QByteArray screen(static_cast<qsizetype>(pixels * screenSamples), Qt::Uninitialized);
    const std::span samples(screen.data(), pixels * screenSamples);
    const bool isConverted =
        transform.convert(std::as_bytes(std::span(colors)), std::as_writable_bytes(samples), pixels);
    return isConverted ? std::optional(std::move(screen)) : std::nullopt;
}

void layOnWhite(QByteArray& screen, const Pixels& alpha) {
    auto* samples = reinterpret_cast<quint8*>(screen.data());
    for (std::size_t pixel = 0; pixel < alpha.size(); ++pixel) {
        for (std::size_t sample = 0; sample < screenSamples; ++sample) {
            quint8& value = samples[pixel * screenSamples + sample];
            value = static_cast<quint8>((value * alpha[pixel] + 255U * (255U - alpha[pixel]) + 127U) / 255U);
        }
    }
}

std::optional<platform::ColorTransform> makeTransform(const QByteArray& profile) {
    const auto source = platform::IccProfile::fromData(profile);
    const auto screen = platform::IccProfile::fromData(platform::sRgbProfileData());
    if (!source || !screen) {
        return std::nullopt;
    }
    return platform::ColorTransform::make(*source, 8, *screen, 8, platform::RenderingIntent::relativeColorimetric,
                                          platform::ColorMemory::recent);
}

} // namespace

DisplayPicture DisplayPictures::make(const platform::Raster& upright, qint64 longestSide) {
    const Reduced reduced = reduce(upright, longestSide);
    const auto pixels = static_cast<std::size_t>(reduced.width * reduced.height);
    const auto components = static_cast<std::size_t>(platform::componentCount(upright.format().model));
    std::optional<QByteArray> screen;
    if (const auto& profile = upright.iccProfile(); profile && *profile != platform::sRgbProfileData()) {
        const auto transform = transformOf(*profile);
        if (transform && transform->sourcePixelBytes() == components) {
            screen = converted(reduced.colors, *transform, pixels);
        }
    }
    if (!screen) {
        screen = deviceColors(reduced.colors, upright.format().model);
    }
    layOnWhite(*screen, reduced.alpha);
    return {.width = reduced.width, .height = reduced.height, .rgb = std::move(*screen)};
}

std::optional<platform::ColorTransform> DisplayPictures::transformOf(const QByteArray& profile) {
    const std::scoped_lock lock(mutex_);
    const auto found = std::ranges::find(known_, profile, &Known::profile);
    if (found != known_.end()) {
        std::rotate(found, found + 1, known_.end());
        return known_.back().transform;
    }
    if (known_.size() == mostKnownProfiles) {
        known_.erase(known_.begin());
    }
    known_.push_back({profile, makeTransform(profile)});
    return known_.back().transform;
}

} // namespace orvex
