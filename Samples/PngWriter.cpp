#include "OutputFile.h"
#include "Quantize.h"
#include "Writers.h"

#include <png.h>

namespace orvex::samples {

namespace {

[[noreturn]] void fail(png_structp, png_const_charp message) {
    throw std::runtime_error(message);
}

struct Compressor {
    png_structp codec = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, nullptr);
    png_infop info = png_create_info_struct(codec);

    Compressor() = default;
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    ~Compressor() { png_destroy_write_struct(&codec, &info); }
};

} // namespace

void writePngRows(int width, int height, const PngForm& form, const std::filesystem::path& file,
                  const std::function<void(const RowWriter& write)>& produce) {
    OutputFile output = openOutput(file);
    Compressor png;
    png_init_io(png.codec, output.get());
    png_set_IHDR(png.codec, png.info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 form.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const auto pixelsPerMetre = static_cast<png_uint_32>(form.pixelsPerInch / 0.0254 + 0.5);
    png_set_pHYs(png.codec, png.info, pixelsPerMetre, pixelsPerMetre, PNG_RESOLUTION_METER);
    if (form.declaresSRgb) {
        png_set_sRGB(png.codec, png.info, PNG_sRGB_INTENT_PERCEPTUAL);
    }
    if (!form.profile.empty()) {
        png_set_iCCP(png.codec, png.info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, form.profile.data(),
                     static_cast<png_uint_32>(form.profile.size()));
    }
    png_write_info(png.codec, png.info);
    produce([&](std::span<const std::uint8_t> samples) { png_write_row(png.codec, samples.data()); });
    png_write_end(png.codec, png.info);
    closeOutput(std::move(output), file);
}

void writePng(const Picture& picture, const PngForm& form, const std::filesystem::path& file) {
    writePngRows(picture.width, picture.height, form, file, [&](const RowWriter& write) {
        std::vector<std::uint8_t> samples;
        forEachRow(picture, [&](std::span<const Pixel> pixels) {
            quantizeRow(pixels, form.hasAlpha, samples);
            write(samples);
        });
    });
}

} // namespace orvex::samples
