#include "Color/IccProfile.h"
#include "Files/ByteReader.h"
#include "Imaging/Codecs.h"
#include "Imaging/ExifMetadata.h"
#include "Imaging/ImageError.h"
#include "Imaging/JpegDecoder.h"

namespace orvex::platform {

namespace {

constexpr std::size_t copyPieceBytes = 1 << 20;
constexpr int bitsPerSample = 8;

using FilePointer = std::shared_ptr<const RandomAccessFile>;

qint64 reducedSide(qint64 side, int denominator) {
    return (side + denominator - 1) / denominator;
}

/// The rows of a JPEG file, decoded afresh by each call. Holds a strip; see JpegDecoder for what else.
class JpegRows : public RowSource {
public:
    JpegRows(FilePointer file, const JpegHeader& header, int denominator)
        : file_(std::move(file)),
          header_(header),
          denominator_(denominator) {}

    void rows(const RowSink& sink) const override {
        JpegDecoder decoder(*file_);
        if (decoder.readHeader(false) != header_) {
            throw ImageError(QStringLiteral("the JPEG file has changed since it was opened"));
        }
        decoder.start(denominator_);
        deliver(decoder, sink);
        decoder.finish();
    }

private:
    void deliver(JpegDecoder& decoder, const RowSink& sink) const {
        const qint64 rowBytes = reducedSide(header_.width, denominator_) * componentCount(header_.model);
        const qint64 height = reducedSide(header_.height, denominator_);
        const qint64 stripRows = std::min(stripRowsFor(rowBytes), height);
        std::vector<std::byte> strip(static_cast<std::size_t>(stripRows * rowBytes));
        for (qint64 row = 0; row < height; row += stripRows) {
            const qint64 count = std::min(stripRows, height - row);
            const std::span bytes = std::span(strip).first(static_cast<std::size_t>(count * rowBytes));
            decoder.readRows(bytes);
            if (header_.isInverted()) {
                std::ranges::transform(bytes, bytes.begin(), [](std::byte sample) { return ~sample; });
            }
            sink({row, count, bytes});
        }
    }

    FilePointer file_;
    JpegHeader header_;
    int denominator_;
};

/// The TIFF structure of the first EXIF segment before the first scan; empty if there is none.
QByteArray exifBlock(const RandomAccessFile& file) {
    constexpr quint8 startOfScan = 0xDA;
    constexpr quint8 endOfImage = 0xD9;
    constexpr quint8 exifMarker = 0xE1;
    const QByteArray prefix("Exif\0\0", 6);
    ByteReader reader(file);
    quint64 offset = 2;
    while (reader.u8(offset) == 0xFF) {
        const quint8 marker = reader.u8(offset + 1).value_or(endOfImage);
        if (marker == 0xFF) { // ITU T.81, B.1.1.2: fill bytes
            ++offset;
            continue;
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) { // B.1.1.4: these stand alone, without a length
            offset += 2;
            continue;
        }
        if (marker == startOfScan || marker == endOfImage) {
            break;
        }
        const quint64 length = reader.u16(offset + 2, ByteOrder::big).value_or(0); // counts itself
        if (marker == exifMarker && length >= 8 && reader.bytes(offset + 4, 6) == prefix) {
            return reader.bytes(offset + 10, length - 8).value_or(QByteArray());
        }
        offset += 2 + std::max<quint64>(length, 2);
    }
    return {};
}

class JpegImage : public ImageSource {
public:
    JpegImage(FilePointer file, const JpegHeader& header, const ExifMetadata& exif,
              std::optional<QByteArray> appliedProfile)
        : file_(std::move(file)),
          header_(header),
          exif_(exif),
          appliedProfile_(std::move(appliedProfile)) {}

    [[nodiscard]] ImageProperties properties() const override {
        const bool isExifWhole = exif_.dpiWidth && exif_.dpiHeight;
        const bool isJfifAbsent = !header_.jfifDpiWidth || !header_.jfifDpiHeight;
        ImageProperties properties{header_.width, header_.height, exif_.orientation, exif_.dpiWidth, exif_.dpiHeight};
        if (!isExifWhole && !isJfifAbsent) {
            // Half a statement is no reason to pass over a whole one.
            properties.dpiWidth = header_.jfifDpiWidth;
            properties.dpiHeight = header_.jfifDpiHeight;
        }
        return properties;
    }

