#include "BatchArrangementPreview.h"

#include "Layout/NumberText.h"
#include "Layout/RollSummary.h"
#include "OrvexLanguage.h"
#include "SizeTexts.h"

#include <algorithm>

namespace orvex {

namespace {

constexpr double gapInches = 0.0; // trim frames touch, as the panel says

QString percentText(double percent) {
    return formatFixedNumber(percent, 1);
}

} // namespace

BatchArrangementPreview BatchArrangementPreview::make(const RollLayout& sized, bool allowQuarterTurns) {
    RollLayout conventional = sized;
    conventional.autoArrange(gapInches);
    RollLayout optimized = sized;
    optimized.optimizeArrangement(allowQuarterTurns, gapInches);
    return {.layout = optimized, .conventionalLength = conventional.lengthInches()};
}

double BatchArrangementPreview::utilization() const {
    return utilizationPercent(layout);
}

double BatchArrangementPreview::imageUtilization() const {
    return imageUtilizationPercent(layout);
}

double BatchArrangementPreview::savedLength() const {
    return std::max(conventionalLength - layout.lengthInches(), 0.0);
}

QString BatchArrangementPreview::accessibilityLabel() const {
    return spt("省布排版预览，宽 %1 英寸，长 %2 英寸，共 %3 幅作品",
               "Optimized preview, %1 inches wide, %2 inches long, %3 artworks")
        .arg(batchNumber(layout.widthInches), batchNumber(layout.lengthInches()), QString::number(layout.items.size()));
}

QString BatchArrangementPreview::headline() const {
    return spt("%1 × %2 英寸", "%1 × %2 in").arg(batchNumber(layout.widthInches), batchNumber(layout.lengthInches()));
}

QString BatchArrangementPreview::comparison() const {
    return spt("相同尺寸的常规排版：长 %1 英寸\n节省画布：%2 英寸\n含白边的占布率：%3%\n画面占布率：%4%",
               "Conventional layout at the same sizes: %1 in long\nCanvas saved: %2 in\nUtilization including borders: "
               "%3%\nArtwork utilization: %4%")
        .arg(batchNumber(conventionalLength), batchNumber(savedLength()), percentText(utilization()),
             percentText(imageUtilization()));
}

} // namespace orvex
