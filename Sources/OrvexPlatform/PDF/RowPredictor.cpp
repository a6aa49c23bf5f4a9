#include "PDF/RowPredictor.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace orvex::platform {

namespace {

constexpr std::byte filterSub{1};
constexpr std::byte filterUp{2};

/// Where the wanted samples stand in a pixel.
struct Selection {
    std::size_t perPixel;
    std::size_t first;
    std::size_t count;
};

Selection selectionOf(const PixelFormat& format, Samples samples) {
    const auto colours = static_cast<std::size_t>(componentCount(format.model));
    const auto all = static_cast<std::size_t>(format.samplesPerPixel());
    return samples == Samples::colours ? Selection{all, 0, colours} : Selection{all, colours, 1};
}

std::uint16_t sixteenBits(std::uint32_t value) {
    return static_cast<std::uint16_t>((std::uint64_t{value} * 65535 + 0x7fffffffU) / 0xffffffffU);
}

std::uint16_t sixteenBits(float value) {
    // A sample that is no number is as little as black.
    return value > 0.0F ? static_cast<std::uint16_t>(std::lround(std::min(value, 1.0F) * 65535.0F)) : std::uint16_t{0};
}

std::uint16_t sixteenBits(std::uint16_t value) {
    return value;
}

template <typename Sample>
void selectAsBigEndian(std::span<const std::byte> row, Selection selection, std::vector<std::byte>& out) {
    const std::size_t pixels = row.size() / sizeof(Sample) / selection.perPixel;
    std::byte* to = out.data();
    const std::byte* from = row.data() + selection.first * sizeof(Sample);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel, from += selection.perPixel * sizeof(Sample)) {
        for (std::size_t index = 0; index < selection.count; ++index, to += 2) {
            Sample sample;
            std::memcpy(&sample, from + index * sizeof(Sample), sizeof(Sample));
            const std::uint16_t value = sixteenBits(sample);
            to[0] = static_cast<std::byte>(value >> 8U);
            to[1] = static_cast<std::byte>(value & 0xffU);
        }
    }
}

void selectBytes(std::span<const std::byte> row, Selection selection, std::vector<std::byte>& out) {
    if (selection.count == selection.perPixel) {
        std::copy(row.begin(), row.end(), out.begin());
        return;
    }
    std::byte* to = out.data();
    for (std::size_t at = selection.first; at < row.size(); at += selection.perPixel, to += selection.count) {
        std::copy_n(row.data() + at, selection.count, to);
    }
}

/// The whole row is one run of samples: swapping the bytes of pairs is all there is to do.
void swapAll(std::span<const std::byte> row, std::vector<std::byte>& out) {
    const std::byte* from = row.data();
    std::byte* to = out.data();
    for (std::size_t at = 0; at + 1 < row.size(); at += 2) {
        std::uint16_t value;
        std::memcpy(&value, from + at, sizeof(value));
        value = static_cast<std::uint16_t>((value << 8U) | (value >> 8U));
        std::memcpy(to + at, &value, sizeof(value));
    }
}

static_assert(std::endian::native == std::endian::little, "swapAll makes big-endian rows of little-endian ones");

void toBigEndianRow(std::span<const std::byte> row, const PixelFormat& format, Selection selection,
                    std::vector<std::byte>& out) {
    if (format.isFloat) {
        selectAsBigEndian<float>(row, selection, out);
    } else if (format.bitsPerComponent == 32) {
        selectAsBigEndian<std::uint32_t>(row, selection, out);
    } else if (format.bitsPerComponent == 8) {
        selectBytes(row, selection, out);
    } else if (selection.count == selection.perPixel) {
        swapAll(row, out);
    } else {
        selectAsBigEndian<std::uint16_t>(row, selection, out);
    }
}

std::uint8_t number(std::byte value) {
    return std::to_integer<std::uint8_t>(value);
}

/// Writes row[i] - reference[i] and returns how far the differences are from zero in all: small is likely to compress.
std::uint64_t writeDifferences(const std::byte* row, const std::byte* reference, std::size_t count, std::byte* out) {
    std::uint64_t sum = 0;
    std::size_t at = 0;
    while (at < count) {
        // Sums of 32 bits over a bounded run let the loop be vectorised.
        const std::size_t end = std::min<std::size_t>(count, at + 65536);
        std::uint32_t partial = 0;
        for (; at < end; ++at) {
            const auto difference = static_cast<std::uint8_t>(number(row[at]) - number(reference[at]));
            out[at] = static_cast<std::byte>(difference);
            partial += std::min<std::uint8_t>(difference, static_cast<std::uint8_t>(-difference));
        }
        sum += partial;
    }
    return sum;
}

std::uint64_t filterRowSub(const std::vector<std::byte>& row, std::size_t pixelBytes, std::byte* out) {
    const std::size_t head = std::min(pixelBytes, row.size());
    out[0] = filterSub;
    std::copy_n(row.data(), head, out + 1);
    return writeDifferences(row.data() + head, row.data(), row.size() - head, out + 1 + head);
}

std::uint64_t filterRowUp(const std::vector<std::byte>& row, const std::vector<std::byte>& above, std::byte* out) {
    out[0] = filterUp;
    return writeDifferences(row.data(), above.data(), row.size(), out + 1);
}

} // namespace

PredictedRows predictedRows(const PixelFormat& format, qint64 widthPixels, Samples samples) {
    const qint64 sampleBytes = pdfBitsPerComponent(format) / 8;
    const auto count = static_cast<qint64>(selectionOf(format, samples).count);
    return {.rowBytes = widthPixels * count * sampleBytes, .pixelBytes = count * sampleBytes};
}

std::vector<std::byte> predictRows(std::span<const std::byte> strip, const PixelFormat& format, qint64 widthPixels,
                                   Samples samples) {
    const PredictedRows shape = predictedRows(format, widthPixels, samples);
    const Selection selection = selectionOf(format, samples);
    const auto sourceBytes = static_cast<std::size_t>(widthPixels * format.bytesPerPixel());
    const auto stride = static_cast<std::size_t>(shape.strideBytes());
    const auto pixelBytes = static_cast<std::size_t>(shape.pixelBytes);
    const std::size_t rowCount = strip.size() / sourceBytes;

    std::vector<std::byte> out(rowCount * stride);
    std::vector<std::byte> row(static_cast<std::size_t>(shape.rowBytes));
    std::vector<std::byte> above(row.size());
    std::vector<std::byte> candidate(stride);
    for (std::size_t index = 0; index < rowCount; ++index) {
        toBigEndianRow(strip.subspan(index * sourceBytes, sourceBytes), format, selection, row);
        std::byte* target = out.data() + index * stride;
        const std::uint64_t subSum = filterRowSub(row, pixelBytes, target);
        if (index > 0 && filterRowUp(row, above, candidate.data()) < subSum) {
            std::copy(candidate.begin(), candidate.end(), target);
        }
        std::swap(row, above);
    }
    return out;
}

} // namespace orvex::platform
