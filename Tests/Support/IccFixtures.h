#pragma once

#include <QByteArray>
#include <QtEndian>

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

/// ICC profiles made while the tests run; all are small.
namespace orvex::test::icc {

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};

using Profile = std::unique_ptr<void, CloseProfile>;

/// One translation of a profile's description: language, country, text.
struct Translation {
    const char* language;
    const char* country;
    std::wstring text;
};

inline QByteArray saved(const Profile& profile) {
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size)) {
        throw std::runtime_error("a profile of the tests cannot be made");
    }
    QByteArray data(static_cast<qsizetype>(size), '\0');
    cmsSaveProfileToMem(profile.get(), data.data(), &size);
    return data;
}

inline Profile opened(const QByteArray& data) {
    return Profile(cmsOpenProfileFromMem(data.constData(), static_cast<cmsUInt32Number>(data.size())));
}

inline void describe(const Profile& profile, const std::vector<Translation>& translations) {
    cmsMLU* text = cmsMLUalloc(nullptr, static_cast<cmsUInt32Number>(translations.size()));
    for (const Translation& each : translations) {
        cmsMLUsetWide(text, each.language, each.country, each.text.c_str());
    }
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
}

inline constexpr cmsCIExyYTRIPLE adobePrimaries{{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};
inline constexpr cmsCIExyYTRIPLE rommPrimaries{{0.7347, 0.2653, 1.0}, {0.1596, 0.8404, 1.0}, {0.0366, 0.0001, 1.0}};

/// An RGB profile of three primaries and one gamma curve; `gamma` tells several apart.
inline Profile rgb(double gamma, cmsProfileClassSignature profileClass = cmsSigDisplayClass,
                   const std::wstring& description = L"Test RGB", const cmsCIExyYTRIPLE& primaries = adobePrimaries) {
    const cmsCIExyY white{0.3127, 0.3290, 1.0};
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    const std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
    Profile profile(cmsCreateRGBProfile(&white, &primaries, curves.data()));
    cmsFreeToneCurve(curve);
    cmsSetDeviceClass(profile.get(), profileClass);
    describe(profile, {{"en", "US", description}});
    return profile;
}

inline Profile gray(double gamma, cmsProfileClassSignature profileClass = cmsSigDisplayClass) {
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    Profile profile(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    cmsSetDeviceClass(profile.get(), profileClass);
    describe(profile, {{"en", "US", L"Test Gray"}});
    return profile;
}

using Sampler = std::function<void(const std::array<double, 4>& in, std::array<double, 4>& out)>;

/// Writes a table under a tag, its values computed by `sampler` from 0 to 1 to 0 to 1.
inline void writeTable(const Profile& profile, cmsTagSignature tag, cmsUInt32Number inputs, cmsUInt32Number outputs,
                       cmsUInt32Number gridPoints, const Sampler& sampler) {
    const auto sample = [](const cmsUInt16Number in[], cmsUInt16Number out[], void* cargo) -> cmsInt32Number {
        std::array<double, 4> from{};
        std::array<double, 4> to{};
        const auto& [function, inCount, outCount] =
            *static_cast<const std::tuple<Sampler, cmsUInt32Number, cmsUInt32Number>*>(cargo);
        for (std::size_t i = 0; i < inCount; ++i) {
            from.at(i) = in[i] / 65535.0;
        }
        function(from, to);
        for (std::size_t i = 0; i < outCount; ++i) {
            out[i] = static_cast<cmsUInt16Number>(std::clamp(to.at(i), 0.0, 1.0) * 65535.0 + 0.5);
        }
        return 1;
    };
    std::tuple<Sampler, cmsUInt32Number, cmsUInt32Number> cargo(sampler, inputs, outputs);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, gridPoints, inputs, outputs, nullptr);
    cmsStageSampleCLut16bit(table, sample, &cargo, 0);
    cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, inputs, outputs);
    cmsPipelineInsertStage(pipeline, cmsAT_END, table);
    cmsWriteTag(profile.get(), tag, pipeline);
    cmsPipelineFree(pipeline);
}

enum class Tables { both, toConnectionOnly, fromConnectionOnly };

