#include "Color/LatticeConverter.h"

#include "Color/KnownColors.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace orvex::platform {

namespace {

// The nodes lie at the multiples of 257, so the first and the last sample are nodes: 65535 is 255 times 257.
constexpr quint32 spacing = 257;
constexpr quint32 lastNode = 255;

/// A colour at or between the nodes of the lattice, as numbers of nodes.
using Node = std::array<quint32, 3>;

/// The up to four samples of a converted pixel, 16 bits each.
using PackedPixel = quint64;

std::size_t indexOf(const Node& node) {
    return colorIndex(node[0], node[1], node[2]);
}

using Pixel16 = std::array<quint16, 3>;

Node lowestNode(const Pixel16& pixel) {
    return {pixel[0] / spacing, pixel[1] / spacing, pixel[2] / spacing};
}

/// What each axis adds to the place of a node in a table, for all nodes and one behind the last, where nothing lies but
/// the last again.
using AxisPlaces = std::array<std::array<quint32, lastNode + 2>, 3>;

constexpr AxisPlaces makeAxisPlaces() {
    AxisPlaces places{};
    for (quint32 number = 0; number < places[0].size(); ++number) {
        const quint32 node = std::min(number, lastNode);
        places[0][number] = static_cast<quint32>(colorIndex(node, 0, 0));
        places[1][number] = static_cast<quint32>(colorIndex(0, node, 0));
        places[2][number] = static_cast<quint32>(colorIndex(0, 0, node));
    }
    return places;
}

constexpr AxisPlaces axisPlaces = makeAxisPlaces();

/// The places of four nodes in a table and their weights, which add up to `spacing`.
struct Tetrahedron {
    std::array<quint32, 4> places;
    std::array<quint32, 4> weights;
};

/// Where a colour lies between two nodes of an axis.
struct AxisPosition {
    quint32 low;
    quint32 high;
    quint32 rest;
};

AxisPosition positionOf(quint16 sample, std::size_t axis) {
    const quint32 node = sample / spacing;
    return {axisPlaces[axis][node], axisPlaces[axis][node + 1], sample % spacing};
}

/// The tetrahedron that a colour lies in: from the lowest corner of the cell to the opposite one, first along the axis
/// on which the colour is farthest.
Tetrahedron tetrahedronOf(const Pixel16& pixel) {
    AxisPosition a = positionOf(pixel[0], 0);
    AxisPosition b = positionOf(pixel[1], 1);
    AxisPosition c = positionOf(pixel[2], 2);
    const auto sort = [](AxisPosition& first, AxisPosition& second) {
        if (first.rest < second.rest) {
            std::swap(first, second);
        }
    };
    sort(a, b);
    sort(b, c);
    sort(a, b);
    return {
        .places = {a.low | b.low | c.low, a.high | b.low | c.low, a.high | b.high | c.low, a.high | b.high | c.high},
        .weights = {spacing - a.rest, a.rest - b.rest, b.rest - c.rest, c.rest}};
}

/// The weighted mean of four pixels, each sample rounded to the nearest.
PackedPixel weightedMean(const std::array<PackedPixel, 4>& pixels, const std::array<quint32, 4>& weights) {
    // Two samples at a time, each in 32 bits of its own, which hold 257 times a sample.
    constexpr quint64 lanes = 0x0000'FFFF'0000'FFFFU;
    constexpr quint64 halves = quint64{spacing / 2} << 32U | spacing / 2;
    quint64 even = halves;
    quint64 odd = halves;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        even += (pixels[i] & lanes) * weights[i];
        odd += (pixels[i] >> 16U & lanes) * weights[i];
    }
    const auto divided = [](quint64 sums) { return (sums >> 32U) / spacing << 32U | (sums & 0xFFFF'FFFFU) / spacing; };
    return divided(even) | divided(odd) << 16U;
}

/// The middle of the cell that begins at a node.
Pixel16 middleOf(const Node& cell) {
    constexpr quint32 range = 65535;
    Pixel16 middle{};
    for (std::size_t axis = 0; axis < middle.size(); ++axis) {
        middle[axis] = static_cast<quint16>(std::min(cell[axis] * spacing + spacing / 2, range));
    }
    return middle;
}

Pixel16 pixelAt(const Node& node) {
    return {static_cast<quint16>(node[0] * spacing), static_cast<quint16>(node[1] * spacing),
            static_cast<quint16>(node[2] * spacing)};
}

int sampleOf(PackedPixel pixel, unsigned number) {
    return static_cast<int>(pixel >> (16 * number) & 0xFFFFU);
}

/// Whether each sample of an interpolated pixel is as close to the exact one as the middle of a cell must be.
bool isClose(PackedPixel interpolated, PackedPixel exact, unsigned samples) {
    for (unsigned number = 0; number < samples; ++number) {
        if (std::abs(sampleOf(interpolated, number) - sampleOf(exact, number)) > LatticeLimits::largestMiddleError) {
            return false;
        }
    }
    return true;
}

/// Whether a sample lies at an end of its range at one corner of a cell, and well within it at another.
bool isCutOff(const std::array<PackedPixel, 8>& corners, unsigned samples) {
    constexpr int range = 65535;
    for (unsigned number = 0; number < samples; ++number) {
        int least = range;
        int greatest = 0;
        for (const PackedPixel corner : corners) {
            least = std::min(least, sampleOf(corner, number));
            greatest = std::max(greatest, sampleOf(corner, number));
        }
        if ((least == 0 && greatest > LatticeLimits::largestCutOff) ||
            (greatest == range && range - least > LatticeLimits::largestCutOff)) {
            return true;
        }
    }
    return false;
}

std::array<Node, 8> cornersOf(const Node& cell) {
    std::array<Node, 8> corners;
    for (quint32 number = 0; number < corners.size(); ++number) {
        corners[number] = {std::min(cell[0] + (number & 1U), lastNode),
                           std::min(cell[1] + (number >> 1U & 1U), lastNode),
                           std::min(cell[2] + (number >> 2U), lastNode)};
    }
    return corners;
}

template <std::size_t DestinationBytes>
class LatticeConverter : public ColorConverter {
public:
    explicit LatticeConverter(ExactConversion exact) : exact_(std::move(exact)) {}

    void convert(std::span<const std::byte> source, std::span<std::byte> destination) const override {
        std::array<Pixel16, blockPixels> pixels;
        const std::size_t count = source.size() / sizeof(Pixel16);
        for (std::size_t first = 0; first < count; first += blockPixels) {
            const auto block = std::span(pixels).first(std::min(blockPixels, count - first));
            std::memcpy(block.data(), &source[first * sizeof(Pixel16)], block.size_bytes());
            learnCells(block);
            convertBlock(block, &destination[first * DestinationBytes]);
        }
    }

private:
    static constexpr std::size_t blockPixels = 256;
    static constexpr unsigned samples = DestinationBytes / sizeof(quint16);

    enum Cell : quint8 { smooth, bent };

    void convertBlock(std::span<const Pixel16> pixels, std::byte* destination) const {
        std::array<Tetrahedron, blockPixels> tetrahedra;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            tetrahedra[i] = tetrahedronOf(pixels[i]);
            std::ranges::for_each(tetrahedra[i].places, [this](quint32 place) { nodes_.prefetch(place); });
        }
        std::vector<std::size_t> bentNumbers;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const PackedPixel mean = interpolated(tetrahedra[i]);
            std::memcpy(destination + i * DestinationBytes, &mean, DestinationBytes);
            if (cells_.at(tetrahedra[i].places[0]) == bent) {
                bentNumbers.push_back(i);
            }
        }
        convertExactly(pixels, bentNumbers, destination);
    }

