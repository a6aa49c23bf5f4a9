#pragma once

#include "VectorCode.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace orvex::platform {

/// Three samples of 16 bits.
using Pixel16 = std::array<quint16, 3>;

/// The number of a node along each axis; also the cell that begins there.
using LatticeNode = std::array<quint32, 3>;

/// A place in a cell, in quarters of the cell along each axis.
using CellQuarters = std::array<quint32, 3>;

/// The weights of the four nodes around a colour add up to this.
inline constexpr quint32 wholeWeight = 1U << 15U;

/// Pixels are converted in blocks of up to so many.
inline constexpr std::size_t blockPixels = 256;

/// A number for each pixel of a block.
using BlockNumbers = std::array<quint32, blockPixels>;

/// For each pixel of a block the tetrahedron of nodes that its colour lies in: their places in a table and their
/// weights. The first node is the one that the pixel's cell begins at.
struct Tetrahedra {
    std::array<BlockNumbers, 4> places;
    std::array<BlockNumbers, 4> weights;
};

/// The nodes of a lattice, `cellCount` cells along each axis, and where they stand in a table.
template <quint32 cellCount>
class Lattice {
public:
    static constexpr quint32 range = 65535;
    static_assert(range % cellCount == 0, "the ends of the range are nodes, and nodes are samples");

    static constexpr quint32 spacing = range / cellCount;

    // One more than there are nodes: a colour on the last node has one behind it, of no weight.
    static constexpr quint32 axisLength = cellCount + 2;
    static constexpr std::array<quint32, 3> strides{axisLength * axisLength, axisLength, 1};
    static constexpr std::size_t placeCount = std::size_t{axisLength} * axisLength * axisLength;

    static quint32 placeOf(const LatticeNode& node) {
        return node[0] * strides[0] + node[1] * strides[1] + node[2] * strides[2];
    }

    static LatticeNode cellOf(const Pixel16& pixel) {
        return {pixel[0] / spacing, pixel[1] / spacing, pixel[2] / spacing};
    }

    static Pixel16 pixelAt(const LatticeNode& node) {
        return {static_cast<quint16>(node[0] * spacing), static_cast<quint16>(node[1] * spacing),
                static_cast<quint16>(node[2] * spacing)};
    }

    static Pixel16 pixelIn(const LatticeNode& cell, const CellQuarters& place) {
        Pixel16 pixel{};
        for (std::size_t axis = 0; axis < pixel.size(); ++axis) {
            pixel[axis] = static_cast<quint16>(std::min(cell[axis] * spacing + place[axis] * spacing / 4, range));
        }
        return pixel;
    }

    static std::array<LatticeNode, 8> cornersOf(const LatticeNode& cell) {
        std::array<LatticeNode, 8> corners;
        for (quint32 number = 0; number < corners.size(); ++number) {
            corners[number] = {std::min(cell[0] + (number & 1U), cellCount),
                               std::min(cell[1] + (number >> 1U & 1U), cellCount),
                               std::min(cell[2] + (number >> 2U), cellCount)};
        }
        return corners;
    }

    /// Finds each pixel's tetrahedron: from the lowest corner of the cell to the opposite one, first along the axis on
    /// which the colour is farthest.
    ORVEX_VECTOR_CLONES static void locate(std::span<const Pixel16> pixels, Tetrahedra& tetrahedra) {
        std::array<BlockNumbers, 3> axes;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            axes[0][i] = pixels[i][0];
            axes[1][i] = pixels[i][1];
            axes[2][i] = pixels[i][2];
        }
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const quint32 a = stepOn(axes[0][i], strides[0]);
            const quint32 b = stepOn(axes[1][i], strides[1]);
            const quint32 c = stepOn(axes[2][i], strides[2]);
            const quint32 greatest = std::max(std::max(a, b), c);
            const quint32 least = std::min(std::min(a, b), c);
            const quint32 middle = a ^ b ^ c ^ greatest ^ least;
            const quint32 lowest =
                nodeOf(axes[0][i]) * strides[0] + nodeOf(axes[1][i]) * strides[1] + nodeOf(axes[2][i]) * strides[2];
            tetrahedra.places[0][i] = lowest;
            tetrahedra.places[1][i] = lowest + strideOf(greatest);
            tetrahedra.places[2][i] = lowest + strideOf(greatest) + strideOf(middle);
            tetrahedra.places[3][i] = lowest + strides[0] + strides[1] + strides[2];
            tetrahedra.weights[0][i] = wholeWeight - partOf(greatest);
            tetrahedra.weights[1][i] = partOf(greatest) - partOf(middle);
            tetrahedra.weights[2][i] = partOf(middle) - partOf(least);
            tetrahedra.weights[3][i] = partOf(least);
        }
    }

private:
    // A step from a node to the next on an axis: the part of it that lies before a colour, of `wholeWeight`, above its
    // way in a table. As one number, so that steps can be sorted at once.
    static constexpr unsigned strideBits = 17;
    static_assert(strides[0] < 1U << strideBits);

    ORVEX_INLINE static quint32 stepOn(quint32 sample, quint32 stride) {
        return (sample * cellCount - nodeOf(sample) * range + 1) / 2 << strideBits | stride;
    }

    ORVEX_INLINE static quint32 nodeOf(quint32 sample) {
        const quint32 scaled = sample * cellCount;
        return (scaled + 1 + (scaled >> 16U)) >> 16U; // scaled / range
    }

    ORVEX_INLINE static quint32 strideOf(quint32 step) { return step & ((1U << strideBits) - 1); }

    ORVEX_INLINE static quint32 partOf(quint32 step) { return step >> strideBits; }
};

} // namespace orvex::platform
