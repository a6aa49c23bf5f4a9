#include "Color/ColorTransform.h"

#include "Color/ColorEngine.h"

namespace orvex::platform {

namespace {

/// The engine counts the pixels of one call in 32 bits; this many at a time keep every buffer offset in range, too.
constexpr std::size_t pixelsPerCall = std::size_t{1} << 20;

struct Layout {
    cmsUInt32Number format = 0;
    std::size_t pixelBytes = 0;
};

std::optional<Layout> layoutOf(IccProfile::Space space, int bits) {
    const auto model = colorModel(space);
    if (!model || (bits != 8 && bits != 16)) {
        return std::nullopt;
    }
    const auto bytes = static_cast<cmsUInt32Number>(bits / 8);
    const auto channels = static_cast<cmsUInt32Number>(componentCount(*model));
    const auto pixelType = *model == ColorModel::gray ? PT_GRAY : *model == ColorModel::rgb ? PT_RGB : PT_CMYK;
    return Layout{COLORSPACE_SH(static_cast<cmsUInt32Number>(pixelType)) | CHANNELS_SH(channels) | BYTES_SH(bytes),
                  std::size_t{channels} * bytes};
}

cmsUInt32Number engineIntent(RenderingIntent intent) {
    switch (intent) {
    case RenderingIntent::perceptual:
        return INTENT_PERCEPTUAL;
    case RenderingIntent::relativeColorimetric:
        return INTENT_RELATIVE_COLORIMETRIC;
    case RenderingIntent::saturation:
        return INTENT_SATURATION;
    case RenderingIntent::absoluteColorimetric:
        return INTENT_ABSOLUTE_COLORIMETRIC;
    }
    return INTENT_RELATIVE_COLORIMETRIC;
}

EngineProfile open(const EngineContext& context, const IccProfile& profile) {
    return EngineProfile(cmsOpenProfileFromMemTHR(context.get(), profile.data().constData(),
                                                  static_cast<cmsUInt32Number>(profile.data().size())));
}

} // namespace

struct ColorTransform::Engine {
    EngineContext context; // destroyed after the transform, which lives in it
    EngineTransform transform;
};

std::optional<ColorTransform> ColorTransform::make(const IccProfile& source, int sourceBits,
                                                   const IccProfile& destination, int destinationBits,
                                                   RenderingIntent intent) {
    const auto from = layoutOf(source.space(), sourceBits);
    const auto to = layoutOf(destination.space(), destinationBits);
    if (!from || !to) {
        return std::nullopt;
    }
    auto engine = std::make_shared<Engine>();
    engine->context = makeEngineContext();
    const EngineProfile input = open(engine->context, source);
    const EngineProfile output = open(engine->context, destination);
    if (!input || !output) {
        return std::nullopt;
    }
    engine->transform.reset(cmsCreateTransformTHR(engine->context.get(), input.get(), from->format, output.get(),
                                                  to->format, engineIntent(intent), exactTransformFlags));
    if (!engine->transform) {
        return std::nullopt;
    }
    return ColorTransform(std::move(engine), from->pixelBytes, to->pixelBytes);
}

bool ColorTransform::convert(std::span<const std::byte> source, std::span<std::byte> destination,
                             std::size_t pixelCount) const {
    if (source.size() / sourcePixelBytes_ < pixelCount || destination.size() / destinationPixelBytes_ < pixelCount) {
        return false;
    }
    for (std::size_t done = 0; done < pixelCount;) {
        const std::size_t count = std::min(pixelCount - done, pixelsPerCall);
        cmsDoTransform(engine_->transform.get(), source.data() + done * sourcePixelBytes_,
                       destination.data() + done * destinationPixelBytes_, static_cast<cmsUInt32Number>(count));
        done += count;
    }
    return true;
}

} // namespace orvex::platform
