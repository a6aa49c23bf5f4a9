#include "Layout/RollArtwork.h"

#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/NumberText.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr double assumedPixelsPerInch = 300.0;
constexpr double maximumRollWidthInches = 60.0;
// The ceiling of the trim width whatever the roll; written out, since 60.0 + 1e-9 need not be the same double.
constexpr double maximumTrimWidthInches = 60.000000001;
constexpr double relativeAspectTolerance = 1e-10;

bool isOddTurn(qint64 quarterTurns) {
    return quarterTurns % 2 != 0;
}

QString lastPathComponent(const QUrl& url) {
    QString path = url.path(QUrl::FullyEncoded);
    while (path.size() > 1 && path.endsWith(u'/')) {
        path.chop(1);
    }
    const QString component = path == u"/" ? path : path.section(u'/', -1);
    return QUrl::fromPercentEncoding(component.toUtf8());
}

/// Whether doubles of this magnitude still tell the image's edges from those of its frame.
bool keepsBorders(const Rect& trim, const Rect& art) {
    const bool imageHasArea = art.minX() < art.maxX() && art.minY() < art.maxY();
    return imageHasArea && trim.minX() < art.minX() && trim.minY() < art.minY() && art.maxX() < trim.maxX() &&
           art.maxY() < trim.maxY();
}

} // namespace

std::optional<QString> rollWidthValidationError(double widthInches) {
    if (std::isfinite(widthInches) && widthInches > PrintUnits::bothBordersInches &&
        widthInches <= maximumRollWidthInches) {
        return std::nullopt;
    }
    return spt("卷布宽度必须是大于 5 且不超过 60 英寸的有效数值，才能保留两侧各 2.5 英寸白边。",
               "Roll width must be a valid value greater than 5 and no more than 60 inches to retain both 2.5-inch "
               "white borders.");
}

RollArtwork RollArtwork::make(const RollArtworkSource& source) {
    RollArtwork artwork{.id = source.id,
                        .sourceURL = source.sourceURL,
                        .title = source.title.value_or(lastPathComponent(source.sourceURL)),
                        .pixelWidth = source.pixelWidth,
                        .pixelHeight = source.pixelHeight,
                        .originalWidthInches = source.originalWidthInches.value_or(
                            static_cast<double>(source.pixelWidth) / assumedPixelsPerInch),
                        .originalHeightInches = source.originalHeightInches.value_or(
                            static_cast<double>(source.pixelHeight) / assumedPixelsPerInch),
                        .xInches = source.xInches,
                        .yInches = source.yInches,
                        .rotationQuarterTurns = source.rotationQuarterTurns};
    artwork.widthInches = source.widthInches.value_or(artwork.naturalWidthInches());
    return artwork;
}

double RollArtwork::naturalWidthInches() const {
    return isOddTurn(rotationQuarterTurns) ? originalHeightInches : originalWidthInches;
}

double RollArtwork::naturalHeightInches() const {
    return isOddTurn(rotationQuarterTurns) ? originalWidthInches : originalHeightInches;
}

double RollArtwork::heightInches() const {
    return widthInches * (naturalHeightInches() / naturalWidthInches());
}

double RollArtwork::scale() const {
    return widthInches / naturalWidthInches();
}

double RollArtwork::scalePercent() const {
    return scale() * 100.0;
}

double RollArtwork::effectivePixelsPerInch() const {
    const qint64 displayedPixelWidth = isOddTurn(rotationQuarterTurns) ? pixelHeight : pixelWidth;
    return static_cast<double>(displayedPixelWidth) / widthInches;
}

Rect RollArtwork::trimRectInches() const {
    return {xInches, yInches, widthInches + PrintUnits::bothBordersInches,
            heightInches() + PrintUnits::bothBordersInches};
}

Rect RollArtwork::artworkRectInches() const {
    return {xInches + PrintUnits::whiteBorderInches, yInches + PrintUnits::whiteBorderInches, widthInches,
            heightInches()};
}

bool RollArtwork::matchesPixels() const {
    const double original = originalWidthInches / originalHeightInches;
    const double pixels = static_cast<double>(pixelWidth) / static_cast<double>(pixelHeight);
    return std::isfinite(original) &&
           std::abs(original - pixels) <= std::max(original, pixels) * relativeAspectTolerance;
}

RollArtwork RollArtwork::turned() const {
    RollArtwork result = *this;
    result.widthInches = heightInches();
    result.rotationQuarterTurns = rotationQuarterTurns ^ 1;
    return result;
}

