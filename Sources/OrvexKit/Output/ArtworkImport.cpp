#include "Output/ArtworkImport.h"

#include "Layout/InchLayout.h"
#include "Layout/QuarterInchArtworkSizing.h"

namespace orvex {

RollArtwork artworkOf(const ImageMetadata& metadata, double rollWidthInches) {
    return RollArtwork::make(
        {.id = QUuid::createUuid(),
         .sourceURL = metadata.url,
         .pixelWidth = metadata.pixelWidth,
         .pixelHeight = metadata.pixelHeight,
         .originalWidthInches = metadata.originalWidthInches,
         .originalHeightInches = metadata.originalHeightInches,
         .widthInches = std::min(rollWidthInches - PrintUnits::bothBordersInches, metadata.originalWidthInches)});
}

RollArtwork importedArtwork(const ImageMetadata& metadata, double rollWidthInches) {
    RollArtwork artwork = artworkOf(metadata, rollWidthInches);
    artwork.widthInches =
        QuarterInchArtworkSizing::size(artwork, artwork.widthInches, QuarterInchArtworkSizing::Dimension::width,
                                       rollWidthInches, QuarterInchArtworkSizing::Strategy::bothDimensions)
            .widthInches;
    return artwork;
}

} // namespace orvex
