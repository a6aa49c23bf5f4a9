#include "Exif.h"
#include "OutputFile.h"
#include "Quantize.h"
#include "Writers.h"

#include <jpeglib.h>

#include <array>
#include <cstdio>

namespace orvex::samples {

namespace {

[[noreturn]] void fail(j_common_ptr codec) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    codec->err->format_message(codec, message.data());
    throw std::runtime_error(message.data());
}

/// Owns the compressor: it is released on every path.
struct Compressor {
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};

    Compressor() {
        codec.err = jpeg_std_error(&errors);
        errors.error_exit = fail;
        jpeg_create_compress(&codec);
    }

    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    ~Compressor() { jpeg_destroy_compress(&codec); }
};

void configure(jpeg_compress_struct& codec, const Picture& picture, const JpegForm& form) {
    codec.image_width = static_cast<JDIMENSION>(picture.width);
    codec.image_height = static_cast<JDIMENSION>(picture.height);
    codec.input_components = form.isGray ? 1 : 3;
    codec.in_color_space = form.isGray ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, form.quality, TRUE);
    codec.density_unit = 1;
    codec.X_density = static_cast<UINT16>(form.pixelsPerInch);
    codec.Y_density = static_cast<UINT16>(form.pixelsPerInch);
    if (form.hasFullChroma && !form.isGray) {
        codec.comp_info[0].h_samp_factor = 1;
        codec.comp_info[0].v_samp_factor = 1;
    }
    if (form.isProgressive) {
        jpeg_simple_progression(&codec);
    }
}

void writeMarkers(jpeg_compress_struct& codec, const JpegForm& form) {
    if (form.orientation) {
        Bytes marker{'E', 'x', 'i', 'f', 0, 0};
        const Bytes block = exifBlock(*form.orientation, form.pixelsPerInch, form.declaresSRgb);
        marker.insert(marker.end(), block.begin(), block.end());
        jpeg_write_marker(&codec, JPEG_APP0 + 1, marker.data(), static_cast<unsigned>(marker.size()));
    }
    if (!form.profile.empty()) {
        jpeg_write_icc_profile(&codec, form.profile.data(), static_cast<unsigned>(form.profile.size()));
    }
}

std::uint8_t grayOf(const Pixel& pixel) {
    return quantized<std::uint8_t>(0.299F * pixel.red + 0.587F * pixel.green + 0.114F * pixel.blue);
}

} // namespace

void writeJpeg(const Picture& picture, const JpegForm& form, const std::filesystem::path& file) {
    OutputFile output = openOutput(file);
    Compressor compressor;
    jpeg_compress_struct& codec = compressor.codec;
    jpeg_stdio_dest(&codec, output.get());
    configure(codec, picture, form);
    jpeg_start_compress(&codec, TRUE);
    writeMarkers(codec, form);
    std::vector<std::uint8_t> samples;
    forEachRow(picture, [&](std::span<const Pixel> pixels) {
        if (form.isGray) {
            samples.resize(pixels.size());
            std::transform(pixels.begin(), pixels.end(), samples.begin(), grayOf);
        } else {
            quantizeRow(pixels, false, samples);
        }
        std::uint8_t* row = samples.data();
        jpeg_write_scanlines(&codec, &row, 1);
    });
    jpeg_finish_compress(&codec);
    closeOutput(std::move(output), file);
}

} // namespace orvex::samples
