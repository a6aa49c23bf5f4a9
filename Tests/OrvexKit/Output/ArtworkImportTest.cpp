#include "Output/ArtworkImport.h"

#include "OrvexError.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

class ArtworkImport : public ::testing::Test {
protected:
    /// A picture of that size at 10 pixels per inch.
    ImageMetadata metadata(quint32 width, quint32 height) {
        test::TiffFixture tiff{.width = width, .height = height};
        tiff.density = {10, 10};
        tiff.pixels.fill('\x5a', qsizetype{3} * width * height);
        return ImageMetadata::load(QUrl::fromLocalFile(folder_.write(QStringLiteral("山 one.tif"), tiff.bytes())));
    }

    test::TemporaryFolder folder_;
};

TEST_F(ArtworkImport, takesTheNaturalSizeTheNameAndAnIdOfItsOwn) {
    const RollArtwork artwork = artworkOf(metadata(240, 160), 60.0);
    EXPECT_EQ(artwork.widthInches, 24.0);
    EXPECT_EQ(artwork.heightInches(), 16.0);
    EXPECT_EQ(artwork.title, QStringLiteral("山 one.tif"));
    EXPECT_EQ(artwork.pixelWidth, 240);
    EXPECT_FALSE(artwork.id.isNull());
    EXPECT_NE(artwork.id, artworkOf(metadata(240, 160), 60.0).id);
    EXPECT_EQ(artwork.validationError(60.0), std::nullopt);
}

TEST_F(ArtworkImport, isNoWiderThanTheRollWithoutBorders) {
    EXPECT_EQ(artworkOf(metadata(900, 600), 44.0).widthInches, 39.0);
}

TEST_F(ArtworkImport, hasWholeQuarterInchesOnBothSides) {
    const RollArtwork artwork = importedArtwork(metadata(243, 486), 60.0);
    EXPECT_EQ(artwork.widthInches, 24.25); // the nearest to 24.3
    EXPECT_EQ(artwork.heightInches(), 48.5);
    EXPECT_EQ(importedArtwork(metadata(900, 600), 44.0).widthInches, 39.0);
}

TEST_F(ArtworkImport, isRefusedWithoutSuchASize) {
    const ImageMetadata odd = metadata(401, 300);
    try {
        (void)importedArtwork(odd, 60.0);
        FAIL() << "no size was to be found";
    } catch (const OrvexError& error) {
        EXPECT_EQ(error.message(),
                  QStringLiteral("No exact-aspect-ratio size with both dimensions in 1/4-inch increments "
                                 "fits this roll. The artwork was not changed, stretched or rounded "
                                 "at lower precision."));
    }
}

} // namespace
} // namespace orvex
