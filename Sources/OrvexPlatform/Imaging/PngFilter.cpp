#include "Imaging/PngFilter.h"

#include "Imaging/ImageError.h"
#include "VectorCode.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace orvex::platform {

namespace {

static_assert(std::endian::native == std::endian::little, "pixels are shifted as little-endian numbers");

enum class Filter : std::uint8_t { none, sub, up, average, paeth };

// One sample in each lane: up to four of two pixels, or up to eight of one.
using Lanes = std::int16_t __attribute__((vector_size(16)));
using Bytes = std::uint8_t __attribute__((vector_size(8)));

ORVEX_INLINE Lanes widened(std::uint64_t bytes) {
    return __builtin_convertvector(std::bit_cast<Bytes>(bytes), Lanes);
}

ORVEX_INLINE std::uint64_t narrowed(Lanes lanes) {
    return std::bit_cast<std::uint64_t>(__builtin_convertvector(lanes, Bytes));
}

ORVEX_INLINE Lanes magnitude(Lanes value) {
    const Lanes negative = -value;
    return value > negative ? value : negative;
}

ORVEX_INLINE Lanes smaller(Lanes first, Lanes second) {
    return first < second ? first : second;
}

/// PNG 1.2, 6.6: left, above or above-left, whichever is nearest to left + above - aboveLeft.
ORVEX_INLINE Lanes paethPredictor(Lanes left, Lanes above, Lanes aboveLeft) {
    const Lanes toLeft = above - aboveLeft;
    const Lanes toAbove = left - aboveLeft;
    const Lanes leftDistance = magnitude(toLeft);
    const Lanes aboveDistance = magnitude(toAbove);
    const Lanes aboveLeftDistance = magnitude(toLeft + toAbove);
    const Lanes nearest = smaller(aboveLeftDistance, smaller(leftDistance, aboveDistance));
    return nearest == leftDistance ? left : (nearest == aboveDistance ? above : aboveLeft);
}

/// Which neighbours count in each half of the lanes: without the others the Paeth predictor is that of None, Sub or Up.
struct Masks {
    Lanes left;
    Lanes above;
    Lanes average;

    static Masks of(Filter lower, Filter upper) {
        const auto mask = [&](auto applies) {
            const auto low = static_cast<std::int16_t>(applies(lower) ? -1 : 0);
            const auto high = static_cast<std::int16_t>(applies(upper) ? -1 : 0);
            return Lanes{low, low, low, low, high, high, high, high};
        };
        return {mask([](Filter filter) { return filter != Filter::none && filter != Filter::up; }),
                mask([](Filter filter) { return filter != Filter::none && filter != Filter::sub; }),
                mask([](Filter filter) { return filter == Filter::average; })};
    }
};

ORVEX_INLINE Lanes mixedPredictor(const Masks& masks, Lanes left, Lanes above, Lanes aboveLeft) {
    const Lanes a = left & masks.left;
    const Lanes b = above & masks.above;
    const Lanes c = aboveLeft & masks.left & masks.above;
    return masks.average ? (a + b) >> 1 : paethPredictor(a, b, c);
}

/// Where in its row a pixel is. One of three or six bytes is read and written as four or eight where another follows.
enum class Place { outside, inner, last };

template <std::size_t pixelBytes, Place place>
constexpr std::size_t accessBytes = place == Place::inner&& pixelBytes % 3 == 0 ? pixelBytes / 3 * 4 : pixelBytes;

template <std::size_t pixelBytes, Place place>
ORVEX_INLINE std::uint64_t loaded(const std::byte* row, std::size_t pixel) {
    std::uint64_t bytes = 0;
    if constexpr (place != Place::outside) {
        std::memcpy(&bytes, row + pixel * pixelBytes, accessBytes<pixelBytes, place>);
    }
    return bytes;
}

template <std::size_t pixelBytes, Place place>
ORVEX_INLINE void store(std::uint64_t bytes, std::byte* row, std::size_t pixel) {
    if constexpr (place != Place::outside) {
        std::memcpy(row + pixel * pixelBytes, &bytes, accessBytes<pixelBytes, place>);
    }
}

struct Row {
    Filter filter;
    const std::byte* in;
    const std::byte* above;
    std::byte* out;
    std::size_t bytes;
};

/// A row of Paeth alone, a pixel at a time.
template <std::size_t pixelBytes>
struct PaethUndo {
    Row row;
    Lanes left{};
    Lanes aboveLeft{};

    template <Place place>
    ORVEX_INLINE void step(std::size_t pixel) {
        const Lanes above = widened(loaded<pixelBytes, place>(row.above, pixel));
        const Lanes difference = widened(loaded<pixelBytes, place>(row.in, pixel));
        left = (difference + paethPredictor(left, above, aboveLeft)) & 0xFF;
        aboveLeft = above;
        store<pixelBytes, place>(narrowed(left), row.out, pixel);
    }

    ORVEX_INLINE void run() {
        const std::size_t last = row.bytes / pixelBytes - 1;
        for (std::size_t pixel = 0; pixel < last; ++pixel) {
            step<Place::inner>(pixel);
        }
        step<Place::last>(last);
    }
};

/// Two rows one below the other, a pixel of each at a time, the lower row one pixel behind: the upper row's pixel is in
/// the low lanes, the lower row's in the high ones.
template <std::size_t pixelBytes, bool isMixed>
struct PairUndo {
    Row upper;
    Row lower;
    Masks masks;
    Lanes left{};
    Lanes above{};

