#include "Layout/Document.h"

#include "Json/JsonWriter.h"
#include "Layout/InchLayout.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

double points(double fromMM) {
    return fromMM * PrintUnits::pointsPerInch / PrintUnits::mmPerInch;
}

} // namespace

QString rawValue(Placement placement) {
    return placement == Placement::fit ? QStringLiteral("完整放入") : QStringLiteral("填满并裁边");
}

std::optional<Placement> placement(const QString& text) {
    for (const Placement each : {Placement::fit, Placement::fill}) {
        if (text == rawValue(each)) {
            return each;
        }
    }
    return std::nullopt;
}

QString label(Placement placement) {
    return placement == Placement::fit ? spt("完整放入", "Fit whole image") : spt("填满并裁边", "Fill and crop");
}

std::optional<QString> DocumentSettings::validationError() const {
    if (!std::isfinite(widthMM) || !std::isfinite(heightMM) || !std::isfinite(marginMM)) {
        return spt("尺寸必须是有效数字。", "Dimensions must be valid numbers.");
    }
    const bool widthFits = widthMM >= minimumPageMM && widthMM <= maximumPageWidthMM;
    const bool heightFits = heightMM >= minimumPageMM && heightMM <= maximumPageHeightMM;
    if (!widthFits || !heightFits) {
        return spt(
            "页面宽度须为 1.969–60 英寸，高度须为 1.969–708.661 英寸；两者都须大于 5 英寸，四边才能各留 2.5 "
            "英寸白边。另请核对设备和介质的限制。",
            "Page width must be 1.969–60 inches and height 1.969–708.661 inches. Both must exceed 5 inches for a "
            "2.5-inch border on every side. Check device and media limits as well.");
    }
    if (marginMM < 0.0 || 2.0 * marginMM >= std::min(widthMM, heightMM)) {
        return spt("页边距不能为负，且须小于页面短边的一半。",
                   "Margins must be nonnegative and less than half the shorter page dimension.");
    }
    return std::nullopt;
}

Size DocumentSettings::pageSize() const {
    return {points(widthMM), points(heightMM)};
}

Rect DocumentSettings::contentRect() const {
    const Size page = pageSize();
    const double margin = points(marginMM);
    return {margin, margin, page.width - 2.0 * margin, page.height - 2.0 * margin};
}

Rect DocumentSettings::imageRect(qint64 pixelWidth, qint64 pixelHeight) const {
    const Rect content = contentRect();
    const double sx = content.width / static_cast<double>(std::max<qint64>(pixelWidth, 1));
    const double sy = content.height / static_cast<double>(std::max<qint64>(pixelHeight, 1));
    const double scale = placement == Placement::fit ? std::min(sx, sy) : std::max(sx, sy);
    const double width = static_cast<double>(pixelWidth) * scale;
    const double height = static_cast<double>(pixelHeight) * scale;
    return {content.midX() - width / 2.0, content.midY() - height / 2.0, width, height};
}

DocumentSettings DocumentSettings::fromJson(const platform::JsonReader& reader) {
    const auto placementReader = reader.at("placement");
    const auto placement = orvex::placement(placementReader.text());
    if (!placement) {
        placementReader.fail(spt("未知的放置方式。", "Unknown placement."));
    }
    return {.widthMM = reader.at("widthMM").number(),
            .heightMM = reader.at("heightMM").number(),
            .marginMM = reader.at("marginMM").number(),
            .placement = *placement,
            .paperSource = reader.at("paperSource").text(),
            .mediaNote = reader.at("mediaNote").text(),
            .driverPageSize = reader.at("driverPageSize").text()};
}

QJsonObject DocumentSettings::toJson(platform::JsonNumbers numbers) const {
    return {{QStringLiteral("widthMM"), platform::jsonNumber("widthMM", widthMM, numbers)},
            {QStringLiteral("heightMM"), platform::jsonNumber("heightMM", heightMM, numbers)},
            {QStringLiteral("marginMM"), platform::jsonNumber("marginMM", marginMM, numbers)},
            {QStringLiteral("placement"), rawValue(placement)},
            {QStringLiteral("paperSource"), paperSource},
            {QStringLiteral("mediaNote"), mediaNote},
            {QStringLiteral("driverPageSize"), driverPageSize}};
}

} // namespace orvex
