#include "ArtworkTexts.h"

#include "InChinese.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

const QUuid firstID(QStringLiteral("{0f0e0d0c-0b0a-4908-8706-050403020100}"));
const QUuid secondID(QStringLiteral("{1f0e0d0c-0b0a-4908-8706-050403020100}"));

/// 24 x 16 inches of 2400 x 1600 pixels, at half its size.
RollArtwork artwork() {
    return RollArtwork::make({.id = firstID,
                              .sourceURL = QUrl(QStringLiteral("file:///pictures/harbour.tif")),
                              .pixelWidth = 2400,
                              .pixelHeight = 1600,
                              .originalWidthInches = 24.0,
                              .originalHeightInches = 16.0,
                              .widthInches = 12.0});
}

TEST(ArtworkTexts, TellThePixelsOfTheSource) {
    EXPECT_EQ(ArtworkTexts::pixelSize(artwork()), QStringLiteral("2400 × 1600 pixels"));
    EXPECT_EQ(ArtworkTexts::pixelSize(artwork().turned()), QStringLiteral("2400 × 1600 pixels"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::pixelSize(artwork()), QStringLiteral("2400 × 1600 像素"));
}

TEST(ArtworkTexts, TellTheSizeOnTheRoll) {
    EXPECT_EQ(ArtworkTexts::printSize(artwork()), QStringLiteral("12.00 × 8.00 in"));
    EXPECT_EQ(ArtworkTexts::printSize(artwork().turned()), QStringLiteral("8.00 × 12.00 in"));
    RollArtwork scaled = artwork();
    scaled.widthInches = 12.3;
    EXPECT_EQ(ArtworkTexts::printSize(scaled), QStringLiteral("12.3 × 8.2 in"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::printSize(artwork()), QStringLiteral("12.00 × 8.00 英寸"));
}

TEST(ArtworkTexts, TellTheReferenceSizeOfTheSource) {
    EXPECT_EQ(ArtworkTexts::originalReference(artwork()), QStringLiteral("Original reference: 24.00 × 16.00 in"));
    EXPECT_EQ(ArtworkTexts::originalReference(artwork().turned()),
              QStringLiteral("Original reference: 24.00 × 16.00 in"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::originalReference(artwork()), QStringLiteral("原图参考尺寸：24.00 × 16.00 英寸"));
}

TEST(ArtworkTexts, TellWhereTheSizeOfTheSourceCameFrom) {
    const QMap<QString, QString> descriptions{{QStringLiteral("0F0E0D0C-0B0A-4908-8706-050403020100"),
                                               QStringLiteral("文件两轴 DPI 不一致；按 300 ppi 估算并保持像素比例")}};
    EXPECT_EQ(ArtworkTexts::sizeSource(descriptions, firstID),
              QStringLiteral("The file reports different X/Y DPI; estimated at 300 ppi while keeping the pixel aspect "
                             "ratio"));
    EXPECT_EQ(ArtworkTexts::sizeSource(descriptions, secondID),
              QStringLiteral("Uses the reference size recorded in the file"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::sizeSource(descriptions, firstID),
              QStringLiteral("文件两轴 DPI 不一致；按 300 ppi 估算并保持像素比例"));
    EXPECT_EQ(ArtworkTexts::sizeSource(descriptions, secondID), QStringLiteral("使用文件中记录的参考尺寸"));
}

TEST(ArtworkTexts, TellTheFrameWithItsBorders) {
    EXPECT_EQ(ArtworkTexts::borderFrame(artwork()), QStringLiteral("Border frame: 17.00 × 13.00 in"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::borderFrame(artwork()), QStringLiteral("白边外框：17.00 × 13.00 英寸"));
}

TEST(ArtworkTexts, TellTheResolutionAndTheTurn) {
    EXPECT_EQ(ArtworkTexts::resolutionAndRotation(artwork()),
              QStringLiteral("Effective resolution: 200 ppi\nRotation: 0°"));
    EXPECT_EQ(ArtworkTexts::resolutionAndRotation(artwork().turned()),
              QStringLiteral("Effective resolution: 200 ppi\nRotation: 90°"));
    RollArtwork scaled = artwork();
    scaled.widthInches = 12.25;
    scaled.rotationQuarterTurns = 3;
    EXPECT_EQ(ArtworkTexts::resolutionAndRotation(scaled),
              QStringLiteral("Effective resolution: 130.612 ppi\nRotation: 270°"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::resolutionAndRotation(artwork()), QStringLiteral("有效分辨率：200 ppi\n旋转：0°"));
}

TEST(ArtworkTexts, NameARowAndItsRemoval) {
    RollArtwork hostile = artwork();
    hostile.title = QStringLiteral("%2 & <b>");
    EXPECT_EQ(ArtworkTexts::rowName(hostile), QStringLiteral("%2 & <b>, 12.00 × 8.00 in"));
    EXPECT_EQ(ArtworkTexts::removalName(hostile), QStringLiteral("Remove and repack: %2 & <b>"));
    const test::InChinese chinese;
    EXPECT_EQ(ArtworkTexts::rowName(artwork()), QStringLiteral("harbour.tif，12.00 × 8.00 英寸"));
    EXPECT_EQ(ArtworkTexts::removalName(artwork()), QStringLiteral("移除并自动补位：harbour.tif"));
}

TEST(ArtworkTexts, GiveTheWarningsInTheOrderOfTheArtworks) {
    RollArtwork second = artwork();
    second.id = secondID;
    const QHash<QUuid, QString> warnings{{firstID, QStringLiteral("gone")}, {secondID, QStringLiteral("changed")}};
    EXPECT_EQ(ArtworkTexts::loadWarnings({second, artwork()}, warnings),
              (QStringList{QStringLiteral("changed"), QStringLiteral("gone")}));
    EXPECT_EQ(ArtworkTexts::loadWarnings({artwork()}, {}), QStringList());
}

} // namespace
} // namespace orvex
