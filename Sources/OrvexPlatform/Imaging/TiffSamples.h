#pragma once

#include "Imaging/TiffLayout.h"

#include <cstddef>
#include <span>
#include <vector>

namespace orvex::platform {

/// Turns the samples of a TIFF file, as they are stored, into the pixels of a raster: puts planes together, leaves
/// extra samples out, widens to whole bytes, looks colours up, divides alpha out of the colours and inverts where 0 is
/// white. A depth that widens keeps its whole range: v * max(new) / max(old), to the nearest integer. One thread.
class TiffSamples {
public:
    explicit TiffSamples(const TiffLayout& layout);

    /// The planes that a row is made of, in the order in which `convertRow` wants them.
    [[nodiscard]] const std::vector<int>& planes() const { return planes_; }

    /// Whether stored rows are rows of the raster already.
    [[nodiscard]] bool isIdentity() const { return isIdentity_; }

    /// Converts the first pixels of a stored row, given once for each plane, as many as `pixels` has room for. `pixels`
    /// begins at a boundary of the raster's samples.
    void convertRow(std::span<const std::span<const std::byte>> planeRows, std::span<std::byte> pixels);

private:
    /// Where one of the raster's samples comes from.
    struct Channel {
        std::size_t planeIndex = 0; ///< in planes_
        std::size_t sample = 0;     ///< in the plane's pixels
    };

    void chooseChannels();
    void makeTables();
    template <typename Sample>
    void assemble(std::span<const std::span<const std::byte>> planeRows, std::span<Sample> pixels);
    template <typename Sample>
    void unpack(std::span<const std::byte> row, std::span<Sample> samples) const;
    template <typename Sample>
    void finish(std::span<Sample> pixels) const;
    void lookUp(std::span<const std::byte> row, std::span<std::byte> pixels) const;

    TiffLayout layout_;
    std::vector<Channel> channels_; ///< of the raster's samples, in their order
    std::vector<int> planes_;
    bool isIdentity_ = false;
    std::vector<quint8> expanded_;    ///< for 1, 2 and 4 bits: the widened samples of each byte
    std::vector<quint16> widened_;    ///< for other depths up to 15 bits: each sample widened
    std::vector<std::byte> unpacked_; ///< a plane's row, when its samples do not go straight to the raster
};

} // namespace orvex::platform
