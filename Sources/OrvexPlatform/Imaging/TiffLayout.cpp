#include "Imaging/TiffLayout.h"

#include "Imaging/ImageError.h"

#include <array>
#include <limits>
#include <span>
#include <vector>

namespace orvex::platform {

namespace {

/// A row is the least that is ever held in memory, as stored and as delivered.
constexpr qint64 maximumRowBytes = 256 << 20;

/// A row of tiles, and any segment that must be decoded as a whole, is held in memory.
constexpr qint64 maximumHeldBytes = 1 << 30;

/// The decoder of the CCITT methods holds 16 bytes for each pixel of a row.
constexpr qint64 maximumCcittWidth = 1 << 20;

constexpr qint64 ccittRowsPerByte = 8; // a row takes a bit at least

constexpr int maximumPaletteBits = 16;

[[noreturn]] void refuse(const QString& detail) {
    throw ImageError(detail);
}

void require(bool condition, const char* detail) {
    if (!condition) {
        refuse(QString::fromLatin1(detail));
    }
}

/// The product of numbers that are not negative; a size that 64 bits cannot hold is refused.
qint64 product(std::initializer_list<qint64> factors) {
    qint64 result = 1;
    for (const qint64 factor : factors) {
        require(!__builtin_mul_overflow(result, factor, &result), "a TIFF size of more than 64 bits");
    }
    return result;
}

/// The most bytes of pixels that one byte of a compressed segment can stand for; absent for methods that are not
/// supported. It keeps a small file from claiming a giant picture.
std::optional<qint64> largestExpansion(quint16 compression) {
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64; // 128 bytes from 2
    case COMPRESSION_LZW:
        return 2731; // a code of 12 bits stands for less than 4096 bytes
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
        return 1032; // two bits for the 258 bytes of the longest match
    case COMPRESSION_JPEG:
        return 1536; // eight blocks of one bit each, 64 pixels of three samples
    case COMPRESSION_LZMA:
        return 8192; // the longest match, its 14 bits all at the highest probability
    case COMPRESSION_ZSTD:
        return 32768; // a block of 128 KiB from 4 bytes
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
    case COMPRESSION_WEBP:
        return 65536; // no bound in the method itself: blank rows of half a million pixels at a bit each
    default:
        return std::nullopt;
    }
}

bool isCcitt(quint16 compression) {
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTFAX3 ||
           compression == COMPRESSION_CCITTFAX4;
}

bool hasPredictor(quint16 compression) {
    return compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE ||
           compression == COMPRESSION_DEFLATE || compression == COMPRESSION_LZMA || compression == COMPRESSION_ZSTD;
}

/// libtiff ignores a tag whose type, count or value it cannot use, and goes on with a default. For the tags that decide
/// what the pixels are that would be a wrong picture.
void requireReadable(const TiffHandle& handle, const TiffDirectory& directory, quint32 tag) {
    std::array<quint64, 3> values{}; // no tag in question has more values, or larger ones
    const bool isRead = TIFFGetField(handle.get(), tag, &values.at(0), &values.at(1), &values.at(2)) == 1;
    if (!isRead && directory.find(tag) != nullptr) {
        refuse(QStringLiteral("the TIFF tag %1 cannot be used").arg(tag));
    }
}

void requireReadableTags(const TiffHandle& handle, const TiffDirectory& directory, quint16 compression) {
    constexpr std::array<quint32, 14> always = {
        TIFFTAG_IMAGEWIDTH,      TIFFTAG_IMAGELENGTH,  TIFFTAG_BITSPERSAMPLE, TIFFTAG_PHOTOMETRIC, TIFFTAG_FILLORDER,
        TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_ROWSPERSTRIP, TIFFTAG_PLANARCONFIG,  TIFFTAG_TILEWIDTH,   TIFFTAG_TILELENGTH,
        TIFFTAG_SAMPLEFORMAT,    TIFFTAG_EXTRASAMPLES, TIFFTAG_IMAGEDEPTH,    TIFFTAG_TILEDEPTH,
    };
    for (const quint32 tag : always) {
        requireReadable(handle, directory, tag);
    }
    if (hasPredictor(compression)) {
        requireReadable(handle, directory, TIFFTAG_PREDICTOR);
    }
    if (compression == COMPRESSION_CCITTFAX3) {
        requireReadable(handle, directory, TIFFTAG_GROUP3OPTIONS);
    }
    if (compression == COMPRESSION_JPEG) {
        requireReadable(handle, directory, TIFFTAG_JPEGTABLES);
    }
}

/// Fills in a layout, one group of facts after the other.
class LayoutReader {
public:
    LayoutReader(TiffHandle& handle, const TiffDirectory& directory, qint64 fileSize)
        : handle_(handle),
          directory_(directory),
          fileSize_(fileSize) {}

