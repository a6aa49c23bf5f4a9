#pragma once

#include "Picture.h"
#include "Profiles.h"

#include <filesystem>
#include <optional>

namespace orvex::samples {

/// What a writer is told beyond the pixels. A failed write raises std::runtime_error and may leave a part of the file.
struct JpegForm {
    bool isGray = false;
    bool isProgressive = false;
    bool hasFullChroma = false; ///< 4:4:4 instead of 4:2:0
    int quality = 92;
    int pixelsPerInch = 300;
    std::optional<int> orientation; ///< in an EXIF block, which is left out otherwise
    bool declaresSRgb = false;      ///< in the EXIF block
    Bytes profile;                  ///< none if empty
};

struct PngForm {
    bool hasAlpha = false;
    bool declaresSRgb = false; ///< by an sRGB chunk
    int pixelsPerInch = 300;
    Bytes profile;
};

struct TiffForm {
    enum class Compression { none, lzw };

    int bitsPerSample = 8; ///< 8 or 16
    bool isCmyk = false;   ///< converted from `profile` of the picture to `pressProfile`
    bool isBigEndian = false;
    bool isBig = false; ///< a BigTIFF
    Compression compression = Compression::lzw;
    int pixelsPerInch = 300;
    Bytes profile;
};

struct HeifForm {
    int quality = 88;
    int pixelsPerInch = 300;
    Bytes profile;
};

void writeJpeg(const Picture& picture, const JpegForm& form, const std::filesystem::path& file);
void writePng(const Picture& picture, const PngForm& form, const std::filesystem::path& file);

/// The same from samples that exist already: `produce` hands over the rows from the top, each by one call.
using RowWriter = std::function<void(std::span<const std::uint8_t> samples)>;
void writePngRows(int width, int height, const PngForm& form, const std::filesystem::path& file,
                  const std::function<void(const RowWriter& write)>& produce);

void writeTiff(const Picture& picture, const TiffForm& form, const std::filesystem::path& file);
void writeHeif(const Picture& picture, const HeifForm& form, const std::filesystem::path& file);

} // namespace orvex::samples
