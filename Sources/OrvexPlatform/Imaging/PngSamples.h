#pragma once

#include "Imaging/PngHeader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvex::platform {

/// Turns unfiltered PNG rows into samples of the header's `format`: small depths are spread over a byte each, palettes
/// resolved, a transparent colour becomes an alpha sample, 16 bits come in the machine's order. One thread.
class PngSamples {
public:
    explicit PngSamples(const PngHeader& header);

    /// Whether the rows are the samples already, so that there is nothing to convert.
    [[nodiscard]] bool isIdentity() const { return isIdentity_; }

    /// Converts whole rows. Raises ImageError for a pixel outside the palette.
    void convert(std::span<const std::byte> packed, std::span<std::byte> samples);

private:
    void convertRow(const std::byte* packed, std::byte* samples);
    void spread(const std::byte* packed, std::byte* values) const;
    void resolve(const std::byte* indices, std::byte* samples) const;

    std::size_t width_;
    std::size_t packedBytes_;
    std::size_t sampleBytes_;
    int bitDepth_;
    int colours_; ///< samples of a pixel, alpha not counted
    bool isPalette_;
    bool hasAlpha_;
    bool isIdentity_;
    std::optional<std::array<quint16, 3>> transparentColor_; ///< scaled as the samples are
    std::size_t paletteSize_;
    std::array<std::array<std::byte, 4>, 256> palette_{};
    std::array<std::array<std::byte, 8>, 256> spreading_{}; ///< the samples in each byte of a small depth
    std::vector<std::byte> values_;                         ///< of a row, one for each byte
};

} // namespace orvex::platform
