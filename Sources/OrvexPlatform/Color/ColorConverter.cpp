#include "Color/ColorConverter.h"

#include "Color/KnownColors.h"
#include "Color/LatticeConverter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

namespace orvex::platform {

namespace {

/// Leaves every pixel to the exact conversion.
class ExactConverter : public ColorConverter {
public:
    explicit ExactConverter(ExactConversion exact) : exact_(std::move(exact)) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        exact_(source, destination);
    }

private:
    ExactConversion exact_;
};

/// Gray: all colours there are, computed at once.
template <typename Sample>
class GrayConverter : public ColorConverter {
public:
    GrayConverter(std::size_t destinationBytes, const ExactConversion& exact)
        : destinationBytes_(destinationBytes),
          pixels_(grayCount * destinationBytes) {
        std::vector<Sample> grays(grayCount);
        for (std::size_t gray = 0; gray < grayCount; ++gray) {
            grays[gray] = static_cast<Sample>(gray);
        }
        exact(std::as_bytes(std::span(grays)), pixels_);
    }

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        std::byte* to = destination.data();
        for (std::size_t at = 0; at < source.size(); at += sizeof(Sample), to += destinationBytes_) {
            Sample gray{};
            std::memcpy(&gray, &source[at], sizeof(Sample));
            std::memcpy(to, &pixels_[gray * destinationBytes_], destinationBytes_);
        }
    }

private:
    static constexpr std::size_t grayCount = std::size_t{std::numeric_limits<Sample>::max()} + 1;

    std::size_t destinationBytes_;
    std::vector<std::byte> pixels_;
};

/// All colours of three samples of 8 bits.
class AllColors {
public:
    void prefetch(quint32 color) const { colors_.prefetch(indexOf(color)); }

    [[nodiscard]] std::optional<quint32> find(quint32 color) const {
        const quint32 entry = colors_.at(indexOf(color));
        return entry != 0 ? std::optional(entry ^ mask) : std::nullopt;
    }

    void learn(quint32 color, quint32 value) { colors_.learn(indexOf(color), value ^ mask); }

private:
    /// The value that stands as zero, and so never becomes known: an ink mixture that hardly any picture has.
    static constexpr quint32 mask = 0x01FE01FE;

    static std::size_t indexOf(quint32 color) { return colorIndex(color & 0xFFU, color >> 8U & 0xFFU, color >> 16U); }

    KnownColors<quint32> colors_{colorIndexCount, TablePages::large};
};

/// The last colours of three or four samples of 8 bits, where there are too many to keep.
class RecentColors {
public:
    void prefetch(quint32 color) const { __builtin_prefetch(&entries_[placeOf(color)]); }

    [[nodiscard]] std::optional<quint32> find(quint32 color) const {
        const Entry& entry = entries_[placeOf(color)];
        return entry.isKnown && entry.color == color ? std::optional(entry.value) : std::nullopt;
    }

    void learn(quint32 color, quint32 value) { entries_[placeOf(color)] = {color, value, true}; }

private:
    struct Entry {
        quint32 color = 0;
        quint32 value = 0;
        bool isKnown = false;
    };

    static constexpr unsigned placeBits = 16;

    /// Knuth's multiplicative hash, which sends colours that are alike to different places.
    static std::size_t placeOf(quint32 color) { return color * 2654435761U >> (32U - placeBits); }

    std::vector<Entry> entries_ = std::vector<Entry>(std::size_t{1} << placeBits);
};

/// Converts pixels of up to four bytes to pixels of up to four bytes: those that a table knows at once, the others
/// exactly, and then the table knows them.
template <typename Table, std::size_t SourceBytes, std::size_t DestinationBytes>
class TableConversion {
public:
    TableConversion(Table& table, const ExactConversion& exact) : table_(table), exact_(exact) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) {
        const std::size_t count = source.size() / SourceBytes;
        for (std::size_t first = 0; first < count; first += blockPixels) {
            const std::size_t pixels = std::min(blockPixels, count - first);
            convertBlock(source.data() + first * SourceBytes, destination.data() + first * DestinationBytes, pixels);
        }
    }

