#include "Color/IccColorTags.h"

#include "Files/ByteReader.h"

#include <algorithm>

namespace orvex::platform {

namespace {

enum class Content { noColor, value, tableToConnection, tableFromConnection };

/// What the engine uses the tag for. It uses neither a fourth A2B or B2A table nor the black point tag.
Content contentOf(quint32 tag) {
    switch (tag) {
    case cmsSigAToB0Tag:
    case cmsSigAToB1Tag:
    case cmsSigAToB2Tag:
    case cmsSigDToB0Tag:
    case cmsSigDToB1Tag:
    case cmsSigDToB2Tag:
    case cmsSigDToB3Tag:
        return Content::tableToConnection;
    case cmsSigBToA0Tag:
    case cmsSigBToA1Tag:
    case cmsSigBToA2Tag:
    case cmsSigBToD0Tag:
    case cmsSigBToD1Tag:
    case cmsSigBToD2Tag:
    case cmsSigBToD3Tag:
        return Content::tableFromConnection;
    case cmsSigRedTRCTag:
    case cmsSigGreenTRCTag:
    case cmsSigBlueTRCTag:
    case cmsSigGrayTRCTag:
    case cmsSigRedColorantTag:
    case cmsSigGreenColorantTag:
    case cmsSigBlueColorantTag:
    case cmsSigMediaWhitePointTag:
    case cmsSigChromaticAdaptationTag:
        return Content::value;
    default:
        return Content::noColor;
    }
}

/// Whether the elements of a table that consists of such (ICC.1, 10.16) are no more than its bytes justify: many may
/// share the same bytes, of which the engine makes a copy for each, however few it is told that they are.
bool isWithinBounds(ByteReader& profile, const IccTag& tag) {
    constexpr quint64 largestShare = 4;  // of the tag's own bytes
    constexpr quint64 largestCount = 32; // curves, matrices and grids in turn are fewer than ten
    constexpr quint64 headBytes = 16;
    constexpr quint64 entryBytes = 8;
    if (profile.u32(tag.offset, ByteOrder::big) != cmsSigMultiProcessElementType) {
        return true;
    }
    const quint64 count = profile.u32(tag.offset + quint64{12}, ByteOrder::big).value_or(0);
    if (count > largestCount || tag.size < headBytes || count > (tag.size - headBytes) / entryBytes) {
        return false;
    }
    quint64 bytes = 0;
    for (quint64 entry = tag.offset + headBytes; entry < tag.offset + headBytes + count * entryBytes;
         entry += entryBytes) {
        bytes += profile.u32(entry + 4, ByteOrder::big).value_or(0);
    }
    return bytes <= largestShare * tag.size;
}

bool leads(const cmsPipeline* table, cmsColorSpaceSignature from, cmsColorSpaceSignature to) {
    return static_cast<cmsInt32Number>(cmsPipelineInputChannels(table)) == cmsChannelsOfColorSpace(from) &&
           static_cast<cmsInt32Number>(cmsPipelineOutputChannels(table)) == cmsChannelsOfColorSpace(to);
}

/// Whether that is what the engine needs, its table between as many samples as the profile's spaces have.
bool isUsable(const void* read, Content content, const EngineProfile& profile) {
    if (read == nullptr || content == Content::value) {
        return read != nullptr;
    }
    const auto* table = static_cast<const cmsPipeline*>(read);
    const auto space = cmsGetColorSpace(profile.get());
    const auto connection = cmsGetPCS(profile.get());
    return content == Content::tableToConnection ? leads(table, space, connection) : leads(table, connection, space);
}

/// Whether the tag is of a type that the engine reads colours from.
bool hasColorType(ByteReader& profile, const IccTag& tag) {
    switch (profile.u32(tag.offset, ByteOrder::big).value_or(0)) {
    case cmsSigLut8Type:
    case cmsSigLut16Type:
    case cmsSigLutAtoBType:
    case cmsSigLutBtoAType:
    case cmsSigMultiProcessElementType:
    case cmsSigCurveType:
        return true;
    default:
        return false;
    }
}

} // namespace

bool canReadColorTags(const EngineContext& context, const EngineProfile& profile, const QByteArray& data,
                      const std::vector<IccTag>& tags, quint64 largestReadBytes) {
    ByteReader reader(data);
    return std::all_of(tags.begin(), tags.end(), [&](const IccTag& tag) {
        const Content content = contentOf(tag.signature);
        if (content == Content::noColor) {
            return true;
        }
        if (!isWithinBounds(reader, tag)) {
            return false;
        }
        if (tag.size > largestReadBytes) {
            return hasColorType(reader, tag);
        }
        const auto signature = static_cast<cmsTagSignature>(tag.signature);
        // The engine reads on behind a tag and keeps all that it has read, so each tag has a profile that ends with it.
        const EngineProfile upToTag = openEngineProfile(context, QByteArrayView(data).first(tag.offset + tag.size));
        return upToTag && isUsable(cmsReadTag(upToTag.get(), signature), content, profile);
    });
}

} // namespace orvex::platform
