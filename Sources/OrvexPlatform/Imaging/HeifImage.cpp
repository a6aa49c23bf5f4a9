#include "Color/IccProfile.h"
#include "Imaging/Codecs.h"
#include "Imaging/ExifMetadata.h"
#include "Imaging/HeifFile.h"
#include "Imaging/ImageError.h"

#include <cstring>

namespace orvex::platform {

namespace {

/// The pixels that a byte of a file can stand for: four times what an encoder makes of a picture of one flat colour.
constexpr qint64 largestPixelsPerByte = 16384;

using FilePointer = std::shared_ptr<const RandomAccessFile>;

PixelFormat formatOf(const HeifHeader& header) {
    return {ColorModel::rgb, header.bitDepth > 8 ? 16 : 8, false, header.hasAlpha};
}

/// Brings samples of 0 to `largest` to the whole range of their type.
template <typename Sample>
void scaleUp(std::span<Sample> samples, quint32 largest) {
    constexpr quint32 full = std::numeric_limits<Sample>::max();
    if (largest != full) {
        std::ranges::transform(samples, samples.begin(), [largest](Sample sample) {
            return static_cast<Sample>((std::min<quint32>(sample, largest) * full + largest / 2) / largest);
        });
    }
}

/// Divides the colours of RGBA pixels by their alpha.
template <typename Sample>
void undoPremultiplication(std::span<Sample> samples) {
    constexpr quint32 full = std::numeric_limits<Sample>::max();
    for (std::size_t at = 0; at + 3 < samples.size(); at += 4) {
        const quint32 alpha = samples[at + 3];
        for (Sample& color : samples.subspan(at, 3)) {
            const quint32 whole = alpha == 0 ? 0 : (quint32{color} * full + alpha / 2) / alpha;
            color = static_cast<Sample>(std::min(whole, full));
        }
    }
}

/// The rows of a HEIF file's primary image, decoded afresh by each call. Holds the whole picture twice for that time,
/// as it is coded and as RGB: the codec gives no part of it alone.
class HeifRows : public RowSource {
public:
    HeifRows(FilePointer file, const HeifHeader& header) : file_(std::move(file)), header_(header) {}

    void rows(const RowSink& sink) const override {
        HeifFile file(*file_);
        if (file.header() != header_) {
            throw ImageError(QStringLiteral("the HEIF file has changed since it was opened"));
        }
        const HeifPicture picture = file.decode();
        if (header_.bitDepth > 8) {
            deliver<quint16>(*picture, sink);
        } else {
            deliver<quint8>(*picture, sink);
        }
    }

private:
    template <typename Sample>
    void deliver(const heif_image& picture, const RowSink& sink) const {
        int stride = 0;
        const auto* plane = heif_image_get_plane_readonly(&picture, heif_channel_interleaved, &stride);
        const qint64 rowBytes = header_.width * formatOf(header_).bytesPerPixel();
        if (plane == nullptr || heif_image_get_primary_width(&picture) != header_.width ||
            heif_image_get_primary_height(&picture) != header_.height || stride < rowBytes) {
            throw ImageError(QStringLiteral("the HEIF file's picture is not of the size that it announces"));
        }
        const quint32 largest = largestSample(picture, sizeof(Sample) * 8);
        const qint64 stripRows = std::min(stripRowsFor(rowBytes), header_.height);
        const auto rowSamples = static_cast<std::size_t>(rowBytes) / sizeof(Sample);
        std::vector<Sample> strip(static_cast<std::size_t>(stripRows) * rowSamples);
        for (qint64 first = 0; first < header_.height; first += stripRows) {
            const qint64 count = std::min(stripRows, header_.height - first);
            const std::span samples = std::span(strip).first(static_cast<std::size_t>(count) * rowSamples);
            for (qint64 row = 0; row < count; ++row) {
                std::memcpy(samples.data() + static_cast<std::size_t>(row) * rowSamples, plane + (first + row) * stride,
                            static_cast<std::size_t>(rowBytes));
            }
            scaleUp(samples, largest);
            if (header_.hasAlpha && header_.isPremultiplied) {
                undoPremultiplication(samples);
            }
            sink({first, count, std::as_bytes(samples)});
        }
    }

    [[nodiscard]] static quint32 largestSample(const heif_image& picture, int sampleBits) {
        const int depth = heif_image_get_bits_per_pixel_range(&picture, heif_channel_interleaved);
        if (depth < 1 || depth > sampleBits) {
            throw ImageError(QStringLiteral("the HEIF file's picture is not of the depth that it announces"));
        }
        return (1U << static_cast<unsigned>(depth)) - 1U;
    }

    FilePointer file_;
    HeifHeader header_;
};

/// A HEIF file's primary image. It stands upright as it is: its orientation is always 1, whatever the EXIF block says,
/// because the container's own transforms are applied in decoding.
class HeifImage : public ImageSource {
public:
    HeifImage(FilePointer file, const HeifHeader& header, const ExifMetadata& exif,
              std::optional<QByteArray> appliedProfile)
        : file_(std::move(file)),
          header_(header),
          exif_(exif),
          appliedProfile_(std::move(appliedProfile)) {}

    [[nodiscard]] ImageProperties properties() const override {
        return {header_.width, header_.height, 1, exif_.dpiWidth, exif_.dpiHeight};
    }

    [[nodiscard]] Raster full() const override {
        return {header_.width,     header_.height,  1,
                formatOf(header_), appliedProfile_, std::make_shared<HeifRows>(file_, header_)};
    }

private:
    FilePointer file_;
    HeifHeader header_;
    ExifMetadata exif_;
    std::optional<QByteArray> appliedProfile_;
};

} // namespace

std::unique_ptr<ImageSource> openHeif(std::shared_ptr<const RandomAccessFile> file) {
    HeifFile heif(*file);
    const HeifHeader header = heif.header();
    if (header.width < 1 || header.height < 1 || header.width * header.height > file->size() * largestPixelsPerByte) {
        throw ImageError(QStringLiteral("the HEIF file announces a size that it cannot have"));
    }
    const ExifMetadata exif = ExifMetadata::read(heif.exif());
    std::optional<QByteArray> profile = appliedProfile(heif.iccProfile(), ColorModel::rgb);
    return std::make_unique<HeifImage>(std::move(file), header, exif, std::move(profile));
}

} // namespace orvex::platform
