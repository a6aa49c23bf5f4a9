#include "BoardTexts.h"

#include "OrvexLanguage.h"
#include "SizeTexts.h"

namespace orvex {

QString BoardTexts::accessibilityLabel(const RollLayout& layout) {
    return spt("%1 英寸卷布画板，导出长度 %2 英寸", "%1-inch roll canvas, export length %2 inches")
        .arg(inchesText(layout.widthInches), inchesText(layout.lengthInches()));
}

QString BoardTexts::accessibilityLabel(const RollArtwork& artwork) {
    return spt("%1，%2 × %3 英寸，手裁框距卷布左侧 %4 英寸，距卷布起点 %5 英寸",
               "%1, %2 by %3 inches, trim frame %4 inches from the left and %5 inches from the roll start")
        .arg(artwork.title, artworkSizeText(artwork.widthInches), artworkSizeText(artwork.heightInches()),
             artworkSizeText(artwork.xInches), artworkSizeText(artwork.yInches));
}

} // namespace orvex