    /// Converts the pixels of these numbers once more.
    void convertExactly(std::span<const Pixel16> pixels, const std::vector<std::size_t>& numbers,
                        std::byte* destination) const {
        std::vector<Pixel16> chosen;
        std::ranges::transform(numbers, std::back_inserter(chosen), [&](std::size_t number) { return pixels[number]; });
        const std::vector<PackedPixel> colors = exactColors(chosen);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            std::memcpy(destination + numbers[i] * DestinationBytes, &colors[i], DestinationBytes);
        }
    }

    [[nodiscard]] std::vector<PackedPixel> exactColors(const std::vector<Pixel16>& pixels) const {
        std::vector<std::byte> converted(pixels.size() * DestinationBytes);
        exact_(std::as_bytes(std::span(pixels)), converted);
        std::vector<PackedPixel> colors(pixels.size());
        for (std::size_t i = 0; i < colors.size(); ++i) {
            std::memcpy(&colors[i], &converted[i * DestinationBytes], DestinationBytes);
        }
        return colors;
    }

    [[nodiscard]] PackedPixel interpolated(const Tetrahedron& tetrahedron) const {
        std::array<PackedPixel, 4> colors;
        for (std::size_t i = 0; i < colors.size(); ++i) {
            colors[i] = nodes_.at(tetrahedron.places[i]);
        }
        return weightedMean(colors, tetrahedron.weights);
    }

    /// Sees to it that the pixels' cells are known, and before them all their corners.
    void learnCells(std::span<const Pixel16> pixels) const {
        for (const Pixel16& pixel : pixels) {
            cells_.prefetch(indexOf(lowestNode(pixel)));
        }
        std::vector<Node> cells;
        for (const Pixel16& pixel : pixels) {
            const Node cell = lowestNode(pixel);
            if (!cells_.isKnown(indexOf(cell))) {
                cells.push_back(cell);
            }
        }
        if (cells.empty()) {
            return;
        }
        cells = distinct(std::move(cells));
        learnCorners(cells);
        std::vector<Pixel16> middles;
        std::transform(cells.begin(), cells.end(), std::back_inserter(middles), middleOf);
        const std::vector<PackedPixel> colors = exactColors(middles);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const bool isSmooth = isClose(interpolated(tetrahedronOf(middles[i])), colors[i], samples) &&
                                  !isCutOff(colorsAtCorners(cells[i]), samples);
            cells_.learn(indexOf(cells[i]), isSmooth ? smooth : bent);
        }
    }

    void learnCorners(const std::vector<Node>& cells) const {
        std::vector<Node> unknown;
        for (const Node& cell : cells) {
            std::ranges::copy_if(cornersOf(cell), std::back_inserter(unknown),
                                 [this](const Node& corner) { return !nodes_.isKnown(indexOf(corner)); });
        }
        unknown = distinct(std::move(unknown));
        std::vector<Pixel16> pixels;
        std::transform(unknown.begin(), unknown.end(), std::back_inserter(pixels), pixelAt);
        const std::vector<PackedPixel> colors = exactColors(pixels);
        for (std::size_t i = 0; i < unknown.size(); ++i) {
            nodes_.learn(indexOf(unknown[i]), colors[i]);
        }
    }

    static std::vector<Node> distinct(std::vector<Node> nodes) {
        std::sort(nodes.begin(), nodes.end());
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
        return nodes;
    }

    [[nodiscard]] std::array<PackedPixel, 8> colorsAtCorners(const Node& cell) const {
        std::array<PackedPixel, 8> colors;
        std::ranges::transform(cornersOf(cell), colors.begin(),
                               [this](const Node& corner) { return nodes_.at(indexOf(corner)); });
        return colors;
    }

    ExactConversion exact_;
    // Both grow, but never give another answer.
    mutable KnownColors<PackedPixel> nodes_{colorIndexCount};
    mutable KnownColors<quint8> cells_{colorIndexCount};
};

} // namespace

std::unique_ptr<ColorConverter> makeLatticeConverter(ColorModel destination, ExactConversion exact) {
    if (destination == ColorModel::rgb) {
        return std::make_unique<LatticeConverter<6>>(std::move(exact));
    }
    return std::make_unique<LatticeConverter<8>>(std::move(exact));
}

} // namespace orvex::platform
