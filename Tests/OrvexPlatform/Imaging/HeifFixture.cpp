#include "HeifFixture.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace orvex::test {

namespace {

void check(const heif_error& error) {
    if (error.code != heif_error_Ok) {
        throw std::runtime_error(std::string("a test file cannot be made: ") + error.message);
    }
}

heif_chroma chromaOf(const HeifFixture& fixture) {
    if (fixture.isMonochrome) {
        return heif_chroma_monochrome;
    }
    if (fixture.bitDepth > 8) {
        return fixture.hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
    }
    return fixture.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
}

using Image = std::unique_ptr<heif_image, decltype([](heif_image* image) { heif_image_release(image); })>;

Image paint(const HeifFixture& fixture) {
    heif_image* created = nullptr;
    const heif_colorspace space = fixture.isMonochrome ? heif_colorspace_monochrome : heif_colorspace_RGB;
    const heif_channel channel = fixture.isMonochrome ? heif_channel_Y : heif_channel_interleaved;
    check(heif_image_create(fixture.width, fixture.height, space, chromaOf(fixture), &created));
    Image image(created);
    check(heif_image_add_plane(created, channel, fixture.width, fixture.height, fixture.bitDepth));
    int stride = 0;
    quint8* plane = heif_image_get_plane(created, channel, &stride);
    const std::size_t samples = fixture.isMonochrome ? 1 : fixture.hasAlpha ? 4 : 3;
    for (int y = 0; y < fixture.height; ++y) {
        quint8* target = plane + y * stride;
        for (int x = 0; x < fixture.width; ++x) {
            std::vector<int> pixel = fixture.painter(x, y);
            pixel.resize(samples);
            for (const int sample : pixel) {
                *target++ = static_cast<quint8>(sample);
                if (fixture.bitDepth > 8) {
                    *target++ = static_cast<quint8>(sample >> 8);
                }
            }
        }
    }
    heif_image_set_premultiplied_alpha(created, fixture.isPremultiplied ? 1 : 0);
    if (!fixture.profile.isEmpty()) {
        check(heif_image_set_raw_color_profile(created, "prof", fixture.profile.constData(),
                                               static_cast<std::size_t>(fixture.profile.size())));
    }
    return image;
}

heif_error append(heif_context* /*context*/, const void* data, std::size_t size, void* target) {
    static_cast<QByteArray*>(target)->append(static_cast<const char*>(data), static_cast<qsizetype>(size));
    return {heif_error_Ok, heif_suberror_Unspecified, "Success"};
}

} // namespace

QByteArray HeifFixture::bytes() const {
    const std::unique_ptr<heif_context, decltype(&heif_context_free)> context(heif_context_alloc(), heif_context_free);
    const Image image = paint(*this);
    heif_encoder* created = nullptr;
    check(heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &created));
    const std::unique_ptr<heif_encoder, decltype(&heif_encoder_release)> encoder(created, heif_encoder_release);
    check(heif_encoder_set_lossless(created, 1));
    check(heif_encoder_set_parameter_string(created, "chroma", "444"));
    const std::unique_ptr<heif_encoding_options, decltype(&heif_encoding_options_free)> options(
        heif_encoding_options_alloc(), heif_encoding_options_free);
    options->image_orientation = orientation;
    heif_image_handle* coded = nullptr;
    check(heif_context_encode_image(context.get(), image.get(), created, options.get(), &coded));
    const std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle(coded,
                                                                                          heif_image_handle_release);
    if (!exif.isEmpty()) {
        check(heif_context_add_exif_metadata(context.get(), coded, exif.constData(), static_cast<int>(exif.size())));
    }
    QByteArray file;
    heif_writer writer{1, append};
    check(heif_context_write(context.get(), &writer, &file));
    return file;
}

} // namespace orvex::test
