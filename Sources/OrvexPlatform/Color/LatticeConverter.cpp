#include "Color/LatticeConverter.h"

#include "Color/ColorLattice.h"
#include "Color/KnownColors.h"
#include "VectorCode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace orvex::platform {

namespace {

/// The up to four samples of a converted pixel, 16 bits each.
using PackedPixel = quint64;

int sampleOf(PackedPixel pixel, unsigned number) {
    return static_cast<int>(pixel >> (16 * number) & 0xFFFFU);
}

constexpr CellQuarters middleOfCell{2, 2, 2};

/// Halfway from the middle of a cell to every other of its corners.
constexpr std::array<CellQuarters, 4> waysToCorners{{{1, 1, 1}, {1, 3, 3}, {3, 1, 3}, {3, 3, 1}}};

/// The samples of a pixel, each in 32 bits.
using WideSamples = quint32 __attribute__((vector_size(16)));

ORVEX_INLINE WideSamples widened(PackedPixel pixel) {
    using Samples = quint16 __attribute__((vector_size(16)));
    using Pixels = PackedPixel __attribute__((vector_size(16)));
    const auto samples = std::bit_cast<Samples>(Pixels{pixel, 0});
    return std::bit_cast<WideSamples>(__builtin_shufflevector(samples, Samples{}, 0, 8, 1, 9, 2, 10, 3, 11));
}

ORVEX_INLINE PackedPixel narrowed(WideSamples samples) {
    using Samples = quint16 __attribute__((vector_size(8)));
    return std::bit_cast<PackedPixel>(__builtin_convertvector(samples, Samples));
}

/// How far two pixels are apart in the sample in which they differ most.
int largestDifference(PackedPixel first, PackedPixel second, unsigned samples) {
    int largest = 0;
    for (unsigned number = 0; number < samples; ++number) {
        largest = std::max(largest, std::abs(sampleOf(first, number) - sampleOf(second, number)));
    }
    return largest;
}

/// What the corners of a cell tell of the colours within.
enum class Outlook {
    even,
    doubtful, ///< a sample is nearer to an end of its range than it changes: curves are steepest there, or cut off
    bent,     ///< a sample changes much, or lies at an end of its range at one corner and well within it at another
};

Outlook outlookOf(const std::array<PackedPixel, 8>& corners, unsigned samples, quint32 spacing) {
    constexpr int highest = 65535;
    const int largestChange = static_cast<int>(spacing) * LatticeLimits::largestChangePerStep;
    Outlook outlook = Outlook::even;
    for (unsigned number = 0; number < samples; ++number) {
        int least = highest;
        int greatest = 0;
        for (const PackedPixel corner : corners) {
            least = std::min(least, sampleOf(corner, number));
            greatest = std::max(greatest, sampleOf(corner, number));
        }
        const int change = greatest - least;
        const int distanceToEnd = std::min(least, highest - greatest);
        if (change > (distanceToEnd == 0 ? LatticeLimits::largestCutOff : largestChange)) {
            return Outlook::bent;
        }
        if (distanceToEnd < change) {
            outlook = Outlook::doubtful;
        }
    }
    return outlook;
}

/// Exact colours of pixels, packed.
class ExactColors {
public:
    ExactColors(ExactConversion exact, std::size_t destinationBytes)
        : exact_(std::move(exact)),
          destinationBytes_(destinationBytes) {}

    [[nodiscard]] std::vector<PackedPixel> operator()(const std::vector<Pixel16>& pixels) const {
        std::vector<std::byte> converted(pixels.size() * destinationBytes_);
        exact_(std::as_bytes(std::span(pixels)), converted);
        std::vector<PackedPixel> colors(pixels.size());
        for (std::size_t i = 0; i < colors.size(); ++i) {
            std::memcpy(&colors[i], &converted[i * destinationBytes_], destinationBytes_);
        }
        return colors;
    }

private:
    ExactConversion exact_;
    std::size_t destinationBytes_;
};

/// Interpolates in one lattice, whose nodes become known as pixels need them, and leaves the pixels of bent cells to
/// another converter.
template <quint32 cellCount, std::size_t DestinationBytes>
class LatticeConverter : public ColorConverter {
public:
    /// A table whose places are needed here and there is better made of small pages.
    LatticeConverter(const ExactConversion& exact, TablePages pages, std::unique_ptr<ColorConverter> forBentCells)
        : exactColors_(exact, DestinationBytes),
          forBentCells_(std::move(forBentCells)),
          nodes_(Nodes::placeCount, pages),
          cells_(Nodes::placeCount, pages) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        std::array<Pixel16, blockPixels> pixels;
        const std::size_t count = source.size() / sizeof(Pixel16);
        for (std::size_t first = 0; first < count; first += blockPixels) {
            const auto block = std::span(pixels).first(std::min(blockPixels, count - first));
            std::memcpy(block.data(), &source[first * sizeof(Pixel16)], block.size_bytes());
            convertBlock(block, destination.subspan(first * DestinationBytes, block.size() * DestinationBytes));
        }
    }

private:
    using Nodes = Lattice<cellCount>;