    TiffLayout read() {
        readCompression();
        readSize();
        readSamples();
        readColor();
        readAlpha();
        readFormat();
        readSegments();
        checkSegmentTables();
        checkSizes();
        return layout_;
    }

private:
    void readCompression();
    void readSize();
    void readSamples();
    void readColor();
    void readPalette();
    void readInks();
    void readYCbCr();
    void readAlpha();
    void readFormat();
    void readSegments();
    void checkSegmentTables() const;
    void checkTable(quint32 tag, qint64 segments) const;
    void checkSizes() const;
    void checkSingleStrip(qint64 leastBytes) const;
    [[nodiscard]] qint64 librarySegmentBytes() const;
    [[nodiscard]] qint64 heldBytes() const;
    [[nodiscard]] qint64 storedImageBytes() const;

    TiffHandle& handle_;
    const TiffDirectory& directory_;
    qint64 fileSize_;
    quint16 photometric_ = 0;
    TiffLayout layout_;
};

void LayoutReader::readCompression() {
    layout_.compression = handle_.defaulted<quint16>(TIFFTAG_COMPRESSION);
    if (!largestExpansion(layout_.compression) || TIFFIsCODECConfigured(layout_.compression) == 0) {
        refuse(QStringLiteral("TIFF compression %1 is not supported").arg(layout_.compression));
    }
    requireReadableTags(handle_, directory_, layout_.compression);
    layout_.fillOrder = handle_.defaulted<quint16>(TIFFTAG_FILLORDER);
    layout_.isByteSwapped = TIFFIsByteSwapped(handle_.get()) != 0;
}

void LayoutReader::readSize() {
    layout_.width = handle_.field<quint32>(TIFFTAG_IMAGEWIDTH).value_or(0);
    layout_.height = handle_.field<quint32>(TIFFTAG_IMAGELENGTH).value_or(0);
    require(layout_.width > 0 && layout_.height > 0, "a TIFF image without pixels");
    require(handle_.defaulted<quint32>(TIFFTAG_IMAGEDEPTH) == 1 && handle_.defaulted<quint32>(TIFFTAG_TILEDEPTH) == 1,
            "a TIFF image of several layers");
}

void LayoutReader::readSamples() {
    layout_.bits = handle_.defaulted<quint16>(TIFFTAG_BITSPERSAMPLE);
    layout_.samplesPerPixel = handle_.defaulted<quint16>(TIFFTAG_SAMPLESPERPIXEL);
    // With one sample the two arrangements are the same.
    layout_.isSeparate =
        handle_.defaulted<quint16>(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE && layout_.samplesPerPixel > 1;
    require(layout_.samplesPerPixel > 0, "a TIFF image without samples");
    const auto sampleFormat = handle_.defaulted<quint16>(TIFFTAG_SAMPLEFORMAT);
    layout_.isFloat = sampleFormat == SAMPLEFORMAT_IEEEFP;
    if (layout_.isFloat) {
        const int bits = layout_.bits;
        require(bits == 16 || bits == 24 || bits == 32 || bits == 64, "a TIFF float of an unknown width");
        return;
    }
    // Nothing says which of its numbers a signed picture shows as black and white.
    require(sampleFormat == SAMPLEFORMAT_UINT || sampleFormat == SAMPLEFORMAT_VOID, "signed or complex TIFF samples");
    require(layout_.bits >= 1 && layout_.bits <= 32, "TIFF samples of more than 32 bits");
}

void LayoutReader::readColor() {
    const std::optional<quint16> photometric = handle_.field<quint16>(TIFFTAG_PHOTOMETRIC);
    // libtiff takes indices without a colour map for gray.
    require(photometric && directory_.firstInteger(TIFFTAG_PHOTOMETRIC) == *photometric,
            "a TIFF image without a usable photometric interpretation");
    photometric_ = *photometric;
    switch (photometric_) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        layout_.format.model = ColorModel::gray;
        layout_.isInverted = photometric_ == PHOTOMETRIC_MINISWHITE;
        return;
    case PHOTOMETRIC_RGB:
        layout_.format.model = ColorModel::rgb;
        return;
    case PHOTOMETRIC_PALETTE:
        return readPalette();
    case PHOTOMETRIC_SEPARATED:
        return readInks();
    case PHOTOMETRIC_YCBCR:
        return readYCbCr();
    default:
        refuse(QStringLiteral("the TIFF photometric interpretation %1 is not supported").arg(photometric_));
    }
}

void LayoutReader::readPalette() {
    require(!layout_.isFloat && layout_.bits <= maximumPaletteBits, "a TIFF palette of that depth");
    std::array<const quint16*, 3> maps{};
    require(TIFFGetField(handle_.get(), TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) == 1,
            "a TIFF palette without colours");
    const std::size_t count = std::size_t{1} << layout_.bits;
    const std::array<std::span<const quint16>, 3> channels = {std::span(maps[0], count), std::span(maps[1], count),
                                                              std::span(maps[2], count)};
    // The map has 16 bits, but some writers put 8-bit values into it.
    const bool isWide = std::any_of(channels.begin(), channels.end(), [](std::span<const quint16> channel) {
        return std::any_of(channel.begin(), channel.end(), [](quint16 value) { return value >= 256; });
    });
    const auto eightBits = [&](quint16 value) { return static_cast<quint8>(isWide ? value >> 8 : value); };
    for (std::size_t index = 0; index < count; ++index) {
        layout_.palette.push_back(
            {eightBits(channels[0][index]), eightBits(channels[1][index]), eightBits(channels[2][index])});
    }
    layout_.format.model = ColorModel::rgb;
}

void LayoutReader::readInks() {
    requireReadable(handle_, directory_, TIFFTAG_INKSET);
    // TIFF 6.0, section 16: InkSet is CMYK unless it says otherwise.
    require(handle_.defaulted<quint16>(TIFFTAG_INKSET) == INKSET_CMYK &&
                handle_.field<quint16>(TIFFTAG_NUMBEROFINKS).value_or(4) == 4,
            "TIFF inks other than CMYK");
    layout_.format.model = ColorModel::cmyk;
}

void LayoutReader::readYCbCr() {
    layout_.format.model = ColorModel::rgb;
    require(layout_.bits == 8 && !layout_.isFloat && layout_.samplesPerPixel == 3 && !layout_.isSeparate,
            "TIFF YCbCr of an unknown kind");
    if (layout_.compression == COMPRESSION_JPEG) {
        require(TIFFSetField(handle_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1, "no JPEG decoder");
        return;
    }
    requireReadable(handle_, directory_, TIFFTAG_YCBCRCOEFFICIENTS);
    requireReadable(handle_, directory_, TIFFTAG_YCBCRSUBSAMPLING);
    requireReadable(handle_, directory_, TIFFTAG_REFERENCEBLACKWHITE);
    layout_.ycbcr = TiffYCbCr::read(handle_);
}

void LayoutReader::readAlpha() {
    quint16 count = 0;
    const quint16* kinds = nullptr;
    TIFFGetFieldDefaulted(handle_.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds);
    const int colors = layout_.colorSamples();
    require(layout_.samplesPerPixel - count == colors, "a TIFF pixel of an unknown count of samples");
    const std::span extras(kinds, count);
    const auto found =
        std::find_if(extras.begin(), extras.end(), [](quint16 kind) { return kind != EXTRASAMPLE_UNSPECIFIED; });
    if (found == extras.end()) {
        return;
    }
    require(*found == EXTRASAMPLE_ASSOCALPHA || *found == EXTRASAMPLE_UNASSALPHA, "an unknown kind of TIFF sample");
    require(layout_.palette.empty(), "a TIFF palette with alpha");
    layout_.alpha = *found == EXTRASAMPLE_ASSOCALPHA ? TiffLayout::Alpha::associated : TiffLayout::Alpha::unassociated;
    layout_.alphaSample = colors + static_cast<int>(found - extras.begin());
}

void LayoutReader::readFormat() {
    PixelFormat& format = layout_.format;
    format.hasAlpha = layout_.alpha != TiffLayout::Alpha::none;
    format.isFloat = layout_.isFloat;
    if (layout_.isFloat || layout_.bits > 16) {
        format.bitsPerComponent = 32;
    } else {
        format.bitsPerComponent = layout_.bits > 8 && layout_.palette.empty() ? 16 : 8;
    }
}

void LayoutReader::readSegments() {
    layout_.isTiled = TIFFIsTiled(handle_.get()) != 0;
    if (layout_.isTiled) {
        layout_.segmentWidth = handle_.field<quint32>(TIFFTAG_TILEWIDTH).value_or(0);
        layout_.segmentHeight = handle_.field<quint32>(TIFFTAG_TILELENGTH).value_or(0);
    } else {
        layout_.segmentWidth = layout_.width;
        layout_.segmentHeight = std::min<qint64>(handle_.defaulted<quint32>(TIFFTAG_ROWSPERSTRIP), layout_.height);
    }
    require(layout_.segmentWidth > 0 && layout_.segmentHeight > 0, "TIFF strips or tiles without pixels");
    require(!isCcitt(layout_.compression) || layout_.segmentWidth <= maximumCcittWidth,
            "a CCITT row of more than 2^20 pixels");
}

/// Every segment must have its entries in the tables, and the tables must lie in the file. Then there are no more
/// segments than the file has bytes.
void LayoutReader::checkSegmentTables() const {
    const qint64 segments = product({layout_.bands(), layout_.columns(), layout_.planeCount()});
    require(segments <= std::numeric_limits<quint32>::max(), "too many TIFF strips or tiles");
    require(directory_.find(TIFFTAG_STRIPOFFSETS) != nullptr || directory_.find(TIFFTAG_TILEOFFSETS) != nullptr,
            "no TIFF strips or tiles");
    constexpr std::array<quint32, 4> tables = {TIFFTAG_STRIPOFFSETS, TIFFTAG_TILEOFFSETS, TIFFTAG_STRIPBYTECOUNTS,
                                               TIFFTAG_TILEBYTECOUNTS};
    for (const quint32 tag : tables) {
        checkTable(tag, segments);
    }
}

void LayoutReader::checkTable(quint32 tag, qint64 segments) const {
    const TiffDirectory::Entry* entry = directory_.find(tag);
    if (entry != nullptr && (entry->count < static_cast<quint64>(segments) || !directory_.holdsValues(*entry))) {
        refuse(QStringLiteral("the TIFF tag %1 does not have %2 values in the file").arg(tag).arg(segments));
    }
}

void LayoutReader::checkSizes() const {
    const qint64 rasterRowBytes = product({layout_.width, layout_.format.bytesPerPixel()});
    require(layout_.segmentRowBytes() <= maximumRowBytes && rasterRowBytes <= maximumRowBytes,
            "a TIFF row of more than 256 MiB");
    require(layout_.segmentBytes(layout_.rowsOfBand(0)) == librarySegmentBytes(), "TIFF pixels of an unexpected size");
    require(heldBytes() <= maximumHeldBytes, "TIFF tiles of more than 1 GiB in a row");

    const qint64 storedBytes = storedImageBytes();
    const qint64 codedRows = isCcitt(layout_.compression) ? product({layout_.height, layout_.planeCount()}) : 0;
    if (storedBytes / *largestExpansion(layout_.compression) > fileSize_ || codedRows / ccittRowsPerByte > fileSize_) {
        refuse(QStringLiteral("%1 bytes of TIFF pixels in a file of %2").arg(storedBytes).arg(fileSize_));
    }
    checkSingleStrip(layout_.compression == COMPRESSION_NONE ? storedBytes : 1);
}

qint64 LayoutReader::librarySegmentBytes() const {
    return static_cast<qint64>(layout_.isTiled
                                   ? TIFFTileSize64(handle_.get())
                                   : TIFFVStripSize64(handle_.get(), static_cast<quint32>(layout_.segmentHeight)));
}

/// What decoding has to hold in memory at once, strips apart that are read row by row.
qint64 LayoutReader::heldBytes() const {
    const bool isHeld = layout_.ycbcr || layout_.compression == COMPRESSION_WEBP ||
                        (layout_.isTiled && layout_.compression != COMPRESSION_NONE);
    const qint64 segmentBytes = layout_.segmentBytes(layout_.segmentHeight);
    return isHeld ? product({layout_.columns(), layout_.planeCount(), segmentBytes}) : 0;
}

/// The bytes of all segments when decompressed.
qint64 LayoutReader::storedImageBytes() const {
    const qint64 wholeBands = product({layout_.bands() - 1, layout_.segmentBytes(layout_.segmentHeight)});
    const qint64 lastBand = layout_.segmentBytes(layout_.rowsOfBand(layout_.bands() - 1));
    return product({wholeBands + lastBand, layout_.columns(), layout_.planeCount()});
}

/// libtiff puts its own guess in the place of a byte count that is too small for a picture of a single strip.
void LayoutReader::checkSingleStrip(qint64 leastBytes) const {
    const bool isSingle = !layout_.isTiled && layout_.bands() == 1 && layout_.planeCount() == 1;
    const std::optional<quint64> byteCount = directory_.firstInteger(TIFFTAG_STRIPBYTECOUNTS);
    require(!isSingle || !byteCount || *byteCount >= static_cast<quint64>(leastBytes), "a TIFF strip is cut off");
}

} // namespace

TiffLayout TiffLayout::read(TiffHandle& handle, const TiffDirectory& directory, qint64 fileSize) {
    return LayoutReader(handle, directory, fileSize).read();
}

qint64 TiffLayout::rowsOfBand(qint64 band) const {
    return isTiled ? segmentHeight : std::min(segmentHeight, height - band * segmentHeight);
}

qint64 TiffLayout::segmentRowBytes() const {
    return (segmentWidth * samplesInPlane() * bits + 7) / 8;
}

qint64 TiffLayout::segmentBytes(qint64 rows) const {
    return ycbcr ? ycbcr->segmentBytes(segmentWidth, rows) : rows * segmentRowBytes();
}

quint32 TiffLayout::segmentIndex(int plane, qint64 band, qint64 column) const {
    return static_cast<quint32>((plane * bands() + band) * columns() + column);
}

void TiffLayout::checkExtent(const TiffHandle::Extent& extent, qint64 band, qint64 fileSize) const {
    const qint64 rows = rowsOfBand(band);
    const bool isJustified = segmentBytes(rows) / *largestExpansion(compression) <= extent.byteCount &&
                             (!isCcitt(compression) || rows / ccittRowsPerByte <= extent.byteCount);
    require(extent.offset > 0 && extent.byteCount > 0 && isJustified, "a TIFF strip or tile is missing or cut off");
    const qint64 neededBytes = compression == COMPRESSION_NONE ? segmentBytes(rows) : extent.byteCount;
    require(extent.offset <= fileSize && neededBytes <= fileSize - extent.offset,
            "a TIFF strip or tile does not lie in the file");
}

} // namespace orvex::platform
