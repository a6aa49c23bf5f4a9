#include "Output/NativePrintDocument.h"

#include "Files/Paths.h"
#include "Layout/InchLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/RollPDFLimits.h"
#include "PDF/PdfView.h"

#include <array>

namespace orvex {

namespace {

using namespace RollPDFLimits;
using platform::PdfStructure;
using platform::PdfView;
using PrintUnits::pointsPerInch;

constexpr qint64 fullTurnDegrees = 360;

void require(bool condition, const QString& message) {
    if (!condition) {
        throw OrvexError::invalid(message);
    }
}

bool isPositive(double value) {
    return std::isfinite(value) && value > 0;
}

/// False for values that are no numbers, too.
bool isSame(double a, double b) {
    return std::abs(a - b) <= sizeTolerancePoints + roundingPoints;
}

bool isSameSize(const Size& a, const Size& b) {
    return isSame(a.width, b.width) && isSame(a.height, b.height);
}

bool isPageBox(const Rect& box) {
    return std::isfinite(box.x) && std::isfinite(box.y) && isPositive(box.width) && isPositive(box.height);
}

bool isAsExpected(const std::optional<double>& expectedInches, double physicalPoints) {
    return !expectedInches || (isPositive(*expectedInches) && isSame(*expectedInches * pointsPerInch, physicalPoints));
}

Rect rect(const platform::PdfBox& box) {
    return {box.x, box.y, box.width, box.height};
}

template <typename Reader>
Reader open(const QString& path) {
    try {
        return Reader::open(path);
    } catch (const Failure&) {
        // Whether the file is missing or is no PDF, the answer is the same.
        throw OrvexError::invalid(spt("无法读取要打印的 PDF。原文件和作业记录均已保留。",
                                      "Cannot read the PDF to print. The original file and job record were kept."));
    }
}

void checkPage(const PdfStructure& document, const PdfView& view) {
    require(!document.isEncrypted() && document.isUnlocked() && !view.isEncrypted() && !view.isLocked(),
            spt("此 PDF 已加密或需要密码。未打开直接打印。",
                "This PDF is encrypted or requires a password. Direct printing was not opened."));
    require(document.pageCount() == 1 && view.pageCount() == 1 && view.hasFirstPage(),
            spt("直接打印需要完整的单页卷布 PDF。原文件已保留。",
                "Direct printing requires a complete single-page roll PDF. The original file was kept."));
    const auto rotation = document.rotationDegrees();
    require(rotation && *rotation % fullTurnDegrees == 0 && view.rotationDegrees() % fullTurnDegrees == 0,
            spt("此 PDF 使用了页面旋转，因此无法确认卷布的实际方向。请使用此前验证过的打印流程。",
                "This PDF uses page rotation, so its physical roll orientation cannot be confirmed. Use the previously "
                "verified print workflow."));
    require(NativePrintFactory::matchingBounds(rect(document.cropBox()), rect(document.mediaBox())) &&
                NativePrintFactory::matchingBounds(rect(view.cropBox()), rect(view.mediaBox())),
            spt("PDF 的裁剪区域与整个页面不一致。为避免裁掉作品，未打开直接打印。",
                "The PDF crop area differs from the full page. Direct printing was not opened to avoid cropping the "
                "artwork."));
}

double userUnit(const PdfStructure& document) {
    require(!std::holds_alternative<platform::PdfUserUnitNotANumber>(document.userUnit()),
            spt("PDF 的 UserUnit 不是有效数字。未打开打印。",
                "The PDF UserUnit is not a valid number. Print was not opened."));
    const double* value = std::get_if<double>(&document.userUnit());
    return value == nullptr ? 1.0 : *value;
}

} // namespace

NativePrintGeometry NativePrintGeometry::make(const Rect& mediaBounds, double userUnit, const Rect& viewBounds,
                                              const std::optional<double>& expectedWidthInches,
                                              const std::optional<double>& expectedHeightInches) {
    require(isPageBox(mediaBounds) && isPageBox(viewBounds) && isPositive(userUnit) && userUnit <= largestUserUnit,
            spt("PDF 的页面尺寸或 UserUnit 无效。未打开打印。",
                "The PDF page dimensions or UserUnit are invalid. Print was not opened."));
    const Size physical{userUnit * mediaBounds.width, userUnit * mediaBounds.height};
    require(isPositive(physical.width) && isPositive(physical.height) && physical.width <= widestPagePoints,
            spt("PDF 页面宽于 60 英寸，或实际尺寸无效。请检查排版。",
                "The PDF page is wider than 60 inches or has invalid physical dimensions. Check the layout."));
    const Size viewed{viewBounds.width, viewBounds.height};
    require(
        isSameSize(viewed, {mediaBounds.width, mediaBounds.height}) || isSameSize(viewed, physical),
        spt("系统报告的 PDF 页面几何信息不一致。为避免缩小作品，已停止直接打印。",
            "The system reported inconsistent PDF page geometry. Direct printing was stopped to avoid shrinking the "
            "artwork."));
    require(isAsExpected(expectedWidthInches, physical.width) && isAsExpected(expectedHeightInches, physical.height),
            spt("保存的 PDF 尺寸与作业记录不符。未打开打印。",
                "The saved PDF dimensions do not match the job record. Print was not opened."));
    return {.physicalSizePoints = physical, .userUnit = userUnit};
}

double NativePrintGeometry::widthInches() const {
    return physicalSizePoints.width / pointsPerInch;
}

double NativePrintGeometry::heightInches() const {
    return physicalSizePoints.height / pointsPerInch;
}

PaperOrientation NativePrintGeometry::paperOrientation() const {
    return physicalSizePoints.height < physicalSizePoints.width ? PaperOrientation::landscape
                                                                : PaperOrientation::portrait;
}

namespace NativePrintFactory {

bool matchingBounds(const Rect& a, const Rect& b) {
    return isSame(a.minX(), b.minX()) && isSame(a.minY(), b.minY()) && isSame(a.width, b.width) &&
           isSame(a.height, b.height);
}

NativePrintSource openDocument(const QUrl& pdfURL, const std::optional<double>& expectedWidthInches,
                               const std::optional<double>& expectedHeightInches) {
    const QString path = platform::localPath(pdfURL);
    const auto document = open<PdfStructure>(path);
    const auto view = open<PdfView>(path);
    checkPage(document, view);
    const double unit = userUnit(document);
    return {.pdfURL = pdfURL,
            .document = document,
            .geometry = NativePrintGeometry::make(rect(document.mediaBox()), unit, rect(view.mediaBox()),
                                                  expectedWidthInches, expectedHeightInches)};
}

} // namespace NativePrintFactory

} // namespace orvex