    static constexpr unsigned samples = DestinationBytes / sizeof(quint16);

    enum Cell : quint8 { unknown, bent, smooth };

    void convertBlock(std::span<const Pixel16> pixels, std::span<std::byte> destination) const {
        Tetrahedra tetrahedra;
        Nodes::locate(pixels, tetrahedra);
        const auto cells = std::span(tetrahedra.places[0]).first(pixels.size());
        quint8 least = leastOf(cells);
        if (least == unknown) {
            learnCells(pixels);
            least = leastOf(cells);
        }
        interpolate(tetrahedra, destination);
        if (least == bent) {
            convertBent(pixels, tetrahedra, destination);
        }
    }

    /// The first of `Cell` that any of the cells at these places is.
    [[nodiscard]] quint8 leastOf(std::span<const quint32> places) const {
        quint8 least = smooth;
        for (const quint32 place : places) {
            least = std::min(least, cells_.at(place));
        }
        return least;
    }

    ORVEX_VECTOR_CLONES void interpolate(const Tetrahedra& tetrahedra, std::span<std::byte> destination) const {
        for (std::size_t i = 0; i < destination.size() / DestinationBytes; ++i) {
            const PackedPixel mean = interpolated(tetrahedra, i);
            std::memcpy(&destination[i * DestinationBytes], &mean, DestinationBytes);
        }
    }

    /// The weighted mean of a tetrahedron's nodes, each sample rounded to the nearest.
    [[nodiscard]] ORVEX_INLINE PackedPixel interpolated(const Tetrahedra& tetrahedra, std::size_t number) const {
        const auto weighted = [&](std::size_t corner) {
            return widened(nodes_.at(tetrahedra.places[corner][number])) * tetrahedra.weights[corner][number];
        };
        const WideSamples sums = weighted(0) + weighted(1) + weighted(2) + weighted(3) + wholeWeight / 2;
        return narrowed(sums / wholeWeight);
    }