    [[nodiscard]] Raster full() const override { return raster(1); }

    [[nodiscard]] Raster reduced(qint64 targetWidth, qint64 targetHeight) const override {
        for (const int denominator : {8, 4, 2}) {
            if (reducedSide(header_.width, denominator) >= targetWidth &&
                reducedSide(header_.height, denominator) >= targetHeight) {
                return raster(denominator);
            }
        }
        return full();
    }

    [[nodiscard]] std::optional<EncodedStream> encodedStream() const override;

private:
    [[nodiscard]] Raster raster(int denominator) const {
        return {reducedSide(header_.width, denominator),
                reducedSide(header_.height, denominator),
                exif_.orientation,
                PixelFormat{header_.model, bitsPerSample, false, false},
                appliedProfile_,
                std::make_shared<JpegRows>(file_, header_, denominator)};
    }

    FilePointer file_;
    JpegHeader header_;
    ExifMetadata exif_;
    std::optional<QByteArray> appliedProfile_;
};

/// The DCT filter's ColorTransform for the file, or nothing if an Adobe marker, which a PDF viewer heeds before
/// anything else (ISO 32000-1, table 13), asks for another transform than the one decoded with.
std::optional<int> colorTransform(const JpegHeader& header) {
    const auto agreesWith = [&](int transform) { return header.adobeTransform.value_or(transform) == transform; };
    const auto valueIf = [](bool agrees, int value) { return agrees ? std::optional<int>(value) : std::nullopt; };
    switch (header.storedSpace) {
    case JCS_GRAYSCALE:
        return 0; // one component is never transformed
    case JCS_RGB:
    case JCS_CMYK:
        return valueIf(agreesWith(0), 0);
    case JCS_YCbCr:
        return valueIf(agreesWith(1), 1);
    case JCS_YCCK:
        return valueIf(agreesWith(2), 1);
    default:
        return std::nullopt;
    }
}

void copyFile(const RandomAccessFile& file, const std::function<void(std::span<const std::byte>)>& sink) {
    std::vector<std::byte> piece(copyPieceBytes);
    for (qint64 offset = 0; offset < file.size();) {
        const qint64 wanted = std::min<qint64>(copyPieceBytes, file.size() - offset);
        const std::span bytes = std::span(piece).first(static_cast<std::size_t>(wanted));
        if (file.readAt(offset, bytes) != wanted) {
            throw ImageError(QStringLiteral("the JPEG file has become shorter since it was opened"));
        }
        sink(bytes);
        offset += wanted;
    }
}

std::optional<EncodedStream> JpegImage::encodedStream() const {
    const std::optional<int> transform = colorTransform(header_);
    if (header_.isArithmeticCoded || !transform) {
        return std::nullopt;
    }
    EncodedStream stream;
    stream.filter = EncodedStream::Filter::dct;
    stream.width = header_.width;
    stream.height = header_.height;
    stream.model = header_.model;
    stream.bitsPerComponent = bitsPerSample;
    stream.isInverted = header_.isInverted();
    stream.dctColorTransform = *transform;
    stream.copy = [file = file_](const auto& sink) { copyFile(*file, sink); };
    return stream;
}

std::optional<QByteArray> statedProfile(JpegDecoder& decoder, const JpegHeader& header, const ExifMetadata& exif) {
    std::optional<QByteArray> profile = decoder.iccProfile();
    if (!profile && exif.declaresSRGB && header.model == ColorModel::rgb) {
        profile = sRgbProfileData();
    }
    return profile;
}

} // namespace

std::unique_ptr<ImageSource> openJpeg(std::shared_ptr<const RandomAccessFile> file) {
    JpegDecoder decoder(*file);
    const JpegHeader header = decoder.readHeader(true);
    const ExifMetadata exif = ExifMetadata::read(exifBlock(*file));
    std::optional<QByteArray> profile = appliedProfile(statedProfile(decoder, header, exif), header.model);
    return std::make_unique<JpegImage>(std::move(file), header, exif, std::move(profile));
}

} // namespace orvex::platform
