#include "BatchArrangementPreview.h"

#include "InLocale.h"
#include "LayoutFixtures.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::artwork;
using test::artworkAt;
using test::InChinese;

/// A trim frame of 25 × 15 inches at the start of a roll of 60.
BatchArrangementPreview previewOfOne(double conventionalLength) {
    return {.layout = RollLayout({artwork(20.0, 10.0)}), .conventionalLength = conventionalLength};
}

TEST(BatchArrangementPreview, tellsHowMuchOfTheCanvasIsCovered) {
    const BatchArrangementPreview preview = previewOfOne(15.0);
    EXPECT_EQ(preview.utilization(), 25.0 * 15.0 / (60.0 * 15.0) * 100.0);
    EXPECT_EQ(preview.imageUtilization(), 20.0 * 10.0 / (60.0 * 15.0) * 100.0);
}

TEST(BatchArrangementPreview, coversNoMoreThanAllAndNothingOfAnEmptyRoll) {
    const BatchArrangementPreview overlapping{.layout = RollLayout({artwork(55.0, 50.0, 1), artwork(55.0, 50.0, 2)}),
                                              .conventionalLength = 0.0};
    EXPECT_EQ(overlapping.utilization(), 100.0);
    EXPECT_EQ(overlapping.imageUtilization(), 100.0);
    const BatchArrangementPreview empty{.layout = RollLayout(), .conventionalLength = 0.0};
    EXPECT_EQ(empty.utilization(), 0.0);
    EXPECT_EQ(empty.imageUtilization(), 0.0);
}

TEST(BatchArrangementPreview, savesNothingWhereThePlainArrangementIsShorter) {
    EXPECT_EQ(previewOfOne(40.0).savedLength(), 25.0);
    EXPECT_EQ(previewOfOne(15.0).savedLength(), 0.0);
    EXPECT_EQ(previewOfOne(10.0).savedLength(), 0.0);
}

TEST(BatchArrangementPreview, saysWhatItComesTo) {
    const BatchArrangementPreview preview = previewOfOne(40.1234567);
    EXPECT_EQ(preview.headline().toStdString(), "60 × 15 in");
    EXPECT_EQ(preview.comparison().toStdString(), "Conventional layout at the same sizes: 40.123457 in long\n"
                                                  "Canvas saved: 25.123457 in\n"
                                                  "Utilization including borders: 41.7%\n"
                                                  "Artwork utilization: 22.2%");
    EXPECT_EQ(preview.accessibilityLabel().toStdString(),
              "Optimized preview, 60 inches wide, 15 inches long, 1 artworks");
}

TEST(BatchArrangementPreview, saysItInChinese) {
    const InChinese chinese;
    const BatchArrangementPreview preview = previewOfOne(10.0);
    EXPECT_EQ(preview.headline().toStdString(), "60 × 15 英寸");
    EXPECT_EQ(preview.comparison().toStdString(), "相同尺寸的常规排版：长 10 英寸\n"
                                                  "节省画布：0 英寸\n"
                                                  "含白边的占布率：41.7%\n"
                                                  "画面占布率：22.2%");
    EXPECT_EQ(preview.accessibilityLabel().toStdString(), "省布排版预览，宽 60 英寸，长 15 英寸，共 1 幅作品");
}

TEST(BatchArrangementPreview, showsPercentagesWithOneDigitAndTheLocalesNumbers) {
    const test::InLocale german("de_DE");
    const BatchArrangementPreview full{.layout = RollLayout({artwork(55.0, 1227.5)}), .conventionalLength = 1232.5};
    EXPECT_EQ(full.comparison().toStdString(), "Conventional layout at the same sizes: 1232,5 in long\n"
                                               "Canvas saved: 0 in\n"
                                               "Utilization including borders: 100,0%\n"
                                               "Artwork utilization: 91,3%");
}

TEST(BatchArrangementPreview, comparesBothArrangementsOfTheSameSizesWithoutAGap) {
    // Frames of 35 × 25 and 25 × 35, which lie side by side.
    const RollLayout sized({artworkAt(0.0, 100.0, 30.0, 20.0, 1), artwork(20.0, 30.0, 2)});
    RollLayout conventional = sized;
    conventional.autoArrange(0.0);
    RollLayout optimized = sized;
    optimized.optimizeArrangement(true, 0.0);
    const BatchArrangementPreview preview = BatchArrangementPreview::make(sized, true);
    EXPECT_EQ(preview.layout, optimized);
    EXPECT_EQ(preview.conventionalLength, conventional.lengthInches());
    EXPECT_EQ(preview.layout.lengthInches(), 35.0);
}

TEST(BatchArrangementPreview, turnsOnlyWhereAllowed) {
    // Two frames of 35 × 25 need 50 inches of canvas, and 35 where one of them lies turned.
    const RollLayout sized({artwork(30.0, 20.0, 1), artwork(30.0, 20.0, 2)});
    EXPECT_EQ(BatchArrangementPreview::make(sized, false).layout.lengthInches(), 50.0);
    EXPECT_EQ(BatchArrangementPreview::make(sized, true).layout.lengthInches(), 35.0);
    EXPECT_EQ(BatchArrangementPreview::make(sized, true).conventionalLength, 50.0);
}

TEST(BatchArrangementPreview, refusesALayoutThatCannotBeArranged) {
    EXPECT_NE(test::refusalOf([] { (void)BatchArrangementPreview::make(RollLayout({artwork(56.0, 20.0)}), true); }),
              "(none)");
}

} // namespace
} // namespace orvex