    /// Converts the pixels of bent cells once more.
    void convertBent(std::span<const Pixel16> pixels, const Tetrahedra& tetrahedra,
                     std::span<std::byte> destination) const {
        std::array<std::size_t, blockPixels> numbers;
        std::array<Pixel16, blockPixels> chosen;
        std::size_t count = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            numbers[count] = i;
            chosen[count] = pixels[i];
            count += cells_.at(tetrahedra.places[0][i]) == bent ? 1U : 0U;
        }
        std::array<std::byte, blockPixels * DestinationBytes> converted;
        forBentCells_->convert(std::as_bytes(std::span(chosen).first(count)),
                               std::span(converted).first(count * DestinationBytes));
        for (std::size_t i = 0; i < count; ++i) {
            std::memcpy(&destination[numbers[i] * DestinationBytes], &converted[i * DestinationBytes],
                        DestinationBytes);
        }
    }

    /// Sees to it that the pixels' cells are known, and before them all their corners.
    void learnCells(std::span<const Pixel16> pixels) const {
        std::vector<LatticeNode> cells;
        for (const Pixel16& pixel : pixels) {
            const LatticeNode cell = Nodes::cellOf(pixel);
            if (cells_.at(Nodes::placeOf(cell)) == unknown) {
                cells.push_back(cell);
            }
        }
        cells = distinct(std::move(cells));
        learnCorners(cells);
        judge(std::move(cells));
    }

    /// Finds out which cells are bent: by their corners, then by their middles, and where these leave a doubt, on the
    /// ways from there to corners.
    void judge(std::vector<LatticeNode> cells) const {
        std::erase_if(
            cells, [this](const LatticeNode& cell) { return settledIf(outlook(cell) == Outlook::bent, cell, bent); });
        const std::vector<int> middles = largestErrors(cells, std::span(&middleOfCell, 1));
        std::vector<LatticeNode> doubtful;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const bool isStraight =
                middles[i] <= LatticeLimits::largestStraightError && outlook(cells[i]) == Outlook::even;
            if (!settledIf(isStraight, cells[i], smooth) &&
                !settledIf(middles[i] > LatticeLimits::largestCheckedError, cells[i], bent)) {
                doubtful.push_back(cells[i]);
            }
        }
        const std::vector<int> ways = largestErrors(doubtful, waysToCorners);
        for (std::size_t i = 0; i < doubtful.size(); ++i) {
            settle(doubtful[i], ways[i] > LatticeLimits::largestCheckedError ? bent : smooth);
        }
    }

    void settle(const LatticeNode& cell, Cell state) const { cells_.learn(Nodes::placeOf(cell), state); }

    /// The condition itself.
    bool settledIf(bool condition, const LatticeNode& cell, Cell state) const {
        if (condition) {
            settle(cell, state);
        }
        return condition;
    }

    [[nodiscard]] Outlook outlook(const LatticeNode& cell) const {
        std::array<PackedPixel, 8> colors;
        std::ranges::transform(Nodes::cornersOf(cell), colors.begin(),
                               [this](const LatticeNode& corner) { return nodes_.at(Nodes::placeOf(corner)); });
        return outlookOf(colors, samples, Nodes::spacing);
    }

    /// How far interpolation is from the exact colours in each cell: the most at any of these places and in any sample.
    [[nodiscard]] std::vector<int> largestErrors(const std::vector<LatticeNode>& cells,
                                                 std::span<const CellQuarters> places) const {
        std::vector<Pixel16> pixels;
        for (const LatticeNode& cell : cells) {
            std::ranges::transform(places, std::back_inserter(pixels),
                                   [&](const CellQuarters& place) { return Nodes::pixelIn(cell, place); });
        }
        const std::vector<PackedPixel> exact = exactColors_(pixels);
        std::vector<int> errors(cells.size());
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            Tetrahedra tetrahedron;
            Nodes::locate(std::span(pixels).subspan(i, 1), tetrahedron);
            int& error = errors[i / places.size()];
            error = std::max(error, largestDifference(interpolated(tetrahedron, 0), exact[i], samples));
        }
        return errors;
    }

    void learnCorners(const std::vector<LatticeNode>& cells) const {
        std::vector<LatticeNode> unknownNodes;
        for (const LatticeNode& cell : cells) {
            // A colour that is zero in all samples is taken for unknown, and computed for each cell around it.
            std::ranges::copy_if(Nodes::cornersOf(cell), std::back_inserter(unknownNodes),
                                 [this](const LatticeNode& corner) { return nodes_.at(Nodes::placeOf(corner)) == 0; });
        }
        unknownNodes = distinct(std::move(unknownNodes));
        std::vector<Pixel16> pixels;
        std::ranges::transform(unknownNodes, std::back_inserter(pixels), Nodes::pixelAt);
        const std::vector<PackedPixel> colors = exactColors_(pixels);
        for (std::size_t i = 0; i < unknownNodes.size(); ++i) {
            nodes_.learn(Nodes::placeOf(unknownNodes[i]), colors[i]);
        }
    }

    static std::vector<LatticeNode> distinct(std::vector<LatticeNode> nodes) {
        std::sort(nodes.begin(), nodes.end());
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
        return nodes;
    }

    ExactColors exactColors_;
    std::unique_ptr<ColorConverter> forBentCells_;
    // Both grow, but never give another answer.
    mutable KnownColors<PackedPixel> nodes_;
    mutable KnownColors<quint8> cells_;
};

template <std::size_t DestinationBytes>
std::unique_ptr<ColorConverter> makeLatticesFor(const ExactConversion& exact) {
    auto narrow =
        std::make_unique<LatticeConverter<255, DestinationBytes>>(exact, TablePages::small, makeExactConverter(exact));
    return std::make_unique<LatticeConverter<85, DestinationBytes>>(exact, TablePages::large, std::move(narrow));
}

} // namespace

std::unique_ptr<ColorConverter> makeLatticeConverter(ColorModel destination, const ExactConversion& exact) {
    return destination == ColorModel::rgb ? makeLatticesFor<6>(exact) : makeLatticesFor<8>(exact);
}

} // namespace orvex::platform
