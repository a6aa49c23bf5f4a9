#include "Quantize.h"
#include "Writers.h"

#include <lcms2.h>
#include <tiffio.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace orvex::samples {

namespace {

constexpr std::uint32_t stripBytes = 1U << 18;

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

using Tiff = std::unique_ptr<TIFF, TiffCloser>;

void require(bool isDone, const std::filesystem::path& file) {
    if (!isDone) {
        throw std::runtime_error("Cannot write " + file.string());
    }
}

/// From the picture's own colours to ink.
class Separation {
public:
    explicit Separation(const Bytes& profile) {
        cmsHPROFILE from = cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
        const Bytes& press = pressProfile();
        cmsHPROFILE to = cmsOpenProfileFromMem(press.data(), static_cast<cmsUInt32Number>(press.size()));
        transform_ = cmsCreateTransform(from, TYPE_RGB_8, to, TYPE_CMYK_8, INTENT_RELATIVE_COLORIMETRIC,
                                        cmsFLAGS_BLACKPOINTCOMPENSATION);
        cmsCloseProfile(from);
        cmsCloseProfile(to);
        if (transform_ == nullptr) {
            throw std::runtime_error("The colour engine cannot convert to ink.");
        }
    }

    Separation(const Separation&) = delete;
    Separation& operator=(const Separation&) = delete;

    ~Separation() { cmsDeleteTransform(transform_); }

    void apply(const std::vector<std::uint8_t>& rgb, std::vector<std::uint8_t>& ink) const {
        ink.resize(rgb.size() / 3 * 4);
        cmsDoTransform(transform_, rgb.data(), ink.data(), static_cast<cmsUInt32Number>(rgb.size() / 3));
    }

private:
    cmsHTRANSFORM transform_ = nullptr;
};

void describe(TIFF* tiff, const Picture& picture, const TiffForm& form) {
    const int samples = form.isCmyk ? 4 : 3;
    const auto rowBytes = static_cast<std::uint32_t>(picture.width * samples * form.bitsPerSample / 8);
    const auto density = static_cast<double>(form.pixelsPerInch);
    const bool isLzw = form.compression == TiffForm::Compression::lzw;
    const Bytes& profile = form.isCmyk ? pressProfile() : form.profile;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, form.bitsPerSample);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.isCmyk ? PHOTOMETRIC_SEPARATED : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, isLzw ? COMPRESSION_LZW : COMPRESSION_NONE);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::max(1U, stripBytes / rowBytes));
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, density);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, density);
    if (isLzw) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    }
    if (!profile.empty()) {
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.data());
    }
}

using StripWriter = std::function<void(void* samples)>;

void writeCmykRows(const Picture& picture, const Bytes& profile, const StripWriter& write) {
    const Separation separation(profile);
    std::vector<std::uint8_t> rgb;
    std::vector<std::uint8_t> ink;
    forEachRow(picture, [&](std::span<const Pixel> pixels) {
        quantizeRow(pixels, false, rgb);
        separation.apply(rgb, ink);
        write(ink.data());
    });
}

template <typename Sample>
void writeRgbRows(const Picture& picture, const StripWriter& write) {
    std::vector<Sample> samples;
    forEachRow(picture, [&](std::span<const Pixel> pixels) {
        quantizeRow(pixels, false, samples);
        write(samples.data());
    });
}

} // namespace

void writeTiff(const Picture& picture, const TiffForm& form, const std::filesystem::path& file) {
    const std::string mode = std::string("w") + (form.isBigEndian ? 'b' : 'l') + (form.isBig ? "8" : "");
    const Tiff tiff(TIFFOpen(file.c_str(), mode.c_str()));
    require(tiff != nullptr, file);
    describe(tiff.get(), picture, form);
    std::uint32_t row = 0;
    const StripWriter write = [&](void* samples) {
        require(TIFFWriteScanline(tiff.get(), samples, row++, 0) == 1, file);
    };
    if (form.isCmyk) {
        writeCmykRows(picture, form.profile, write);
    } else if (form.bitsPerSample == 16) {
        writeRgbRows<std::uint16_t>(picture, write);
    } else {
        writeRgbRows<std::uint8_t>(picture, write);
    }
    require(TIFFFlush(tiff.get()) == 1, file);
}

} // namespace orvex::samples
