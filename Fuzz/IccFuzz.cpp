// The validation of a profile, and the conversion of one strip from it and to it.

#include "Color/ColorTransform.h"
#include "OrvexError.h"
#include "Output/ColorProcessor.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace orvex;

namespace {

constexpr std::size_t pixels = 64;

void convert(const platform::IccProfile& from, const platform::IccProfile& to, int bits) {
    const auto transform =
        platform::ColorTransform::make(from, bits, to, bits, platform::RenderingIntent::relativeColorimetric);
    if (!transform) {
        return;
    }
    std::vector<std::byte> source(pixels * transform->sourcePixelBytes());
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = static_cast<std::byte>(i * 41 % 256);
    }
    std::vector<std::byte> destination(pixels * transform->destinationPixelBytes());
    if (!transform->convert(source, destination, pixels)) {
        std::abort();
    }
}

void parse(const QByteArray& data, ICCUse use) {
    static const auto sRgb = platform::IccProfile::fromData(platform::sRgbProfileData()).value();
    try {
        const ParsedICC parsed = ColorProcessor::parseICC(data, use);
        for (const int bits : {8, 16}) {
            if (use == ICCUse::source) {
                convert(parsed.profile, sRgb, bits);
            } else {
                convert(sRgb, parsed.profile, bits);
            }
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
