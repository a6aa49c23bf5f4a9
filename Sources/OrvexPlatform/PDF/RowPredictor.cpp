#include "PDF/RowPredictor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

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
void selectAsBigEndian(std::span<const std::byte> row, Selection selection, std::span<std::byte> out) {
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

void selectBytes(std::span<const std::byte> row, Selection selection, std::span<std::byte> out) {
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
void swapAll(std::span<const std::byte> row, std::span<std::byte> out) {
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
                    std::span<std::byte> out) {
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

/// How far the differences of two rows are from zero, for every eighth run of bytes: little is likely to compress well.
std::uint64_t sampledDistance(const std::byte* row, const std::byte* reference, std::size_t count) {
    constexpr std::size_t runBytes = 128;
    constexpr std::size_t stepBytes = 8 * runBytes;
    std::uint64_t sum = 0;
    for (std::size_t at = 0; at < count; at += stepBytes) {
        const std::size_t end = std::min(count, at + runBytes);
        std::uint32_t partial = 0; // lets the loop be vectorised
        for (std::size_t i = at; i < end; ++i) {
            const auto difference = static_cast<std::uint8_t>(number(row[i]) - number(reference[i]));
            partial += std::min<std::uint8_t>(difference, static_cast<std::uint8_t>(-difference));
        }
        sum += partial;
    }
    return sum;
}

void writeDifferences(const std::byte* row, const std::byte* reference, std::size_t count, std::byte* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::byte>(number(row[i]) - number(reference[i]));
    }
}

using Row = std::span<const std::byte>;

/// Whether the row is closer to the one above it than its pixels are to each other.
bool isCloserToAbove(Row row, Row above, std::size_t pixelBytes) {
    if (row.size() <= pixelBytes) {
        return true;
    }
    const std::size_t count = row.size() - pixelBytes;
    return sampledDistance(row.data() + pixelBytes, above.data() + pixelBytes, count) <
           sampledDistance(row.data() + pixelBytes, row.data(), count);
}

void filterRowSub(Row row, std::size_t pixelBytes, std::byte* out) {
    const std::size_t head = std::min(pixelBytes, row.size());
    out[0] = filterSub;
    std::copy_n(row.data(), head, out + 1);
    writeDifferences(row.data() + head, row.data(), row.size() - head, out + 1 + head);
}

void filterRowUp(Row row, Row above, std::byte* out) {
    out[0] = filterUp;
    writeDifferences(row.data(), above.data(), row.size(), out + 1);
}

/// Rows of a raster as PDF expects them.
class BigEndianRows {
public:
    BigEndianRows(std::span<const std::byte> strip, const PixelFormat& format, Selection selection,
                  std::size_t sourceBytes, std::size_t rowBytes)
        : strip_(strip),
          format_(format),
          selection_(selection),
          sourceBytes_(sourceBytes),
          isAsStored_(format.bitsPerComponent == 8 && selection.count == selection.perPixel) {
        if (!isAsStored_) {
            rooms_.fill(std::vector<std::byte>(rowBytes));
        }
    }

    /// The row of this number, which stays until the one after the next is asked for.
    Row row(std::size_t number) {
        const Row stored = strip_.subspan(number * sourceBytes_, sourceBytes_);
        if (isAsStored_) {
            return stored;
        }
        std::vector<std::byte>& room = rooms_[number % rooms_.size()];
        toBigEndianRow(stored, format_, selection_, room);
        return room;
    }

private:
    std::span<const std::byte> strip_;
    const PixelFormat& format_;
    Selection selection_;
    std::size_t sourceBytes_;
    bool isAsStored_;
    std::array<std::vector<std::byte>, 2> rooms_;
};

} // namespace

PredictedRows predictedRows(const PixelFormat& format, qint64 widthPixels, Samples samples) {
    const qint64 sampleBytes = pdfBitsPerComponent(format) / 8;
    const auto count = static_cast<qint64>(selectionOf(format, samples).count);
    return {.rowBytes = widthPixels * count * sampleBytes, .pixelBytes = count * sampleBytes};
}

QByteArray predictRows(std::span<const std::byte> strip, const PixelFormat& format, qint64 widthPixels,
                       Samples samples) {
    const PredictedRows shape = predictedRows(format, widthPixels, samples);
    const auto sourceBytes = static_cast<std::size_t>(widthPixels * format.bytesPerPixel());
    const auto pixelBytes = static_cast<std::size_t>(shape.pixelBytes);
    const std::size_t rowCount = strip.size() / sourceBytes;

    QByteArray predicted(static_cast<qsizetype>(rowCount) * shape.strideBytes(), Qt::Uninitialized);
    auto* target = reinterpret_cast<std::byte*>(predicted.data());
    BigEndianRows rows(strip, format, selectionOf(format, samples), sourceBytes,
                       static_cast<std::size_t>(shape.rowBytes));
    Row above;
    for (std::size_t number = 0; number < rowCount; ++number, target += shape.strideBytes()) {
        const Row row = rows.row(number);
        if (number > 0 && isCloserToAbove(row, above, pixelBytes)) {
            filterRowUp(row, above, target);
        } else {
            filterRowSub(row, pixelBytes, target);
        }
        above = row;
    }
    return predicted;
}

} // namespace orvex::platform
