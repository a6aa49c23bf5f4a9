#include "Layout/InchLayout.h"

#include "Layout/LayoutTexts.h"
#include "Layout/NumberText.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace PrintUnits {

bool isPositive(double value) {
    return std::isfinite(value) && value > 0.0;
}

QString formatMMAsInches(double mm, const QLocale& locale) {
    return formatNumber(inches(mm), locale, 3);
}

std::optional<double> parseDecimalInput(const QString& text, const QLocale& locale) {
    QString plain = text.trimmed();
    const QString separator = locale.decimalPoint();
    if (!separator.isEmpty() && separator != u".") {
        plain.replace(separator, QStringLiteral("."));
    }
    // Keeps out what strtod would take besides decimals: hexadecimal notation and the words inf and nan.
    const bool allowed = std::all_of(plain.cbegin(), plain.cend(),
                                     [](QChar each) { return QStringView(u"0123456789+-.Ee").contains(each); });
    if (!allowed) {
        return std::nullopt;
    }
    const auto value = parseWholeDouble(plain.toLatin1());
    return value && std::isfinite(*value) ? value : std::nullopt;
}

} // namespace PrintUnits

namespace CanvasMedia {

QString name() {
    return QStringLiteral("HP Professional Matte Canvas · J3E87B");
}

const QUrl& sourceURL() {
    static const QUrl url(QStringLiteral("https://support.hp.com/"));
    return url;
}

} // namespace CanvasMedia

namespace ArtPrintLayout {

DocumentSettings orvex18K60Inch(double marginMM, Placement placement) {
    return {.widthMM = maximumPageWidthMM,
            .heightMM = 1016.0,
            .marginMM = marginMM,
            .placement = placement,
            .paperSource = QStringLiteral("卷纸"),
            .mediaNote = QStringLiteral("ORVEX 18,000 × 12,000 · 60 英寸画布；实际可打印区域须以当前驱动和介质为准"),
            .driverPageSize = {}};
}

std::optional<double> effectivePPI(qint64 pixelWidth, qint64 pixelHeight, const DocumentSettings& settings) {
    if (pixelWidth < 1 || pixelHeight < 1 || settings.validationError()) {
        return std::nullopt;
    }
    const Rect rect = settings.imageRect(pixelWidth, pixelHeight);
    const bool usable =
        rect.width > 0.0 && rect.height > 0.0 && std::isfinite(rect.width) && std::isfinite(rect.height);
    if (!usable) {
        return std::nullopt;
    }
    return std::min(static_cast<double>(pixelWidth) * PrintUnits::pointsPerInch / rect.width,
                    static_cast<double>(pixelHeight) * PrintUnits::pointsPerInch / rect.height);
}

} // namespace ArtPrintLayout

namespace BorderedArtworkLayout {

namespace {

// Sixteen units in the last place of each limit: what a product of inches may exceed it by and still mean it.
constexpr double widthRoundingMM = 0x1p-38;
constexpr double heightRoundingMM = 0x1p-34;

double snapped(double mm, double limitMM, double roundingMM) {
    return mm > limitMM && mm - limitMM <= roundingMM ? limitMM : mm;
}

double pixels(qint64 count) {
    return std::max(static_cast<double>(count), 1.0);
}

/// The other dimension of a page: the image scales with its pixels, the borders stay.
double followingInches(double givenInches, qint64 givenPixels, qint64 followingPixels) {
    return (givenInches - PrintUnits::bothBordersInches) * pixels(followingPixels) / pixels(givenPixels) +
           PrintUnits::bothBordersInches;
}

void validate(double pageDimension, qint64 pixelWidth, qint64 pixelHeight) {
    if (pixelWidth < 1 || pixelHeight < 1) {
        throw OrvexError::invalid(LayoutTexts::pixelSizeNotPositive());
    }
    if (!std::isfinite(pageDimension) || pageDimension <= PrintUnits::bothBordersInches) {
        throw OrvexError::invalid(spt("页面尺寸必须是有效数字，且须大于两侧白边合计的 5 英寸。",
                                      "Page dimensions must be valid numbers greater than the combined 5 inches of "
                                      "white borders."));
    }
}

DocumentSettings makeDraft(double widthInches, double heightInches, const DocumentSettings& base) {
    DocumentSettings draft = base;
    draft.widthMM =
        snapped(PrintUnits::millimetres(widthInches), DocumentSettings::maximumPageWidthMM, widthRoundingMM);
    draft.heightMM =
        snapped(PrintUnits::millimetres(heightInches), DocumentSettings::maximumPageHeightMM, heightRoundingMM);
    draft.marginMM = PrintUnits::whiteBorderMM;
    draft.placement = Placement::fit;
    draft.driverPageSize.clear();
    return draft;
}

DocumentSettings validated(const DocumentSettings& draft) {
    if (const auto issue = draft.validationError()) {
        throw OrvexError::invalid(*issue);
    }
    return draft;
}

} // namespace

DocumentSettings settings(PageWidthInches pageWidthInches, qint64 pixelWidth, qint64 pixelHeight,
                          const DocumentSettings& base) {
    validate(pageWidthInches.value, pixelWidth, pixelHeight);
    return validated(draft(pageWidthInches, pixelWidth, pixelHeight, base));
}

DocumentSettings settings(PageHeightInches pageHeightInches, qint64 pixelWidth, qint64 pixelHeight,
                          const DocumentSettings& base) {
    validate(pageHeightInches.value, pixelWidth, pixelHeight);
    return validated(draft(pageHeightInches, pixelWidth, pixelHeight, base));
}

DocumentSettings draft(PageWidthInches pageWidthInches, qint64 pixelWidth, qint64 pixelHeight,
                       const DocumentSettings& base) {
    const double width = pageWidthInches.value;
    return makeDraft(width, followingInches(width, pixelWidth, pixelHeight), base);
}

DocumentSettings draft(PageHeightInches pageHeightInches, qint64 pixelWidth, qint64 pixelHeight,
                       const DocumentSettings& base) {
    const double height = pageHeightInches.value;
    return makeDraft(followingInches(height, pixelHeight, pixelWidth), height, base);
}

} // namespace BorderedArtworkLayout

} // namespace orvex
