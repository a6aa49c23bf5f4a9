#include "Output/ColorManagement.h"

#include "Color/IccProfile.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/ColorProcessor.h"
#include "Output/EmbeddedICC.h"
#include "Sha256.h"

namespace orvex {

namespace {

/// The value of `all` that a stored text names.
template <typename Values>
std::optional<typename Values::value_type> named(const QString& text, const Values& all) {
    for (const auto each : all) {
        if (text == rawValue(each)) {
            return each;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> embeddedProfile(platform::ByteReader& data) {
    const auto begins = [&data](QByteArrayView signature) {
        return data.bytes(0, static_cast<quint64>(signature.size())) == signature.toByteArray();
    };
    if (begins("\x89PNG\r\n\x1a\n")) {
        return EmbeddedICC::png(data);
    }
    if (begins("\xff\xd8")) {
        return EmbeddedICC::jpeg(data);
    }
    if (begins("II") || begins("MM")) {
        return EmbeddedICC::tiff(data);
    }
    return std::nullopt;
}

/// A source profile that cannot be used counts as none; the refusal comes when a conversion is asked for.
std::optional<ParsedICC> parseSource(const QByteArray& data) {
    try {
        return ColorProcessor::parseICC(data, ICCUse::source);
    } catch (const OrvexError&) {
        return std::nullopt;
    }
}

} // namespace

QString rawValue(ColorManagementMode mode) {
    return mode == ColorManagementMode::driverManaged ? QStringLiteral("driverManaged") : QStringLiteral("appManaged");
}

std::optional<ColorManagementMode> colorManagementMode(const QString& text) {
    return named(text, allColorManagementModes);
}

QString label(ColorManagementMode mode) {
    return mode == ColorManagementMode::driverManaged
               ? spt("由佳能驱动管理颜色", "Let the Canon driver manage color")
               : spt("由应用转换到所选 ICC", "Convert in the app to the selected ICC");
}

QString rawValue(ColorRenderingIntent intent) {
    switch (intent) {
    case ColorRenderingIntent::perceptual:
        return QStringLiteral("perceptual");
    case ColorRenderingIntent::relativeColorimetric:
        return QStringLiteral("relativeColorimetric");
    case ColorRenderingIntent::saturation:
        return QStringLiteral("saturation");
    case ColorRenderingIntent::absoluteColorimetric:
        return QStringLiteral("absoluteColorimetric");
    }
    return {};
}

std::optional<ColorRenderingIntent> colorRenderingIntent(const QString& text) {
    return named(text, allColorRenderingIntents);
}

QString label(ColorRenderingIntent intent) {
    switch (intent) {
    case ColorRenderingIntent::perceptual:
        return spt("可感知", "Perceptual");
    case ColorRenderingIntent::relativeColorimetric:
        return spt("相对比色", "Relative colorimetric");
    case ColorRenderingIntent::saturation:
        return spt("饱和度", "Saturation");
    case ColorRenderingIntent::absoluteColorimetric:
        return spt("绝对比色", "Absolute colorimetric");
    }
    return {};
}

int cgIntent(ColorRenderingIntent intent) {
    switch (intent) {
    case ColorRenderingIntent::absoluteColorimetric:
        return 1;
    case ColorRenderingIntent::relativeColorimetric:
        return 2;
    case ColorRenderingIntent::perceptual:
        return 3;
    case ColorRenderingIntent::saturation:
        return 4;
    }
    return 0;
}

ColorWorkflow ColorWorkflow::fromJson(const platform::JsonReader& reader) {
    const auto modeReader = reader.at("mode");
    const auto mode = colorManagementMode(modeReader.text());
    if (!mode) {
        modeReader.fail(spt("未知的颜色管理方式。", "Unknown color management mode."));
    }
    const auto intentReader = reader.at("intent");
    const auto intent = colorRenderingIntent(intentReader.text());
    if (!intent) {
        intentReader.fail(spt("未知的渲染意图。", "Unknown rendering intent."));
    }
    return {.mode = *mode,
            .intent = *intent,
            .driverColorCorrectionDisabledConfirmed = reader.at("driverColorCorrectionDisabledConfirmed").boolean()};
}

QJsonObject ColorWorkflow::toJson() const {
    return {{QStringLiteral("mode"), rawValue(mode)},
            {QStringLiteral("intent"), rawValue(intent)},
            {QStringLiteral("driverColorCorrectionDisabledConfirmed"), driverColorCorrectionDisabledConfirmed}};
}

SourceColorProfile SourceColorProfile::detect(platform::ByteReader& data,
                                              const std::optional<QByteArray>& imageProfile) {
    const auto embedded = embeddedProfile(data);
    const auto parsed = embedded ? parseSource(*embedded) : std::nullopt;
    if (!parsed || imageProfile != embedded) {
        return untagged();
    }
    return {.embeddedICCData = embedded,
            .name = parsed->profile.description().value_or(spt("文件内嵌 ICC", "Embedded ICC"))};
}

SourceColorProfile SourceColorProfile::detect(const QUrl& sourceURL, const platform::Raster& image) {
    const auto file = platform::RandomAccessFile::open(platform::localPath(sourceURL));
    platform::ByteReader data(file);
    return detect(data, image.iccProfile());
}

QString SourceColorProfile::displayName() const {
    const QString stored = untagged().name;
    return !isTagged() && name == stored
               ? spt("未报告嵌入配置；不推定为 sRGB", "No embedded profile reported; sRGB is not assumed")
               : name;
}

OutputICCProfile OutputICCProfile::inspect(const QUrl& url) {
    // One byte more than a profile may have is enough to see that a file is too large.
    const auto file = platform::RandomAccessFile::open(platform::localPath(url));
    return inspect(file.bytesAt(0, platform::IccProfile::largestBytes + 1), url.fileName());
}

OutputICCProfile OutputICCProfile::inspect(const QByteArray& data, const QString& fallbackName) {
    const ParsedICC parsed = ColorProcessor::parseICC(data, ICCUse::output);
    return {.name = parsed.profile.description().value_or(fallbackName),
            .profileClass = parsed.profileClass,
            .colorModel = parsed.model == platform::ColorModel::cmyk ? QStringLiteral("CMYK") : QStringLiteral("RGB"),
            .componentCount = parsed.profile.componentCount(),
            .sha256 = platform::sha256Hex(data)};
}

ICCProfileInfo ICCProfileInfo::inspect(const QUrl& url) {
    const auto file = platform::RandomAccessFile::open(platform::localPath(url));
    if (file.size() < smallestBytes || file.size() > largestBytes) {
        throw OrvexError::invalid(spt("ICC 文件大小无效。", "Invalid ICC file size."));
    }
    const auto profile = platform::IccProfile::fromData(file.bytesAt(0, file.size()));
    if (!profile) {
        throw OrvexError::invalid(spt("无法解析此 ICC 配置文件。", "Cannot parse this ICC profile."));
    }
    return {.name = url.fileName(),
            .colorSpace = profile->description().value_or(spt("自定义 ICC 色彩空间", "Custom ICC color space")),
            .componentCount = profile->componentCount()};
}

} // namespace orvex
