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

} // namespace

struct ColorTransform::Engine {
    EngineContext context; // destroyed after the transform, which lives in it
    EngineTransform transform;
    std::size_t sourcePixelBytes = 0;
    std::size_t destinationPixelBytes = 0;
    std::unique_ptr<ColorConverter> converter; // absent where only the engine itself converts

    void convertExactly(std::span<const std::byte> source, std::span<std::byte> destination) const {
        const std::size_t pixelCount = source.size() / sourcePixelBytes;
        for (std::size_t done = 0; done < pixelCount;) {
            const std::size_t count = std::min(pixelCount - done, pixelsPerCall);
            cmsDoTransform(transform.get(), source.data() + done * sourcePixelBytes,
                           destination.data() + done * destinationPixelBytes, static_cast<cmsUInt32Number>(count));
            done += count;
        }
    }
};

std::optional<ColorTransform> ColorTransform::make(const IccProfile& source, int sourceBits,
                                                   const IccProfile& destination, int destinationBits,
                                                   RenderingIntent intent, ColorMemory memory) {
    const auto from = layoutOf(source.space(), sourceBits);
    const auto to = layoutOf(destination.space(), destinationBits);
    if (!from || !to) {
        return std::nullopt;
    }
    auto engine = std::make_shared<Engine>();
    engine->context = makeEngineContext();
    const EngineProfile input = openEngineProfile(engine->context, source.data());
    const EngineProfile output = openEngineProfile(engine->context, destination.data());
    if (!input || !output) {
        return std::nullopt;
    }
    engine->transform.reset(cmsCreateTransformTHR(engine->context.get(), input.get(), from->format, output.get(),
                                                  to->format, engineIntent(intent), exactTransformFlags));
    if (!engine->transform) {
        return std::nullopt;
    }
    engine->sourcePixelBytes = from->pixelBytes;
    engine->destinationPixelBytes = to->pixelBytes;
    if (sourceBits == destinationBits) {
        engine->converter = ColorConverter::make({.source = *colorModel(source.space()),
                                                  .destination = *colorModel(destination.space()),
                                                  .bits = sourceBits,
                                                  .memory = memory},
                                                 [exact = engine.get()](const auto& pixels, const auto& converted) {
                                                     exact->convertExactly(pixels, converted);
                                                 });
    }
    return ColorTransform(std::move(engine));
}

std::size_t ColorTransform::sourcePixelBytes() const {
    return engine_->sourcePixelBytes;
}

std::size_t ColorTransform::destinationPixelBytes() const {
    return engine_->destinationPixelBytes;
}

bool ColorTransform::convert(std::span<const std::byte> source, std::span<std::byte> destination,
                             std::size_t pixelCount) const {
    if (source.size() / sourcePixelBytes() < pixelCount || destination.size() / destinationPixelBytes() < pixelCount) {
        return false;
    }
    source = source.first(pixelCount * sourcePixelBytes());
    destination = destination.first(pixelCount * destinationPixelBytes());
    if (engine_->converter) {
        engine_->converter->convert(source, destination);
    } else {
        engine_->convertExactly(source, destination);
    }
    return true;
}

} // namespace orvex::platform
