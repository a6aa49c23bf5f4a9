#pragma once

#include <QByteArray>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace orvex::platform {

enum class ColorModel { gray, rgb, cmyk };

/// The count of colour samples of a pixel, alpha not counted: 1, 3 or 4.
[[nodiscard]] int componentCount(ColorModel model);

/// What the samples of a raster are.
///
/// Samples are interleaved, in the machine's byte order, alpha last and not multiplied into the colours. Integers use
/// their whole range: 8, 16 or 32 bits (sources of less are scaled up: 1, 2 and 4 bits to 8, 9 to 15 bits to 16, 17 to
/// 31 bits to 32). Floating-point samples are 32 bits wide, 0 to 1 as a rule. CMYK is 0 for no ink, full for full ink.
struct PixelFormat {
    ColorModel model = ColorModel::rgb;
    int bitsPerComponent = 8; ///< 8, 16 or 32
    bool isFloat = false;
    bool hasAlpha = false;

    [[nodiscard]] int samplesPerPixel() const { return componentCount(model) + (hasAlpha ? 1 : 0); }

    [[nodiscard]] qint64 bytesPerPixel() const { return qint64{samplesPerPixel()} * bitsPerComponent / 8; }

    bool operator==(const PixelFormat&) const = default;
};

/// Some whole rows of a raster, without padding. The bytes are valid for the length of the call that hands them over.
struct RowStrip {
    qint64 firstRow = 0;
    qint64 rowCount = 0;
    std::span<const std::byte> bytes;
};

using RowSink = std::function<void(const RowStrip&)>;

/// Where a raster's rows come from. Implementations stream; each note says what its container forces it to hold.
class RowSource {
public:
    RowSource() = default;
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;
    virtual ~RowSource() = default;

    /// Delivers every row once, in stored order from the top, in strips of at most `Raster::largestStripRows` rows and
    /// about `Raster::preferredStripBytes` bytes. Raises ImageError for damaged or missing data, FileSystemError when
    /// the file cannot be read, and whatever the sink raises. May be called again, and from any thread.
    virtual void rows(const RowSink& sink) const = 0;
};

/// A picture as a promise of rows: its facts are known at once, its pixels are decoded whenever they are asked for, and
/// no more of them are held than a strip. Copies share the source. Any thread.
class Raster {
public:
    static constexpr qint64 largestStripRows = 256;
    static constexpr qint64 preferredStripBytes = 4 << 20; ///< bounds the memory of strips in flight

    Raster(qint64 storedWidth, qint64 storedHeight, int orientation, PixelFormat format,
           std::optional<QByteArray> iccProfile, std::shared_ptr<const RowSource> source);

    [[nodiscard]] qint64 storedWidth() const { return storedWidth_; }

    [[nodiscard]] qint64 storedHeight() const { return storedHeight_; }

    /// How the stored rows lie: 1 to 8, as EXIF and TIFF number it; 1 is upright.
    [[nodiscard]] int orientation() const { return orientation_; }

    /// The size with the orientation applied.
    [[nodiscard]] qint64 width() const;
    [[nodiscard]] qint64 height() const;

    [[nodiscard]] const PixelFormat& format() const { return format_; }

    /// The colour space that the decoder gave the picture: the ICC profile that it applied, or absent for the device
    /// space of the model.
    [[nodiscard]] const std::optional<QByteArray>& iccProfile() const { return iccProfile_; }

    [[nodiscard]] qint64 rowBytes() const { return storedWidth_ * format_.bytesPerPixel(); }

    /// The rows that a strip of this raster holds, the last strip excepted.
    [[nodiscard]] qint64 stripRows() const;

    /// See RowSource::rows.
    void rows(const RowSink& sink) const { source_->rows(sink); }

private:
    qint64 storedWidth_;
    qint64 storedHeight_;
    int orientation_;
    PixelFormat format_;
    std::optional<QByteArray> iccProfile_;
    std::shared_ptr<const RowSource> source_;
};

/// Whether an orientation exchanges width and height: 5 to 8.
[[nodiscard]] bool isQuarterTurned(int orientation);

/// The rows of a strip for rows of `rowBytes` bytes: 1 to `Raster::largestStripRows`.
[[nodiscard]] qint64 stripRowsFor(qint64 rowBytes);

} // namespace orvex::platform
