#include "Output/ImageMetadata.h"

#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Imaging/ImageError.h"
#include "Layout/NumberText.h"
#include "OrvexLanguage.h"

namespace orvex {

namespace {

constexpr double estimatedDensity = 300.0; // pixels per inch, where a file states none
constexpr double densityTolerance = 1e-6;  // relative; beyond it the two axes differ

// Stored texts, Chinese in every language, and recognised by their text when shown.
const QString statedPrefix = QStringLiteral("文件标注 ");
const QString statedSuffix = QStringLiteral(" ppi");
const QString unstatedText = QStringLiteral("未标注有效打印尺寸；按 300 ppi 估算");
const QString unequalText = QStringLiteral("文件两轴 DPI 不一致；按 300 ppi 估算并保持像素比例");

OrvexError unreadableError() {
    return OrvexError::invalid(
        spt("无法读取图像或有效尺寸。请检查文件是否完整，以及系统是否支持该 JPEG、PNG、TIFF 或 HEIC 文件。",
            "Cannot read the image or valid dimensions. Check file integrity and whether the system supports this "
            "JPEG, PNG, TIFF or HEIC file."));
}

/// The density to reckon with, in pixels per inch, and the stored text that says where it comes from.
struct Density {
    double pixelsPerInch = estimatedDensity;
    QString source = unstatedText;
};

bool isUsable(const std::optional<double>& density) {
    return density && std::isfinite(*density) && *density > 0;
}

Density densityOf(const platform::ImageProperties& properties) {
    if (!isUsable(properties.dpiWidth) || !isUsable(properties.dpiHeight)) {
        return {};
    }
    const double x = *properties.dpiWidth;
    const double y = *properties.dpiHeight;
    if (std::abs(x - y) > std::max(x, y) * densityTolerance) {
        return {estimatedDensity, unequalText};
    }
    return {x, statedPrefix + formatNumber(x, 2) + statedSuffix};
}

std::unique_ptr<platform::ImageSource> openSource(const QUrl& url, const std::stop_token& stop) {
    try {
        return platform::ImageSource::open(platform::localPath(url), stop);
    } catch (const platform::ImageError&) {
        throw unreadableError();
    } catch (const platform::FileSystemError&) {
        throw unreadableError();
    }
}

} // namespace

OrvexError ImageMetadata::decodingError() {
    return OrvexError::invalid(
        spt("系统无法解码该图像。请检查文件是否完整以及可用内存。本应用不设固定的像素数或图像文件大小上限。",
            "The system could not decode this image. Check file integrity and available memory. The app has no fixed "
            "pixel-count or image-file-size cap."));
}

platform::Raster ImageMetadata::raster(const platform::ImageSource& source, qint64 maximum,
                                       const platform::RowProgress& progress) {
    try {
        return source.preview(maximum, progress);
    } catch (const platform::ImageError&) {
        throw decodingError();
    } catch (const std::bad_alloc&) {
        throw decodingError();
    }
}

ImageMetadata ImageMetadata::load(const QUrl& url, const std::stop_token& stop, const platform::RowProgress& progress) {
    const std::unique_ptr<platform::ImageSource> source = openSource(url, stop);
    const platform::ImageProperties properties = source->properties();
    if (properties.pixelWidth < 1 || properties.pixelHeight < 1) {
        throw unreadableError();
    }
    platform::Raster preview = raster(*source, previewPixels, progress);
    SourceColorProfile profile = SourceColorProfile::detect(url, preview);
    const bool isTurned = platform::isQuarterTurned(properties.orientation);
    const qint64 pixelWidth = isTurned ? properties.pixelHeight : properties.pixelWidth;
    const qint64 pixelHeight = isTurned ? properties.pixelWidth : properties.pixelHeight;
    const Density density = densityOf(properties);
    return {.url = url,
            .pixelWidth = pixelWidth,
            .pixelHeight = pixelHeight,
            .profileName = profile.name,
            .sourceColorProfile = profile,
            .originalWidthInches = static_cast<double>(pixelWidth) / density.pixelsPerInch,
            .originalHeightInches = static_cast<double>(pixelHeight) / density.pixelsPerInch,
            .physicalSizeSource = density.source,
            .preview = std::move(preview)};
}

QString ImageMetadata::localizedPhysicalSizeSource(const QString& text) {
    if (OrvexLanguage::current() == OrvexLanguage::simplifiedChinese) {
        return text;
    }
    if (text == unstatedText) {
        return QStringLiteral("No valid print dimensions reported; estimated at 300 ppi");
    }
    if (text == unequalText) {
        return QStringLiteral(
            "The file reports different X/Y DPI; estimated at 300 ppi while keeping the pixel aspect ratio");
    }
    if (!text.startsWith(statedPrefix) || !text.endsWith(statedSuffix)) {
        return text;
    }
    const qsizetype bothSizes = statedPrefix.size() + statedSuffix.size();
    const qsizetype numberLength = std::max<qsizetype>(text.size() - bothSizes, 0);
    return QStringLiteral("File metadata: %1 ppi").arg(text.sliced(statedPrefix.size(), numberLength));
}

bool ImageMetadata::isPhysicalSizeEstimated() const {
    return physicalSizeSource == unstatedText || physicalSizeSource == unequalText;
}

} // namespace orvex
