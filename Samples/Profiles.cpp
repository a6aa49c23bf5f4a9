#include "Profiles.h"

#include "PressInks.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <type_traits>

namespace orvex::samples {

namespace {

struct Closer {
    void operator()(void* profile) const { cmsCloseProfile(profile); }

    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }

    void operator()(cmsPipeline* pipeline) const { cmsPipelineFree(pipeline); }

    void operator()(cmsMLU* text) const { cmsMLUfree(text); }
};

using Profile = std::unique_ptr<void, Closer>;
using Curve = std::unique_ptr<cmsToneCurve, Closer>;
using Pipeline = std::unique_ptr<cmsPipeline, Closer>;

constexpr cmsCIExyY d65{0.3127, 0.3290, 1.0};
constexpr int colorGrid = 17; ///< nodes on each axis of Lab
constexpr int inkGrid = 9;    ///< nodes on each axis of an ink

void require(bool isDone) {
    if (!isDone) {
        throw std::runtime_error("The colour engine cannot make a profile.");
    }
}

void describe(cmsHPROFILE profile, const char* description) {
    for (const auto& [tag, text] : {std::pair(cmsSigProfileDescriptionTag, description),
                                    std::pair(cmsSigCopyrightTag, "No copyright, use freely")}) {
        const std::unique_ptr<cmsMLU, Closer> localized(cmsMLUalloc(nullptr, 1));
        require(localized && cmsMLUsetASCII(localized.get(), "en", "US", text) != 0 &&
                cmsWriteTag(profile, tag, localized.get()) != 0);
    }
}

Bytes bytesOf(const Profile& profile) {
    cmsUInt32Number size = 0;
    require(cmsSaveProfileToMem(profile.get(), nullptr, &size) != 0);
    Bytes bytes(size);
    require(cmsSaveProfileToMem(profile.get(), bytes.data(), &size) != 0);
    // The engine writes the time of day (ICC.1, 7.2.8) into bytes 24 to 35.
    constexpr std::array<std::uint8_t, 12> created{0x07, 0xEA, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    std::copy(created.begin(), created.end(), bytes.begin() + 24);
    return bytes;
}

Bytes rgbProfile(const char* description, const cmsCIExyYTRIPLE& primaries, const Curve& curve) {
    require(curve != nullptr);
    std::array<cmsToneCurve*, 3> curves{curve.get(), curve.get(), curve.get()};
    const Profile profile(cmsCreateRGBProfile(&d65, &primaries, curves.data()));
    require(profile != nullptr);
    describe(profile.get(), description);
    return bytesOf(profile);
}

Curve gamma(double exponent) {
    return Curve(cmsBuildGamma(nullptr, exponent));
}

Curve sRgbCurve() {
    constexpr std::array<double, 5> parameters{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return Curve(cmsBuildParametricToneCurve(nullptr, 4, parameters.data()));
}

// The grid's values are 16-bit: ink from none to full, and Lab as ICC.1 encodes it (6.3.4.2, table 12).

cmsInt32Number inkToLab(const cmsUInt16Number in[], cmsUInt16Number out[], void*) {
    Inks inks{};
    std::transform(in, in + 4, inks.begin(), [](cmsUInt16Number value) { return value / 65535.0; });
    const Xyz xyz = printed(inks);
    const cmsCIEXYZ color{xyz[0], xyz[1], xyz[2]};
    cmsCIELab lab;
    cmsXYZ2Lab(nullptr, &lab, &color);
    cmsFloat2LabEncoded(out, &lab);
    return 1;
}

cmsInt32Number labToInk(const cmsUInt16Number in[], cmsUInt16Number out[], void*) {
    cmsCIELab lab;
    cmsCIEXYZ color;
    cmsLabEncoded2Float(&lab, in);
    cmsLab2XYZ(nullptr, &color, &lab);
    const Inks inks = separated({color.X, color.Y, color.Z});
    std::transform(inks.begin(), inks.end(), out,
                   [](double ink) { return static_cast<cmsUInt16Number>(ink * 65535.0 + 0.5); });
    return 1;
}

void writeTable(cmsHPROFILE profile, cmsTagSignature tag, int inputs, int outputs, int grid, cmsSAMPLER16 sampler) {
    const auto in = static_cast<cmsUInt32Number>(inputs);
    const auto out = static_cast<cmsUInt32Number>(outputs);
    const Pipeline pipeline(cmsPipelineAlloc(nullptr, in, out));
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, static_cast<cmsUInt32Number>(grid), in, out, nullptr);
    require(pipeline && table != nullptr && cmsStageSampleCLut16bit(table, sampler, nullptr, 0) != 0);
    require(cmsPipelineInsertStage(pipeline.get(), cmsAT_END, cmsStageAllocToneCurves(nullptr, in, nullptr)) != 0);
    require(cmsPipelineInsertStage(pipeline.get(), cmsAT_END, table) != 0);
    require(cmsPipelineInsertStage(pipeline.get(), cmsAT_END, cmsStageAllocToneCurves(nullptr, out, nullptr)) != 0);
    require(cmsWriteTag(profile, tag, pipeline.get()) != 0);
}

Bytes makePressProfile() {
    const Profile profile(cmsCreateProfilePlaceholder(nullptr));
    require(profile != nullptr);
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    describe(profile.get(), "Sample Coated Press");
    require(cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ()) != 0);
    writeTable(profile.get(), cmsSigAToB0Tag, 4, 3, inkGrid, inkToLab);
    writeTable(profile.get(), cmsSigBToA0Tag, 3, 4, colorGrid, labToInk);
    for (const auto& [copy, original] :
         {std::pair(cmsSigAToB1Tag, cmsSigAToB0Tag), std::pair(cmsSigAToB2Tag, cmsSigAToB0Tag),
          std::pair(cmsSigBToA1Tag, cmsSigBToA0Tag), std::pair(cmsSigBToA2Tag, cmsSigBToA0Tag)}) {
        require(cmsLinkTag(profile.get(), copy, original) != 0);
    }
    return bytesOf(profile);
}

Bytes makeGrayProfile() {
    const Curve curve = gamma(2.2);
    const Profile profile(curve ? cmsCreateGrayProfile(cmsD50_xyY(), curve.get()) : nullptr);
    require(profile != nullptr);
    describe(profile.get(), "Sample Gray Gamma 2.2");
    return bytesOf(profile);
}

} // namespace

const Bytes& sRgbProfile() {
    static const Bytes bytes =
        rgbProfile("Sample sRGB", {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}}, sRgbCurve());
    return bytes;
}

const Bytes& wideGamutProfile() {
    static const Bytes bytes =
        rgbProfile("Sample Wide Gamut RGB", {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}, gamma(563.0 / 256));
    return bytes;
}

const Bytes& displayP3Profile() {
    static const Bytes bytes =
        rgbProfile("Sample Display P3", {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, sRgbCurve());
    return bytes;
}

const Bytes& grayProfile() {
    static const Bytes bytes = makeGrayProfile();
    return bytes;
}

const Bytes& pressProfile() {
    static const Bytes bytes = makePressProfile();
    return bytes;
}

} // namespace orvex::samples
