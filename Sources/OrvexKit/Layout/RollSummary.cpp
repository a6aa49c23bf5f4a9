#include "Layout/RollSummary.h"

#include "Layout/Document.h"
#include "Layout/InchLayout.h"
#include "OrvexLanguage.h"

namespace orvex {

namespace {

/// How much of the canvas is covered, in percent, by that many square inches of each artwork.
double coveredPercent(const RollLayout& layout, double (*areaOf)(const RollArtwork&)) {
    double covered = 0;
    for (const RollArtwork& item : layout.items) {
        covered += areaOf(item);
    }
    const double canvas = layout.widthInches * layout.lengthInches();
    return canvas > 0 ? std::clamp(covered / canvas * 100, 0.0, 100.0) : 0.0;
}

double trimArea(const RollArtwork& item) {
    const Rect frame = item.trimRectInches();
    return frame.width * frame.height;
}

double imageArea(const RollArtwork& item) {
    return item.widthInches * item.heightInches();
}

} // namespace

double utilizationPercent(const RollLayout& layout) {
    return coveredPercent(layout, trimArea);
}

double imageUtilizationPercent(const RollLayout& layout) {
    return coveredPercent(layout, imageArea);
}

std::optional<QString> rollAdvisory(const RollLayout& layout) {
    if (!(layout.lengthInches() > PrintUnits::inches(DocumentSettings::maximumPageHeightMM))) {
        return std::nullopt;
    }
    return spt("排版长度超过当前驱动已知的单页长度上限（约 708.661 "
               "英寸）。画布可以继续延长，但实际打印前须核对设备限制并考虑分段。",
               "The layout exceeds the current driver’s known single-page length of about 708.661 inches. The canvas "
               "can extend further, but actual printing requires checking device limits and segmentation.");
}

} // namespace orvex
