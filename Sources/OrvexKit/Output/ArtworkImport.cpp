#include "Output/ArtworkImport.h"

#include "Layout/InchLayout.h"
#include "Layout/QuarterInchArtworkSizing.h"

namespace orvex {

RollArtwork importedArtwork(const ImageMetadata& metadata, double rollWidthInches) {
    RollArtwork artwork = RollArtwork::make({.id = QUuid::createUuid(),
                                             .sourceURL = metadata.url,
                                             .pixelWidth = metadata.pixelWidth,
                                             .pixelHeight = metadata.pixelHeight,
                                             .originalWidthInches = metadata.originalWidthInches,
                                             .originalHeightInches = metadata.originalHeightInches});
    const double target = std::min(rollWidthInches - PrintUnits::bothBordersInches, metadata.originalWidthInches);
    artwork.widthInches =
        QuarterInchArtworkSizing::size(artwork, target, QuarterInchArtworkSizing::Dimension::width, rollWidthInches,
                                       QuarterInchArtworkSizing::Strategy::bothDimensions)
            .widthInches;
    return artwork;
}

} // namespace orvex
