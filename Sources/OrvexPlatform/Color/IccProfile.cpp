#include "Color/IccProfile.h"

#include "Color/ColorEngine.h"
#include "Color/IccColorTags.h"
#include "Color/IccDescription.h"
#include "Color/IccDirectory.h"
#include "Files/ByteReader.h"

#include <algorithm>
#include <array>
#include <new>

namespace orvex::platform {

namespace {

// The header's fields (ICC.1, 7.2).
constexpr qsizetype classOffset = 12; // then the space of the colours and the space that they lead to
constexpr qsizetype classAndSpacesBytes = 12;
constexpr qsizetype creationDateOffset = 24;
constexpr qsizetype creationDateBytes = 12;
constexpr qsizetype signatureOffset = 36;
constexpr qsizetype profileIdOffset = 84;
constexpr qsizetype profileIdBytes = 16;

bool sizeFieldFits(const QByteArray& data) {
    const auto size = ByteReader(data).u32(0, ByteOrder::big);
    return size && *size >= IccProfile::smallestBytes && *size <= data.size();
}

bool isAscii(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool hasSoundHeader(const QByteArray& data) {
    return hasIccSignature(data) && data.size() <= IccProfile::largestBytes && sizeFieldFits(data) &&
           isAscii(QByteArrayView(data).sliced(classOffset, classAndSpacesBytes));
}

/// Whether the engine can compute colours from the profile at all: from the device to the connection space, from the
/// one side of a link to the other, from a name to its colour.
bool canCompute(const EngineContext& context, const EngineProfile& profile) {
    const auto profileClass = cmsGetDeviceClass(profile.get());
    const bool isNamed = profileClass == cmsSigNamedColorClass;
    const auto space = cmsGetColorSpace(profile.get());
    const auto connection = cmsGetPCS(profile.get());
    const auto inputs = isNamed ? 1 : cmsChannelsOfColorSpace(space);
    const auto outputs = cmsChannelsOfColorSpace(isNamed ? space : connection);
    const bool leadsToConnection = connection == cmsSigXYZData || connection == cmsSigLabData;
    if (inputs < 1 || outputs < 1 || (!leadsToConnection && profileClass != cmsSigLinkClass)) {
        return false;
    }
    const auto format = [](cmsInt32Number channels) {
        return CHANNELS_SH(static_cast<cmsUInt32Number>(channels)) | BYTES_SH(2U);
    };
    cmsHPROFILE handle = profile.get();
    return EngineTransform(cmsCreateMultiprofileTransformTHR(context.get(), &handle, 1, format(inputs), format(outputs),
                                                             INTENT_RELATIVE_COLORIMETRIC, exactTransformFlags)) !=
           nullptr;
}

IccProfile::Space spaceOf(cmsColorSpaceSignature signature) {
    switch (signature) {
    case cmsSigGrayData:
        return IccProfile::Space::gray;
    case cmsSigRgbData:
        return IccProfile::Space::rgb;
    case cmsSigCmykData:
        return IccProfile::Space::cmyk;
    default:
        return IccProfile::Space::other;
    }
}

void describeAsSRgb(cmsContext context, const EngineProfile& profile) {
    cmsMLU* text = cmsMLUalloc(context, 1);
    cmsMLUsetASCII(text, "en", "US", "sRGB IEC61966-2.1");
    cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
}

/// The engine stamps what it makes with the hour of the making; a constant day keeps equal pictures equal.
void fixHeader(QByteArray& data) {
    static constexpr std::array<char, creationDateBytes> date{0x07, static_cast<char>(0xEA), 0, 1, 0, 1};
    data.replace(creationDateOffset, creationDateBytes, date.data(), creationDateBytes);
    data.replace(profileIdOffset, profileIdBytes, QByteArray(profileIdBytes, '\0'));
}

QByteArray makeSRgb() {
    const EngineContext context = makeEngineContext();
    const EngineProfile profile(cmsCreate_sRGBProfileTHR(context.get()));
    cmsUInt32Number size = 0;
    if (!profile) {
        throw std::bad_alloc();
    }
    cmsSetProfileVersion(profile.get(), 4.0); // the newest that a PDF 1.5 may hold
    describeAsSRgb(context.get(), profile);
    if (cmsSaveProfileToMem(profile.get(), nullptr, &size) == 0) {
        throw std::bad_alloc();
    }
    QByteArray data(static_cast<qsizetype>(size), '\0');
    if (cmsSaveProfileToMem(profile.get(), data.data(), &size) == 0) {
        throw std::bad_alloc();
    }
    fixHeader(data);
    return data;
}

bool isDeviceClass(const QByteArray& profileClass) {
    return profileClass == "scnr" || profileClass == "mntr" || profileClass == "prtr" || profileClass == "spac";
}

} // namespace

bool hasIccSignature(QByteArrayView data) {
    return data.size() >= IccProfile::smallestBytes && data.sliced(signatureOffset, 4) == "acsp";
}

std::optional<ColorModel> colorModel(IccProfile::Space space) {
    switch (space) {
    case IccProfile::Space::gray:
        return ColorModel::gray;
    case IccProfile::Space::rgb:
        return ColorModel::rgb;
    case IccProfile::Space::cmyk:
        return ColorModel::cmyk;
    case IccProfile::Space::other:
        break;
    }
    return std::nullopt;
}

bool IccProfile::isWellFormed(const QByteArray& data) {
    constexpr quint64 largestReadBytes = 1 << 14; // of a tag
    if (!hasSoundHeader(data)) {
        return false;
    }
    const auto tags = iccDirectory(data);
    const EngineContext context = makeEngineContext();
    const EngineProfile handle = openEngineProfile(context, data);
    return tags && handle && canReadColorTags(context, handle, data, *tags, largestReadBytes);
}

std::optional<IccProfile> IccProfile::fromData(const QByteArray& data) {
    if (!hasSoundHeader(data)) {
        return std::nullopt;
    }
    const auto tags = iccDirectory(data);
    const EngineContext context = makeEngineContext();
    const EngineProfile handle = openEngineProfile(context, data);
    if (!tags || !handle || !canReadColorTags(context, handle, data, *tags) || !canCompute(context, handle)) {
        return std::nullopt;
    }
    IccProfile profile;
    profile.data_ = data;
    profile.description_ = iccDescription(data);
    profile.profileClass_ = data.sliced(classOffset, 4);
    profile.space_ = spaceOf(cmsGetColorSpace(handle.get()));
    profile.componentCount_ = cmsChannelsOfColorSpace(cmsGetColorSpace(handle.get()));
    return profile;
}

const QByteArray& sRgbProfileData() {
    static const QByteArray data = makeSRgb();
    return data;
}

std::optional<QByteArray> appliedProfile(const std::optional<QByteArray>& data, ColorModel model) {
    const auto profile = data ? IccProfile::fromData(*data) : std::nullopt;
    const bool applies = profile && isDeviceClass(profile->profileClass()) && colorModel(profile->space()) == model;
    return applies ? data : std::nullopt;
}

} // namespace orvex::platform