    template <Place upperPlace, Place lowerPlace>
    ORVEX_INLINE void step(std::size_t pixel) {
        const std::uint64_t differences = loaded<pixelBytes, upperPlace>(upper.in, pixel) |
                                          loaded<pixelBytes, lowerPlace>(lower.in, pixel - 1) << 32U;
        const Lanes aboveUpper = widened(loaded<pixelBytes, upperPlace>(upper.above, pixel));
        const Lanes aboveLeft = above;
        // What the upper row has got in the step before is what the lower one has above it now.
        above = __builtin_shufflevector(aboveUpper, left, 0, 1, 2, 3, 8, 9, 10, 11);
        const Lanes predictor =
            isMixed ? mixedPredictor(masks, left, above, aboveLeft) : paethPredictor(left, above, aboveLeft);
        left = (widened(differences) + predictor) & 0xFF;
        const std::uint64_t bytes = narrowed(left);
        store<pixelBytes, upperPlace>(bytes, upper.out, pixel);
        store<pixelBytes, lowerPlace>(bytes >> 32U, lower.out, pixel - 1);
    }

    ORVEX_INLINE void run() {
        const std::size_t pixels = upper.bytes / pixelBytes;
        if (pixels == 1) {
            step<Place::last, Place::outside>(0);
        } else {
            step<Place::inner, Place::outside>(0);
            for (std::size_t pixel = 1; pixel + 1 < pixels; ++pixel) {
                step<Place::inner, Place::inner>(pixel);
            }
            step<Place::last, Place::inner>(pixels - 1);
        }
        step<Place::outside, Place::last>(pixels);
    }
};

ORVEX_INLINE std::byte sum(std::byte first, unsigned second) {
    return static_cast<std::byte>(std::to_integer<unsigned>(first) + second);
}

ORVEX_INLINE unsigned number(std::byte value) {
    return std::to_integer<unsigned>(value);
}

template <std::size_t pixelBytes>
ORVEX_INLINE void undoRow(const Row& row) {
    switch (row.filter) {
    case Filter::none:
        std::memcpy(row.out, row.in, row.bytes);
        break;
    case Filter::sub:
        std::memcpy(row.out, row.in, pixelBytes);
        for (std::size_t at = pixelBytes; at < row.bytes; ++at) {
            row.out[at] = sum(row.in[at], number(row.out[at - pixelBytes]));
        }
        break;
    case Filter::up:
        for (std::size_t at = 0; at < row.bytes; ++at) {
            row.out[at] = sum(row.in[at], number(row.above[at]));
        }
        break;
    case Filter::average:
        for (std::size_t at = 0; at < pixelBytes; ++at) {
            row.out[at] = sum(row.in[at], number(row.above[at]) / 2);
        }
        for (std::size_t at = pixelBytes; at < row.bytes; ++at) {
            row.out[at] = sum(row.in[at], (number(row.out[at - pixelBytes]) + number(row.above[at])) / 2);
        }
        break;
    case Filter::paeth:
        PaethUndo<pixelBytes>{row}.run();
        break;
    }
}

template <std::size_t pixelBytes>
ORVEX_INLINE void undoPair(const Row& upper, const Row& lower) {
    if (upper.filter == Filter::paeth && lower.filter == Filter::paeth) {
        PairUndo<pixelBytes, false>{upper, lower, {}}.run();
    } else {
        PairUndo<pixelBytes, true>{upper, lower, Masks::of(upper.filter, lower.filter)}.run();
    }
}

Filter filterOf(std::byte number) {
    if (number > std::byte{4}) {
        throw ImageError(QStringLiteral("the PNG file has a row with an unknown filter"));
    }
    return static_cast<Filter>(number);
}

template <std::size_t pixelBytes>
ORVEX_INLINE void undoRows(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    const std::size_t count = filtered.size() / (rowBytes + 1);
    const auto rowAt = [&](std::size_t index) {
        const std::byte* in = filtered.data() + index * (rowBytes + 1);
        std::byte* above = rows + index * rowBytes;
        return Row{filterOf(*in), in + 1, above, above + rowBytes, rowBytes};
    };
    for (std::size_t index = 0; index < count; ++index) {
        const Row row = rowAt(index);
        if constexpr (pixelBytes <= 4) {
            if (index + 1 < count) {
                const Row next = rowAt(index + 1);
                // The other filters are faster alone.
                if (row.filter == Filter::paeth || next.filter == Filter::paeth) {
                    undoPair<pixelBytes>(row, next);
                    ++index;
                    continue;
                }
            }
        }
        undoRow<pixelBytes>(row);
    }
}

ORVEX_VECTOR_CLONES
void undoRows1(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<1>(filtered, rowBytes, rows);
}

ORVEX_VECTOR_CLONES
void undoRows2(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<2>(filtered, rowBytes, rows);
}

ORVEX_VECTOR_CLONES
void undoRows3(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<3>(filtered, rowBytes, rows);
}

ORVEX_VECTOR_CLONES
void undoRows4(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<4>(filtered, rowBytes, rows);
}

ORVEX_VECTOR_CLONES
void undoRows6(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<6>(filtered, rowBytes, rows);
}

ORVEX_VECTOR_CLONES
void undoRows8(std::span<const std::byte> filtered, std::size_t rowBytes, std::byte* rows) {
    undoRows<8>(filtered, rowBytes, rows);
}

} // namespace

void undoPngFilters(std::span<const std::byte> filtered, std::size_t rowBytes, std::size_t pixelBytes,
                    std::span<std::byte> rows) {
    switch (pixelBytes) {
    case 1:
        return undoRows1(filtered, rowBytes, rows.data());
    case 2:
        return undoRows2(filtered, rowBytes, rows.data());
    case 3:
        return undoRows3(filtered, rowBytes, rows.data());
    case 4:
        return undoRows4(filtered, rowBytes, rows.data());
    case 6:
        return undoRows6(filtered, rowBytes, rows.data());
    default:
        return undoRows8(filtered, rowBytes, rows.data());
    }
}

} // namespace orvex::platform
