#include "BatchSizeDraft.h"

#include "Layout/InchLayout.h"
#include "Layout/LayoutTexts.h"
#include "Layout/QuarterInchArtworkSizing.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "SizeTexts.h"

namespace orvex {

namespace {

QuarterInchArtworkSizing::Result nearestSize(const RollArtwork& artwork, double target, BatchDimension dimension,
                                             double rollWidth) {
    using namespace QuarterInchArtworkSizing;
    const Dimension edited = dimension == BatchDimension::width ? Dimension::width : Dimension::height;
    return size(artwork, target, edited, rollWidth, Strategy::bothDimensions);
}

void setSize(BatchSizeDraft& row, const QuarterInchArtworkSizing::Result& size) {
    row.width = size.widthInches;
    row.height = size.heightInches;
}

bool isPositive(const std::optional<double>& value) {
    return value && PrintUnits::isPositive(*value);
}

} // namespace

QString batchSizeNotPositive() {
    return spt("请输入大于零的有效尺寸（英寸）。", "Enter a valid size greater than zero, in inches.");
}

BatchSizeDraft BatchSizeDraft::make(const RollArtwork& item, double rollWidth) {
    BatchSizeDraft row{.item = item,
                       .rollWidth = rollWidth,
                       .reference = item,
                       .widthText = artworkSizeText(item.widthInches),
                       .heightText = artworkSizeText(item.heightInches()),
                       .width = item.widthInches,
                       .height = item.heightInches(),
                       .sizingIssue = std::nullopt};
    try {
        setSize(row, nearestSize(item, item.widthInches, BatchDimension::width, rollWidth));
        row.confirm();
    } catch (const OrvexError& error) {
        row.sizingIssue = error.message();
    }
    return row;
}

const QString& BatchSizeDraft::text(BatchDimension dimension) const {
    return dimension == BatchDimension::width ? widthText : heightText;
}

void BatchSizeDraft::edit(const QString& text, BatchDimension dimension) {
    const bool isWidth = dimension == BatchDimension::width;
    const auto value = PrintUnits::parseDecimalInput(text, QLocale());
    (isWidth ? widthText : heightText) = text;
    (isWidth ? width : height) = value;
    sizingIssue.reset();
    if (!value) {
        return;
    }
    try {
        setSize(*this, nearestSize(reference, *value, dimension, rollWidth));
        (isWidth ? heightText : widthText) = artworkSizeText(isWidth ? *height : *width);
    } catch (const OrvexError& error) {
        sizingIssue = error.message();
    }
}

void BatchSizeDraft::confirm() {
    if (sizingIssue || !width || !height) {
        return;
    }
    widthText = artworkSizeText(*width);
    heightText = artworkSizeText(*height);
}

void BatchSizeDraft::take(const RollArtwork& sized) {
    setSize(*this, nearestSize(sized, sized.widthInches, BatchDimension::width, rollWidth));
    reference = sized;
    sizingIssue.reset();
    confirm();
}

BatchArtworkSizeRequest BatchSizeDraft::request() const {
    if (sizingIssue) {
        // The Chinese brackets and colon stand in both languages.
        throw OrvexError::invalid(u'「' + LayoutTexts::titled(item.title + u'」', *sizingIssue));
    }
    if (!isPositive(width) || !isPositive(height)) {
        throw OrvexError::invalid(spt("「%1」：", "“%1”: ").arg(item.title) + batchSizeNotPositive());
    }
    return {.id = item.id, .widthInches = width, .heightInches = height};
}

} // namespace orvex
