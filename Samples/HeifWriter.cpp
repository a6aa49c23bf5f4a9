#include "Exif.h"
#include "Quantize.h"
#include "Writers.h"

#include <libheif/heif.h>

#include <memory>
#include <stdexcept>

namespace orvex::samples {

namespace {

struct Releaser {
    void operator()(heif_context* context) const { heif_context_free(context); }

    void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }

    void operator()(heif_image* image) const { heif_image_release(image); }

    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Releaser>;

void require(const heif_error& error) {
    if (error.code != heif_error_Ok) {
        throw std::runtime_error(error.message);
    }
}

Owned<heif_image> imageOf(const Picture& picture, const Bytes& profile) {
    heif_image* created = nullptr;
    require(
        heif_image_create(picture.width, picture.height, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &created));
    Owned<heif_image> image(created);
    require(heif_image_add_plane(created, heif_channel_interleaved, picture.width, picture.height, 8));
    int stride = 0;
    std::uint8_t* place = heif_image_get_plane(created, heif_channel_interleaved, &stride);
    std::vector<std::uint8_t> samples;
    forEachRow(picture, [&](std::span<const Pixel> pixels) {
        quantizeRow(pixels, false, samples);
        place = std::copy(samples.begin(), samples.end(), place) + (stride - static_cast<int>(samples.size()));
    });
    if (!profile.empty()) {
        require(heif_image_set_raw_color_profile(created, "prof", profile.data(), profile.size()));
    }
    return image;
}

Owned<heif_encoder> encoderFor(heif_context* context, int quality) {
    heif_encoder* created = nullptr;
    require(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &created));
    Owned<heif_encoder> encoder(created);
    require(heif_encoder_set_lossy_quality(created, quality));
    require(heif_encoder_set_parameter(created, "preset", "veryfast"));
    return encoder;
}

} // namespace

void writeHeif(const Picture& picture, const HeifForm& form, const std::filesystem::path& file) {
    const Owned<heif_context> context(heif_context_alloc());
    const Owned<heif_image> image = imageOf(picture, form.profile);
    const Owned<heif_encoder> encoder = encoderFor(context.get(), form.quality);
    heif_image_handle* encoded = nullptr;
    require(heif_context_encode_image(context.get(), image.get(), encoder.get(), nullptr, &encoded));
    const Owned<heif_image_handle> handle(encoded);
    const Bytes exif = exifBlock(1, form.pixelsPerInch);
    require(heif_context_add_exif_metadata(context.get(), encoded, exif.data(), static_cast<int>(exif.size())));
    require(heif_context_write_to_file(context.get(), file.c_str()));
}

} // namespace orvex::samples
