#include "Imaging/ExifMetadata.h"

#include "Imaging/DensityUnits.h"

#include <libexif/exif-data.h>

#include <memory>

namespace orvex::platform {

namespace {

constexpr qsizetype largestBlockBytes = 0xFFFE; // of a JPEG segment; the library looks no further

enum ResolutionUnit : int { none = 1, inch = 2, centimetre = 3 };

struct ExifDataRelease {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};

using ExifDataPointer = std::unique_ptr<ExifData, ExifDataRelease>;

ExifDataPointer load(const QByteArray& tiffData) {
    ExifDataPointer data(exif_data_new());
    if (!data) {
        throw std::bad_alloc();
    }
    // Otherwise the library would change types and add missing entries to please the standard.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    const QByteArray block = QByteArray("Exif\0\0", 6) + tiffData.first(std::min(tiffData.size(), largestBlockBytes));
    exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(block.constData()),
                        static_cast<unsigned int>(block.size()));
    return data;
}

/// The entry if it is there with exactly one value of that format and the bytes for it.
const ExifEntry* single(const ExifData& data, ExifIfd directory, ExifTag tag, ExifFormat format) {
    const ExifEntry* entry = exif_content_get_entry(data.ifd[directory], tag);
    const bool isUsable = entry != nullptr && entry->format == format && entry->components == 1 &&
                          entry->data != nullptr && entry->size >= exif_format_get_size(format);
    return isUsable ? entry : nullptr;
}

std::optional<int> shortValue(ExifData& data, ExifIfd directory, ExifTag tag) {
    const ExifEntry* entry = single(data, directory, tag, EXIF_FORMAT_SHORT);
    return entry != nullptr ? std::optional<int>(exif_get_short(entry->data, exif_data_get_byte_order(&data)))
                            : std::nullopt;
}

template <typename Rational>
std::optional<double> quotient(const Rational& value) {
    if (value.denominator == 0) {
        return std::nullopt;
    }
    return static_cast<double>(value.numerator) / static_cast<double>(value.denominator);
}

std::optional<double> rationalValue(ExifData& data, ExifTag tag) {
    const ExifByteOrder order = exif_data_get_byte_order(&data);
    if (const ExifEntry* entry = single(data, EXIF_IFD_0, tag, EXIF_FORMAT_RATIONAL)) {
        return quotient(exif_get_rational(entry->data, order));
    }
    if (const ExifEntry* entry = single(data, EXIF_IFD_0, tag, EXIF_FORMAT_SRATIONAL)) {
        return quotient(exif_get_srational(entry->data, order));
    }
    return std::nullopt;
}

/// The factor from the stated resolution to pixels per inch.
std::optional<double> resolutionFactor(ExifData& data) {
    if (exif_content_get_entry(data.ifd[EXIF_IFD_0], EXIF_TAG_RESOLUTION_UNIT) == nullptr) {
        return 1.0;
    }
    switch (shortValue(data, EXIF_IFD_0, EXIF_TAG_RESOLUTION_UNIT).value_or(ResolutionUnit::none)) {
    case ResolutionUnit::inch:
        return 1.0;
    case ResolutionUnit::centimetre:
        return centimetresPerInch;
    default:
        return std::nullopt;
    }
}

} // namespace

ExifMetadata ExifMetadata::read(const QByteArray& tiffData) {
    const ExifDataPointer data = load(tiffData);
    ExifMetadata metadata;
    const int orientation = shortValue(*data, EXIF_IFD_0, EXIF_TAG_ORIENTATION).value_or(1);
    metadata.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
    metadata.declaresSRGB = shortValue(*data, EXIF_IFD_EXIF, EXIF_TAG_COLOR_SPACE) == 1;
    if (const std::optional<double> factor = resolutionFactor(*data)) {
        const auto perInch = [&](ExifTag tag) {
            std::optional<double> value = rationalValue(*data, tag);
            return value ? std::optional<double>(*value * *factor) : std::nullopt;
        };
        metadata.dpiWidth = perInch(EXIF_TAG_X_RESOLUTION);
        metadata.dpiHeight = perInch(EXIF_TAG_Y_RESOLUTION);
    }
    return metadata;
}

} // namespace orvex::platform
