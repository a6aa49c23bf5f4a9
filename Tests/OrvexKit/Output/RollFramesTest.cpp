#include "Layout/InchLayout.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/RollPDFRenderer.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvex {
namespace {

RollArtwork artworkAt(double x, double y, double width = 10, qint64 turns = 0) {
    RollArtwork artwork = RollArtwork::make({.id = QUuid::createUuid(),
                                             .sourceURL = QUrl(QStringLiteral("file:///tmp/a.jpg")),
                                             .pixelWidth = 200,
                                             .pixelHeight = 100,
                                             .widthInches = width,
                                             .xInches = x,
                                             .yInches = y,
                                             .rotationQuarterTurns = turns});
    return artwork;
}

QString refusal(const QList<RollArtwork>& items, double pageLengthPoints = 72 * 100) {
    try {
        RollPDFRenderer::validateFrames(RollLayout(items), {0, 0, 60 * 72, pageLengthPoints});
    } catch (const OrvexError& error) {
        return error.message();
    }
    return {};
}

const QString borderMessage = QStringLiteral("The artwork lies outside the roll, has invalid dimensions, or does not "
                                             "retain a 2.5-inch white border on every side.");
const QString overlapMessage =
    QStringLiteral("Artwork images or their white borders overlap. Adjust the roll layout first.");

constexpr double inchesFor(double points) {
    return points / PrintUnits::pointsPerInch;
}

TEST(UserUnit, isOneUpToTwoHundredInches) {
    EXPECT_EQ(RollPDFRenderer::userUnit(4320, 14400), 1.0);
    EXPECT_EQ(RollPDFRenderer::userUnit(4320, 100), 1.0);
}

TEST(UserUnit, bringsALongerRollWithinAPage) {
    EXPECT_EQ(RollPDFRenderer::userUnit(4320, 28800), 2.0);
    EXPECT_EQ(RollPDFRenderer::userUnit(4320, 14400.0 * 75000), 75000.0);
    EXPECT_GT(RollPDFRenderer::userUnit(4320, 14401), 1.0);
}

TEST(PageRect, turnsTheRollUpsideDown) {
    EXPECT_EQ(RollPDFRenderer::pageRect({1, 2, 3, 4}, 720), (Rect{72, 720 - 432, 216, 288}));
}

TEST(ValidateFrames, passesFramesThatShareAnEdge) {
    EXPECT_EQ(refusal({artworkAt(0, 0), artworkAt(15, 0), artworkAt(0, 10)}), QString());
}

TEST(ValidateFrames, passesATurnedArtwork) {
    EXPECT_EQ(refusal({artworkAt(0, 0, 5, 1), artworkAt(10, 0, 5, 3)}), QString());
}

TEST(ValidateFrames, stopsFramesThatOverlapInBothAxes) {
    const double little = inchesFor(0.00002);
    EXPECT_EQ(refusal({artworkAt(0, 0), artworkAt(15 - little, 10 - little)}), overlapMessage);
}

TEST(ValidateFrames, passesAnOverlapInOneAxisOrLessThanItsTolerance) {
    const double little = inchesFor(0.00002);
    const double less = inchesFor(0.000005);
    EXPECT_EQ(refusal({artworkAt(0, 0), artworkAt(15, 10 - little)}), QString());
    EXPECT_EQ(refusal({artworkAt(0, 0), artworkAt(15 - less, 5)}), QString());
}

TEST(ValidateFrames, stopsARepeatedId) {
    const RollArtwork artwork = artworkAt(0, 0);
    RollArtwork other = artworkAt(20, 0);
    other.id = artwork.id;
    EXPECT_EQ(refusal({artwork, other}), borderMessage);
}

TEST(ValidateFrames, stopsFramesOutsideThePage) {
    EXPECT_EQ(refusal({artworkAt(-0.001, 0)}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(45.001, 0)}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 91)}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0)}, 10 * 72 - 0.001), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0)}, 10 * 72 - 0.000005), QString());
}

TEST(ValidateFrames, stopsNumbersThatAreNone) {
    EXPECT_EQ(refusal({artworkAt(std::numeric_limits<double>::quiet_NaN(), 0)}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0, std::numeric_limits<double>::infinity())}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0, -1)}), borderMessage);
}

TEST(ValidateFrames, stopsImpossiblePixelsAndTurns) {
    RollArtwork artwork = artworkAt(0, 0);
    artwork.pixelWidth = 0;
    EXPECT_EQ(refusal({artwork}), borderMessage);
    artwork = artworkAt(0, 0);
    artwork.pixelHeight = -1;
    EXPECT_EQ(refusal({artwork}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0, 10, 4)}), borderMessage);
    EXPECT_EQ(refusal({artworkAt(0, 0, 10, -1)}), borderMessage);
}

TEST(ValidateFrames, stopsADistortedArtworkByItsTitle) {
    RollArtwork artwork = artworkAt(0, 0);
    artwork.title = QStringLiteral("50%1 off");
    artwork.pixelHeight = 101;
    EXPECT_EQ(refusal({artwork}),
              QStringLiteral("The layout aspect ratio of “50%1 off” does not match its source. Export was stopped to "
                             "avoid distortion."));
}

TEST(ValidateFrames, speaksChinese) {
    OrvexLanguage::setConfigured(QStringLiteral("zh-Hans"));
    EXPECT_EQ(refusal({artworkAt(0, 0), artworkAt(1, 1)}),
              QStringLiteral("作品画面或其白边相互重叠。请先调整卷布排版。"));
    OrvexLanguage::setConfigured(QStringLiteral("en"));
}

} // namespace
} // namespace orvex