std::optional<QString> RollArtwork::coreValidationError() const {
    if (!sourceURL.isLocalFile() || !sourceURL.path(QUrl::FullyEncoded).startsWith(u'/')) {
        return spt("作品的原图必须是本机文件。", "Artwork must reference a local source image file.");
    }
    if (pixelWidth < 1 || pixelHeight < 1) {
        return LayoutTexts::pixelSizeNotPositive();
    }
    if (!PrintUnits::isPositive(originalWidthInches) || !PrintUnits::isPositive(originalHeightInches)) {
        return spt("原图的物理尺寸必须是有效的正数（英寸）。",
                   "Original physical dimensions must be valid positive values in inches.");
    }
    if (rotationQuarterTurns < 0 || rotationQuarterTurns > 3) {
        return spt("旋转角度必须是 0、90、180 或 270 度。", "Rotation must be 0, 90, 180 or 270 degrees.");
    }
    if (!matchesPixels()) {
        return LayoutTexts::aspectMismatch();
    }
    if (!PrintUnits::isPositive(widthInches) || !PrintUnits::isPositive(heightInches())) {
        return spt("作品尺寸必须是有效的正数（英寸）。", "Artwork dimensions must be valid positive values in inches.");
    }
    if (widthInches + PrintUnits::bothBordersInches > maximumTrimWidthInches ||
        !std::isfinite(heightInches() + PrintUnits::bothBordersInches)) {
        return spt("作品宽度加两侧各 2.5 英寸手裁白边不能超过 60 英寸。请缩小尺寸。",
                   "The artwork width plus two 2.5-inch manual-trim borders must not exceed 60 inches. Reduce its "
                   "size.");
    }
    return std::nullopt;
}

std::optional<QString> RollArtwork::sizeValidationError(double rollWidthInches) const {
    if (auto issue = rollWidthValidationError(rollWidthInches)) {
        return issue;
    }
    if (auto issue = coreValidationError()) {
        return issue;
    }
    if (widthInches + PrintUnits::bothBordersInches > rollWidthInches + PrintUnits::toleranceInches) {
        return spt("作品宽度加两侧各 2.5 英寸手裁白边不能超过 %1 英寸。请手动修改尺寸或旋转作品。",
                   "The artwork width plus two 2.5-inch manual-trim borders must not exceed %1 inches. Change its size "
                   "or rotate it explicitly.")
            .arg(formatNumber(rollWidthInches, 3));
    }
    return std::nullopt;
}

std::optional<QString> RollArtwork::validationError(double rollWidthInches) const {
    if (auto issue = sizeValidationError(rollWidthInches)) {
        return issue;
    }
    return positionValidationError(rollWidthInches);
}

std::optional<QString> RollArtwork::positionValidationError(double rollWidthInches) const {
    if (!std::isfinite(xInches) || !std::isfinite(yInches) || xInches < 0.0 || yInches < 0.0) {
        return spt("作品位置必须是有效的非负数值（英寸）。",
                   "Artwork positions must be valid nonnegative values in inches.");
    }
    const Rect trim = trimRectInches();
    if (!std::isfinite(trim.maxX()) || !std::isfinite(trim.maxY()) ||
        trim.maxX() > rollWidthInches + PrintUnits::toleranceInches) {
        return spt("完整的手裁框必须位于 %1 英寸卷布之内。",
                   "The complete manual-trim frame must lie within the %1-inch roll.")
            .arg(formatNumber(rollWidthInches, 3));
    }
    if (!keepsBorders(trim, artworkRectInches())) {
        return spt("坐标或尺寸超出可用精度，无法保留作品及其 2.5 英寸手裁白边。",
                   "These coordinates or dimensions exceed the precision needed to retain the artwork and its 2.5-inch "
                   "manual-trim borders.");
    }
    return std::nullopt;
}

RollArtwork RollArtwork::fromJson(const platform::JsonReader& reader) {
    return {.id = reader.at("id").uuid(),
            .sourceURL = reader.at("sourceURL").url(),
            .title = reader.at("title").text(),
            .pixelWidth = reader.at("pixelWidth").integer(),
            .pixelHeight = reader.at("pixelHeight").integer(),
            .originalWidthInches = reader.at("originalWidthInches").number(),
            .originalHeightInches = reader.at("originalHeightInches").number(),
            .widthInches = reader.at("widthInches").number(),
            .xInches = reader.at("xInches").number(),
            .yInches = reader.at("yInches").number(),
            .rotationQuarterTurns = reader.at("rotationQuarterTurns").integer()};
}

QJsonObject RollArtwork::toJson(platform::JsonNumbers numbers) const {
    return {{QStringLiteral("id"), platform::uuidText(id)},
            {QStringLiteral("sourceURL"), platform::urlText(sourceURL)},
            {QStringLiteral("title"), title},
            {QStringLiteral("pixelWidth"), pixelWidth},
            {QStringLiteral("pixelHeight"), pixelHeight},
            {QStringLiteral("originalWidthInches"),
             platform::jsonNumber("originalWidthInches", originalWidthInches, numbers)},
            {QStringLiteral("originalHeightInches"),
             platform::jsonNumber("originalHeightInches", originalHeightInches, numbers)},
            {QStringLiteral("widthInches"), platform::jsonNumber("widthInches", widthInches, numbers)},
            {QStringLiteral("xInches"), platform::jsonNumber("xInches", xInches, numbers)},
            {QStringLiteral("yInches"), platform::jsonNumber("yInches", yInches, numbers)},
            {QStringLiteral("rotationQuarterTurns"), rotationQuarterTurns}};
}

} // namespace orvex