private:
    static constexpr std::size_t blockPixels = 256;

    void convertBlock(const std::byte* source, std::byte* destination, std::size_t pixels) {
        for (std::size_t i = 0; i < pixels; ++i) {
            table_.prefetch(colorAt(source, i));
        }
        std::array<std::size_t, blockPixels> unknown; // pixel numbers
        std::size_t unknownCount = 0;
        for (std::size_t i = 0; i < pixels; ++i) {
            if (const auto value = table_.find(colorAt(source, i))) {
                std::memcpy(destination + i * DestinationBytes, &*value, DestinationBytes);
            } else {
                unknown[unknownCount++] = i;
            }
        }
        if (unknownCount > 0) {
            convertUnknown(source, destination, std::span(unknown).first(unknownCount));
        }
    }

    /// Put together from single bytes: a processor waits for a number that was stored in other pieces than it is read.
    static quint32 colorAt(const std::byte* source, std::size_t pixel) {
        quint32 color = 0;
        for (std::size_t i = 0; i < SourceBytes; ++i) {
            color |= std::to_integer<quint32>(source[pixel * SourceBytes + i]) << (8 * i);
        }
        return color;
    }

    void convertUnknown(const std::byte* source, std::byte* destination, std::span<const std::size_t> pixels) {
        std::array<std::byte, blockPixels * SourceBytes> from;
        std::array<std::byte, blockPixels * DestinationBytes> to;
        // Neighbours are often of one colour; each is computed once.
        std::size_t count = 0;
        for (const std::size_t pixel : pixels) {
            const bool isNew = count == 0 || colorAt(from.data(), count - 1) != colorAt(source, pixel);
            count += isNew ? 1U : 0U;
            std::memcpy(from.data() + (count - 1) * SourceBytes, source + pixel * SourceBytes, SourceBytes);
        }
        exact_(std::span(from).first(count * SourceBytes), std::span(to).first(count * DestinationBytes));
        std::size_t computed = 0;
        for (const std::size_t pixel : pixels) {
            const quint32 color = colorAt(source, pixel);
            computed += colorAt(from.data(), computed) == color ? 0U : 1U;
            quint32 value = 0;
            std::memcpy(&value, to.data() + computed * DestinationBytes, DestinationBytes);
            std::memcpy(destination + pixel * DestinationBytes, &value, DestinationBytes);
            table_.learn(color, value);
        }
    }

    Table& table_;
    const ExactConversion& exact_;
};

/// Three samples of 8 bits.
template <std::size_t DestinationBytes>
class AllColorsConverter : public ColorConverter {
public:
    explicit AllColorsConverter(ExactConversion exact) : exact_(std::move(exact)) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        TableConversion<AllColors, 3, DestinationBytes>(colors_, exact_).convert(source, destination);
    }

private:
    ExactConversion exact_;
    mutable AllColors colors_; // grows, but never gives another answer
};

/// Four samples of 8 bits, or three for a small picture.
template <std::size_t SourceBytes, std::size_t DestinationBytes>
class RecentColorsConverter : public ColorConverter {
public:
    explicit RecentColorsConverter(ExactConversion exact) : exact_(std::move(exact)) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        RecentColors colors;
        TableConversion<RecentColors, SourceBytes, DestinationBytes>(colors, exact_).convert(source, destination);
    }

private:
    ExactConversion exact_;
};

template <std::size_t DestinationBytes>
std::unique_ptr<ColorConverter> makeForBytesTo(const ConversionFormat& format, ExactConversion exact) {
    if (format.source == ColorModel::cmyk) {
        return std::make_unique<RecentColorsConverter<4, DestinationBytes>>(std::move(exact));
    }
    if (format.memory == ColorMemory::recent) {
        return std::make_unique<RecentColorsConverter<3, DestinationBytes>>(std::move(exact));
    }
    return std::make_unique<AllColorsConverter<DestinationBytes>>(std::move(exact));
}

std::unique_ptr<ColorConverter> makeForBytes(const ConversionFormat& format, ExactConversion exact) {
    return format.destination == ColorModel::rgb ? makeForBytesTo<3>(format, std::move(exact))
                                                 : makeForBytesTo<4>(format, std::move(exact));
}

std::unique_ptr<ColorConverter> makeForGray(const ConversionFormat& format, const ExactConversion& exact) {
    if (format.bits == 8) {
        return std::make_unique<GrayConverter<quint8>>(format.destinationBytes(), exact);
    }
    return std::make_unique<GrayConverter<quint16>>(format.destinationBytes(), exact);
}

} // namespace

std::size_t ConversionFormat::sourceBytes() const {
    return static_cast<std::size_t>(componentCount(source) * bits / 8);
}

std::size_t ConversionFormat::destinationBytes() const {
    return static_cast<std::size_t>(componentCount(destination) * bits / 8);
}

std::unique_ptr<ColorConverter> ColorConverter::make(const ConversionFormat& format, ExactConversion exact) {
    if (format.source == ColorModel::gray) {
        return makeForGray(format, exact);
    }
    const bool isToGray = format.destination == ColorModel::gray;
    if (!isToGray && format.bits == 8) {
        return makeForBytes(format, std::move(exact));
    }
    if (!isToGray && format.source == ColorModel::rgb) {
        return makeLatticeConverter(format.destination, exact);
    }
    return makeExactConverter(std::move(exact));
}

std::unique_ptr<ColorConverter> makeExactConverter(ExactConversion exact) {
    return std::make_unique<ExactConverter>(std::move(exact));
}

} // namespace orvex::platform
