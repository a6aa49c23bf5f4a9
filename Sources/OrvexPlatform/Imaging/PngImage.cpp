#include "Color/IccProfile.h"
#include "Imaging/Codecs.h"
#include "Imaging/ExifMetadata.h"
#include "Imaging/ImageError.h"
#include "Imaging/PngHeader.h"
#include "Imaging/PngImageData.h"
#include "Imaging/PngRows.h"

namespace orvex::platform {

namespace {

constexpr std::size_t copyPieceBytes = 256 * 1024;

using FilePointer = std::shared_ptr<const RandomAccessFile>;

class PngImage : public ImageSource {
public:
    PngImage(FilePointer file, PngHeader header, const ExifMetadata& exif, std::optional<QByteArray> appliedProfile)
        : file_(std::move(file)),
          header_(std::move(header)),
          exif_(exif),
          appliedProfile_(std::move(appliedProfile)) {}

    [[nodiscard]] ImageProperties properties() const override {
        ImageProperties properties{header_.width, header_.height, exif_.orientation, exif_.dpiWidth, exif_.dpiHeight};
        const bool isExifWhole = exif_.dpiWidth && exif_.dpiHeight;
        if (!isExifWhole && header_.dpiWidth) {
            // Half a statement is no reason to pass over a whole one.
            properties.dpiWidth = header_.dpiWidth;
            properties.dpiHeight = header_.dpiHeight;
        }
        return properties;
    }

    [[nodiscard]] Raster full() const override {
        return {header_.width,    header_.height,  exif_.orientation,
                header_.format(), appliedProfile_, std::make_shared<PngRows>(file_, header_)};
    }

    [[nodiscard]] std::optional<EncodedStream> encodedStream() const override {
        const bool isPalette = header_.color == PngColor::palette;
        if (header_.isInterlaced || header_.format().hasAlpha) {
            return std::nullopt;
        }
        EncodedStream stream;
        stream.filter = EncodedStream::Filter::flatePng;
        stream.width = header_.width;
        stream.height = header_.height;
        stream.model = header_.format().model;
        stream.bitsPerComponent = header_.bitDepth;
        stream.palette = isPalette ? header_.palette : QByteArray();
        stream.copy = [file = file_, header = header_](const auto& sink) { copyImageData(*file, header, sink); };
        return stream;
    }

private:
    static void copyImageData(const RandomAccessFile& file, const PngHeader& header,
                              const std::function<void(std::span<const std::byte>)>& sink) {
        PngImageData data(file, header.imageDataOffset);
        std::vector<std::byte> piece(copyPieceBytes);
        qint64 left = header.imageDataBytes;
        while (const std::size_t count = data.read(piece)) {
            left -= static_cast<qint64>(count);
            sink(std::span(piece).first(count));
        }
        if (left != 0) {
            throw ImageError(QStringLiteral("the PNG file has changed since it was opened"));
        }
    }

    FilePointer file_;
    PngHeader header_;
    ExifMetadata exif_;
    std::optional<QByteArray> appliedProfile_;
};

std::optional<QByteArray> statedProfile(const PngHeader& header) {
    const bool isSRGB = header.declaresSRGB && header.format().model == ColorModel::rgb;
    return header.iccProfile || !isSRGB ? header.iccProfile : sRgbProfileData();
}

} // namespace

std::unique_ptr<ImageSource> openPng(std::shared_ptr<const RandomAccessFile> file) {
    PngHeader header = readPngHeader(*file);
    const ExifMetadata exif = ExifMetadata::read(header.exif);
    std::optional<QByteArray> profile = appliedProfile(statedProfile(header), header.format().model);
    return std::make_unique<PngImage>(std::move(file), std::move(header), exif, std::move(profile));
}

} // namespace orvex::platform
