#include "Imaging/PngSamples.h"

#include "Imaging/ImageError.h"

#include <QtEndian>

#include <cstring>

namespace orvex::platform {

namespace {

/// What brings the largest sample of a small depth to 255; that of a palette's indices is none of a sample.
unsigned scaleOf(const PngHeader& header) {
    return header.color == PngColor::palette || header.bitDepth >= 8 ? 1U : 255U / ((1U << header.bitDepth) - 1U);
}

std::array<std::array<std::byte, 4>, 256> paletteOf(const PngHeader& header) {
    std::array<std::array<std::byte, 4>, 256> palette{};
    const auto triples =
        std::as_bytes(std::span(header.palette.constData(), static_cast<std::size_t>(header.palette.size())));
    for (std::size_t index = 0; index < triples.size() / 3; ++index) {
        const auto at = static_cast<qsizetype>(index);
        const bool isListed = at < header.paletteAlpha.size();
        const auto alpha = static_cast<std::byte>(isListed ? header.paletteAlpha.at(at) : '\xFF');
        palette[index] = {triples[index * 3], triples[index * 3 + 1], triples[index * 3 + 2], alpha};
    }
    return palette;
}

std::array<std::array<std::byte, 8>, 256> spreadingOf(const PngHeader& header) {
    std::array<std::array<std::byte, 8>, 256> spreading{};
    const auto depth = static_cast<unsigned>(header.bitDepth);
    if (depth >= 8) {
        return spreading;
    }
    const unsigned scale = scaleOf(header);
    for (unsigned packed = 0; packed < 256; ++packed) {
        for (unsigned index = 0; index < 8 / depth; ++index) {
            // PNG 1.2, 2.3: the leftmost pixel is in the high-order bits.
            const unsigned sample = (packed >> (8 - depth * (index + 1))) & ((1U << depth) - 1U);
            spreading[packed][index] = static_cast<std::byte>(sample * scale);
        }
    }
    return spreading;
}

std::optional<std::array<quint16, 3>> scaledKey(const PngHeader& header) {
    std::optional<std::array<quint16, 3>> key = header.transparentColor;
    if (key) {
        for (quint16& sample : *key) {
            sample = static_cast<quint16>(sample * scaleOf(header));
        }
    }
    return key;
}

/// Copies colours of `count` samples each, in the machine's order, and gives those that equal the key no opacity and
/// the others all.
template <typename Sample, std::size_t count>
void addAlpha(const std::byte* colours, std::size_t pixels, const std::array<quint16, 3>& key, std::byte* samples) {
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        std::array<Sample, count + 1> color;
        std::memcpy(color.data(), colours + pixel * count * sizeof(Sample), count * sizeof(Sample));
        const bool isTransparent = std::equal(color.begin(), color.begin() + count, key.begin());
        color[count] = isTransparent ? Sample{0} : std::numeric_limits<Sample>::max();
        std::memcpy(samples + pixel * sizeof(color), color.data(), sizeof(color));
    }
}

} // namespace

PngSamples::PngSamples(const PngHeader& header)
    : width_(static_cast<std::size_t>(header.width)),
      packedBytes_(static_cast<std::size_t>(header.packedBytes(header.width))),
      sampleBytes_(static_cast<std::size_t>(header.width * header.format().bytesPerPixel())),
      bitDepth_(header.bitDepth),
      colours_(componentCount(header.format().model)),
      isPalette_(header.color == PngColor::palette),
      hasAlpha_(header.format().hasAlpha),
      isIdentity_(!isPalette_ && bitDepth_ == 8 && !header.transparentColor),
      transparentColor_(scaledKey(header)),
      paletteSize_(static_cast<std::size_t>(header.palette.size() / 3)),
      palette_(paletteOf(header)),
      spreading_(spreadingOf(header)),
      values_(std::max(packedBytes_, width_)) {}

void PngSamples::convert(std::span<const std::byte> packed, std::span<std::byte> samples) {
    for (std::size_t row = 0; row < packed.size() / packedBytes_; ++row) {
        convertRow(packed.data() + row * packedBytes_, samples.data() + row * sampleBytes_);
    }
}

void PngSamples::convertRow(const std::byte* packed, std::byte* samples) {
    // Each step works in place where it is the last one.
    std::byte* const values = isPalette_ || transparentColor_ ? values_.data() : samples;
    if (bitDepth_ == 16) {
        qFromBigEndian<quint16>(packed, static_cast<qsizetype>(packedBytes_ / 2), values);
    } else if (bitDepth_ < 8) {
        spread(packed, values);
    } else {
        std::memcpy(values, packed, packedBytes_);
    }
    if (isPalette_) {
        resolve(values, samples);
    } else if (transparentColor_ && bitDepth_ == 16) {
        (colours_ == 1 ? addAlpha<quint16, 1> : addAlpha<quint16, 3>)(values, width_, *transparentColor_, samples);
    } else if (transparentColor_) {
        (colours_ == 1 ? addAlpha<quint8, 1> : addAlpha<quint8, 3>)(values, width_, *transparentColor_, samples);
    }
}

void PngSamples::spread(const std::byte* packed, std::byte* values) const {
    const std::size_t perByte = 8 / static_cast<std::size_t>(bitDepth_);
    const std::size_t whole = width_ / perByte;
    const auto spreadTo = [&](std::size_t index, std::size_t count) {
        std::memcpy(values + index * perByte, spreading_[std::to_integer<std::size_t>(packed[index])].data(), count);
    };
    for (std::size_t index = 0; index < whole; ++index) {
        spreadTo(index, perByte);
    }
    if (width_ % perByte != 0) {
        spreadTo(whole, width_ % perByte);
    }
}

void PngSamples::resolve(const std::byte* indices, std::byte* samples) const {
    const std::span row(indices, width_);
    if (std::to_integer<std::size_t>(std::ranges::max(row)) >= paletteSize_) {
        throw ImageError(QStringLiteral("the PNG file has a pixel outside its palette"));
    }
    const std::size_t step = hasAlpha_ ? 4 : 3;
    for (const std::byte index : row) {
        std::memcpy(samples, palette_[std::to_integer<std::size_t>(index)].data(), step);
        samples += step;
    }
}

} // namespace orvex::platform
