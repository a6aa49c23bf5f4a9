// The validation of a profile, and the conversion of one strip of transparent pixels from it and to it, with the intent
// that the profile itself names.

#include "Imaging/MemoryRaster.h"
#include "OrvexError.h"
#include "Output/ColorProcessor.h"

#include <cstdint>
#include <cstdlib>

using namespace orvex;
using platform::ColorModel;
using platform::PixelFormat;

namespace {

constexpr qint64 width = 64;
constexpr qint64 height = 16;
constexpr qsizetype intentOffset = 67; // the last byte of the header's intent (ICC.1, 7.2.15)

void convert(const QByteArray& from, ColorModel model, int bits, const QByteArray& to, ColorRenderingIntent intent) {
    const PixelFormat format{.model = model, .bitsPerComponent = bits, .hasAlpha = true};
    QByteArray pixels(width * height * format.bytesPerPixel(), '\0');
    for (qsizetype i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<char>(i * 41 % 256);
    }
    const auto converted =
        ColorProcessor::apply(platform::memoryRaster(width, height, format, from, pixels),
                              {from, QStringLiteral("fuzz")}, {ColorManagementMode::appManaged, intent, true}, to);
    qint64 rows = 0;
    converted.rows([&rows](const platform::RowStrip& strip) { rows += strip.rowCount; });
    if (rows != height) {
        std::abort();
    }
}

void parse(const QByteArray& data, ICCUse use) {
    const QByteArray& sRgb = platform::sRgbProfileData();
    try {
        const ParsedICC parsed = ColorProcessor::parseICC(data, use);
        const auto intent = allColorRenderingIntents.at(static_cast<std::size_t>(data.at(intentOffset) & 3));
        if (use == ICCUse::output) {
            convert(sRgb, ColorModel::rgb, 8, data, intent);
            convert(sRgb, ColorModel::rgb, 16, data, intent);
            return;
        }
        convert(data, parsed.model, 8, sRgb, intent);
        if (parsed.model != ColorModel::cmyk) {
            convert(data, parsed.model, 16, sRgb, intent);
        }
    } catch (const OrvexError&) {
        return; // a refusal is an answer
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    parse(bytes, ICCUse::source);
    parse(bytes, ICCUse::output);
    return 0;
}
