#include "Imaging/TiffSamples.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

namespace orvex::platform {

namespace {

constexpr quint64 largestOf(int bits) {
    return (quint64{1} << bits) - 1;
}

/// `value` of `bits` bits on the whole range of `Sample`.
template <typename Sample>
constexpr Sample widen(quint64 value, int bits) {
    constexpr quint64 largest = std::numeric_limits<Sample>::max();
    const quint64 range = largestOf(bits);
    return static_cast<Sample>((value * largest + range / 2) / range);
}

template <typename Sample>
std::span<Sample> samplesIn(std::span<std::byte> bytes) {
    return {reinterpret_cast<Sample*>(bytes.data()), bytes.size() / sizeof(Sample)};
}

template <typename Word>
Word wordAt(std::span<const std::byte> bytes, std::size_t index) {
    Word word{};
    std::memcpy(&word, bytes.subspan(index * sizeof(Word), sizeof(Word)).data(), sizeof(Word));
    return word;
}

/// Three bytes in the machine's order.
quint32 tripleAt(std::span<const std::byte> bytes, std::size_t index) {
    const auto triple = bytes.subspan(index * 3, 3);
    const auto byte = [&](std::size_t at) { return std::to_integer<quint32>(triple[at]); };
    return std::endian::native == std::endian::little ? byte(0) | byte(1) << 8 | byte(2) << 16
                                                      : byte(0) << 16 | byte(1) << 8 | byte(2);
}

/// Calls `take(index, value)` for each of `count` samples of less than 32 bits that are packed without gaps, the
/// highest bit first.
template <typename Take>
void forEachPacked(std::span<const std::byte> row, int bits, std::size_t count, const Take& take) {
    const quint64 mask = largestOf(bits);
    quint64 window = 0;
    int available = 0;
    auto next = row.begin();
    for (std::size_t index = 0; index < count; ++index) {
        for (; available < bits; available += 8) {
            window = window << 8 | std::to_integer<quint64>(*next++);
        }
        available -= bits;
        take(index, window >> available & mask);
    }
}

/// A float of `exponentBits` and `mantissaBits` with the exponent range and the special values of IEEE 754: 5 and 10
/// for 16 bits, 7 and 16 for the 24 bits of TIFF Technical Note 3.
float narrowFloat(quint32 value, int exponentBits, int mantissaBits) {
    const auto exponent = static_cast<int>(value >> mantissaBits & largestOf(exponentBits));
    const auto mantissa = static_cast<quint32>(value & largestOf(mantissaBits));
    const quint32 sign = (value >> (exponentBits + mantissaBits) & 1) << 31;
    const int bias = (1 << (exponentBits - 1)) - 1;
    if (exponent == 0) { // zero and the numbers below the smallest exponent
        const float magnitude = std::ldexp(static_cast<float>(mantissa), 1 - bias - mantissaBits);
        return std::bit_cast<float>(sign | std::bit_cast<quint32>(magnitude));
    }
    const bool isSpecial = exponent == (1 << exponentBits) - 1; // infinity, not a number
    const auto wideExponent = static_cast<quint32>(isSpecial ? 255 : exponent - bias + 127);
    return std::bit_cast<float>(sign | wideExponent << 23 | mantissa << (23 - mantissaBits));
}

void unpackFloats(std::span<const std::byte> row, int bits, std::span<float> samples) {
    for (std::size_t index = 0; index < samples.size(); ++index) {
        switch (bits) {
        case 16:
            samples[index] = narrowFloat(wordAt<quint16>(row, index), 5, 10);
            break;
        case 24:
            samples[index] = narrowFloat(tripleAt(row, index), 7, 16);
            break;
        default:
            samples[index] = static_cast<float>(wordAt<double>(row, index));
            break;
        }
    }
}

/// Samples of 17 to 31 bits.
void unpackWide(std::span<const std::byte> row, int bits, std::span<quint32> samples) {
    if (bits != 24) {
        return forEachPacked(row, bits, samples.size(),
                             [&](std::size_t index, quint64 value) { samples[index] = widen<quint32>(value, bits); });
    }
    for (std::size_t index = 0; index < samples.size(); ++index) {
        samples[index] = widen<quint32>(tripleAt(row, index), bits);
    }
}

/// Copies the samples that each byte of a row stands for, `perByte` of them.
template <std::size_t perByte>
void copyExpanded(std::span<const std::byte> row, const std::vector<quint8>& expanded, std::span<quint8> samples) {
    const auto copy = [&](std::size_t index, std::size_t count) {
        const auto at = std::to_integer<std::size_t>(row[index]) * perByte;
        std::memcpy(samples.data() + index * perByte, expanded.data() + at, count);
    };
    const std::size_t whole = samples.size() / perByte;
    for (std::size_t index = 0; index < whole; ++index) {
        copy(index, perByte);
    }
    if (samples.size() % perByte != 0) {
        copy(whole, samples.size() % perByte);
    }
}

/// Samples of 1, 2 or 4 bits.
void unpackBytes(std::span<const std::byte> row, int bits, const std::vector<quint8>& expanded,
                 std::span<quint8> samples) {
    switch (bits) {
    case 1:
        return copyExpanded<8>(row, expanded, samples);
    case 2:
        return copyExpanded<4>(row, expanded, samples);
    default:
        return copyExpanded<2>(row, expanded, samples);
    }
}

template <typename Sample>
Sample divided(Sample color, Sample alpha) {
    if constexpr (std::is_floating_point_v<Sample>) {
        return alpha == 0 ? 0 : color / alpha;
    } else {
        using Wide = std::conditional_t<sizeof(Sample) < sizeof(quint32), quint32, quint64>; // the faster division
        constexpr Wide largest = std::numeric_limits<Sample>::max();
        if (alpha == 0 || alpha == largest) {
            return alpha == 0 ? Sample{0} : color;
        }
        return static_cast<Sample>(std::min<Wide>(largest, (color * largest + alpha / 2) / alpha));
    }
}

template <typename Sample>
Sample inverted(Sample value) {
    if constexpr (std::is_floating_point_v<Sample>) {
        return 1 - value;
    } else {
        return static_cast<Sample>(std::numeric_limits<Sample>::max() - value);
    }
}

} // namespace

TiffSamples::TiffSamples(const TiffLayout& layout) : layout_(layout) {
    chooseChannels();
    if (!layout_.isFloat && layout_.palette.empty()) {
        makeTables();
    }
    isIdentity_ = layout_.bits == layout_.format.bitsPerComponent && layout_.palette.empty() &&
                  layout_.samplesInPlane() == layout_.format.samplesPerPixel() && !layout_.isInverted &&
                  layout_.alpha != TiffLayout::Alpha::associated && planes_.size() == 1;
}

void TiffSamples::chooseChannels() {
    const auto add = [this](int sample) {
        const int plane = layout_.isSeparate ? sample : 0;
        const auto found = std::find(planes_.begin(), planes_.end(), plane);
        const auto planeIndex = static_cast<std::size_t>(found - planes_.begin());
        if (found == planes_.end()) {
            planes_.push_back(plane);
        }
        channels_.push_back({planeIndex, static_cast<std::size_t>(layout_.isSeparate ? 0 : sample)});
    };
    for (int color = 0; color < layout_.colorSamples(); ++color) {
        add(color);
    }
    if (layout_.format.hasAlpha) {
        add(layout_.alphaSample);
    }
}

void TiffSamples::makeTables() {
    const int bits = layout_.bits;
    if (bits == 1 || bits == 2 || bits == 4) {
        for (quint64 byte = 0; byte < 256; ++byte) {
            for (int shift = 8 - bits; shift >= 0; shift -= bits) {
                expanded_.push_back(widen<quint8>(byte >> shift & largestOf(bits), bits));
            }
        }
    } else if (bits < 16 && bits != 8) {
        for (quint64 value = 0; value <= largestOf(bits); ++value) {
            widened_.push_back(bits < 8 ? widen<quint8>(value, bits) : widen<quint16>(value, bits));
        }
    }
}

void TiffSamples::convertRow(std::span<const std::span<const std::byte>> planeRows, std::span<std::byte> pixels) {
    if (!layout_.palette.empty()) {
        lookUp(planeRows[0], pixels);
    } else if (layout_.format.isFloat) {
        assemble(planeRows, samplesIn<float>(pixels));
    } else if (layout_.format.bitsPerComponent == 32) {
        assemble(planeRows, samplesIn<quint32>(pixels));
    } else if (layout_.format.bitsPerComponent == 16) {
        assemble(planeRows, samplesIn<quint16>(pixels));
    } else {
        assemble(planeRows, samplesIn<quint8>(pixels));
    }
}

template <typename Sample>
void TiffSamples::assemble(std::span<const std::span<const std::byte>> planeRows, std::span<Sample> pixels) {
    const std::size_t perPixel = channels_.size();
    const auto perPlanePixel = static_cast<std::size_t>(layout_.samplesInPlane());
    if (planes_.size() == 1 && perPixel == perPlanePixel) {
        unpack(planeRows[0], pixels);
        return finish(pixels);
    }
    const std::size_t pixelCount = pixels.size() / perPixel;
    unpacked_.resize(pixelCount * perPlanePixel * sizeof(Sample));
    const std::span<Sample> samples = samplesIn<Sample>(unpacked_);
    for (std::size_t plane = 0; plane < planes_.size(); ++plane) {
        unpack(planeRows[plane], samples);
        for (std::size_t channel = 0; channel < perPixel; ++channel) {
            const Channel& from = channels_[channel];
            for (std::size_t pixel = 0; from.planeIndex == plane && pixel < pixelCount; ++pixel) {
                pixels[pixel * perPixel + channel] = samples[pixel * perPlanePixel + from.sample];
            }
        }
    }
    finish(pixels);
}

/// Widens the first samples of a row, as many as there is room for.
template <typename Sample>
void TiffSamples::unpack(std::span<const std::byte> row, std::span<Sample> samples) const {
    const int bits = layout_.bits;
    if (bits == int{sizeof(Sample)} * 8) {
        std::memcpy(samples.data(), row.first(samples.size_bytes()).data(), samples.size_bytes());
        return;
    }
    if constexpr (std::is_same_v<Sample, float>) {
        unpackFloats(row, bits, samples);
    } else if constexpr (std::is_same_v<Sample, quint32>) {
        unpackWide(row, bits, samples);
    } else {
        if constexpr (std::is_same_v<Sample, quint8>) {
            if (!expanded_.empty()) {
                return unpackBytes(row, bits, expanded_, samples);
            }
        }
        forEachPacked(row, bits, samples.size(),
                      [&](std::size_t index, quint64 value) { samples[index] = static_cast<Sample>(widened_[value]); });
    }
}

/// Divides alpha out of the colours and then inverts them, since the stored numbers are what alpha was multiplied into.
template <typename Sample>
void TiffSamples::finish(std::span<Sample> pixels) const {
    const std::size_t perPixel = channels_.size();
    const std::size_t colors = perPixel - (layout_.format.hasAlpha ? 1 : 0);
    if (layout_.alpha == TiffLayout::Alpha::associated) {
        for (std::size_t first = 0; first < pixels.size(); first += perPixel) {
            const Sample alpha = pixels[first + colors];
            for (std::size_t color = first; color < first + colors; ++color) {
                pixels[color] = divided(pixels[color], alpha);
            }
        }
    }
    if (layout_.isInverted) { // gray, so each pixel has one colour
        for (std::size_t pixel = 0; pixel < pixels.size(); pixel += perPixel) {
            pixels[pixel] = inverted(pixels[pixel]);
        }
    }
}

/// Replaces the index that each pixel begins with by its colour.
void TiffSamples::lookUp(std::span<const std::byte> row, std::span<std::byte> pixels) const {
    const auto perPixel = static_cast<std::size_t>(layout_.samplesInPlane());
    constexpr std::size_t colorBytes = 3;
    const std::size_t pixelCount = pixels.size() / colorBytes;
    const auto put = [&](std::size_t pixel, std::size_t index) {
        std::memcpy(pixels.data() + pixel * colorBytes, layout_.palette[index].data(), colorBytes);
    };
    if (layout_.bits == 8) {
        for (std::size_t pixel = 0; pixel < pixelCount; ++pixel) {
            put(pixel, std::to_integer<std::size_t>(row[pixel * perPixel]));
        }
    } else if (layout_.bits == 16) {
        for (std::size_t pixel = 0; pixel < pixelCount; ++pixel) {
            put(pixel, wordAt<quint16>(row, pixel * perPixel));
        }
    } else {
        forEachPacked(row, layout_.bits, pixelCount * perPixel, [&](std::size_t sample, quint64 index) {
            if (sample % perPixel == 0) {
                put(sample / perPixel, index);
            }
        });
    }
}

} // namespace orvex::platform