/// A CMYK profile of tables: a plain ink model with a table of its own for each intent. Its paper is a little yellow,
/// so that the absolute intent differs from the relative one.
inline Profile cmyk(cmsProfileClassSignature profileClass = cmsSigOutputClass, Tables tables = Tables::both) {
    Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 2.4);
    cmsSetDeviceClass(profile.get(), profileClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    describe(profile, {{"en", "US", L"Test CMYK"}});
    const cmsCIEXYZ paper{0.90, 0.94, 0.70};
    cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, &paper);
    // The old 16-bit encoding: 0xFF00 is an L of 100, and 0x8000 is neutral.
    constexpr double lightest = 65280.0 / 65535.0;
    constexpr double neutral = 32768.0 / 65535.0;
    const std::array toTags{cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigAToB2Tag};
    const std::array fromTags{cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag};
    for (std::size_t intent = 0; intent < 3; ++intent) {
        const double shade = 1.0 - 0.1 * static_cast<double>(intent);
        if (tables != Tables::fromConnectionOnly) {
            writeTable(profile, toTags.at(intent), 4, 3, 5, [shade](const auto& ink, auto& lab) {
                const double light = (1.0 - ink[3]) * shade;
                lab[0] = lightest * (1.0 - 0.3 * ink[0] - 0.4 * ink[1] - 0.1 * ink[2]) * (1.0 - ink[3] * shade);
                lab[1] = neutral + 0.2 * (ink[1] - ink[0]) * light;
                lab[2] = neutral + 0.2 * (ink[2] - 0.5 * ink[0] - 0.5 * ink[1]) * light;
            });
        }
        if (tables != Tables::toConnectionOnly) {
            writeTable(profile, fromTags.at(intent), 3, 4, 9, [shade](const auto& lab, auto& ink) {
                const double dark = std::max(0.0, 1.0 - lab[0] / 0.875) * shade;
                ink[0] = dark - (lab[1] - neutral) * dark;
                ink[1] = dark + (lab[1] - neutral) * dark;
                ink[2] = dark + (lab[2] - neutral) * dark;
                ink[3] = dark * dark;
            });
        }
    }
    return profile;
}

/// An RGB profile with a table of floating-point numbers for each intent and direction, besides what `rgb` has.
inline Profile floatTables() {
    Profile profile = rgb(1.8);
    constexpr std::array matrix{0.5, 0.3, 0.2, 0.25, 0.7, 0.05, 0.01, 0.1, 0.8};
    for (const auto tag : {cmsSigDToB0Tag, cmsSigDToB1Tag, cmsSigDToB2Tag, cmsSigDToB3Tag, cmsSigBToD0Tag,
                           cmsSigBToD1Tag, cmsSigBToD2Tag, cmsSigBToD3Tag}) {
        cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 3, 3);
        cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocMatrix(nullptr, 3, 3, matrix.data(), nullptr));
        cmsWriteTag(profile.get(), tag, pipeline);
        cmsPipelineFree(pipeline);
    }
    return profile;
}

inline Profile deviceLink() {
    cmsToneCurve* curve = cmsBuildGamma(nullptr, 1.5);
    const std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
    Profile profile(cmsCreateLinearizationDeviceLink(cmsSigRgbData, curves.data()));
    cmsFreeToneCurve(curve);
    return profile;
}

inline Profile abstract() {
    return Profile(cmsCreateBCHSWabstractProfile(5, 3.0, 1.1, 0.0, 0.0, 5000, 5000));
}

inline Profile namedColor() {
    Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), cmsSigNamedColorClass);
    cmsSetColorSpace(profile.get(), cmsSigRgbData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    describe(profile, {{"en", "US", L"Test Names"}});
    cmsNAMEDCOLORLIST* list = cmsAllocNamedColorList(nullptr, 1, 3, "", "");
    std::array<cmsUInt16Number, 3> connection{0x8000, 0x8080, 0x8080};
    std::array<cmsUInt16Number, cmsMAXCHANNELS> device{0x7FFF, 0x7FFF, 0x7FFF};
    cmsAppendNamedColor(list, "Test Red", connection.data(), device.data());
    cmsWriteTag(profile.get(), cmsSigNamedColor2Tag, list);
    cmsFreeNamedColorList(list);
    return profile;
}

/// A usable colour-space profile of a space that no raster has.
inline Profile lab() {
    Profile profile(cmsCreateLab4Profile(nullptr));
    cmsSetDeviceClass(profile.get(), cmsSigColorSpaceClass);
    return profile;
}

/// The data with a big-endian number written over it.
template <typename Number>
QByteArray patched(QByteArray data, qsizetype offset, Number value) {
    qToBigEndian(value, data.data() + offset);
    return data;
}

inline quint32 numberAt(const QByteArray& data, qsizetype offset) {
    return qFromBigEndian<quint32>(data.constData() + offset);
}

/// Where in the data the directory's entry of a tag stands: its signature, its offset and its size.
inline qsizetype entryOf(const QByteArray& data, QByteArrayView tag) {
    for (qsizetype entry = 132; entry < 132 + 12 * static_cast<qsizetype>(numberAt(data, 128)); entry += 12) {
        if (QByteArrayView(data).sliced(entry, 4) == tag) {
            return entry;
        }
    }
    throw std::runtime_error("a profile of the tests has no such tag");
}

/// Where in the data the content of a tag begins.
inline qsizetype contentOf(const QByteArray& data, QByteArrayView tag) {
    return numberAt(data, entryOf(data, tag) + 4);
}

} // namespace orvex::test::icc
