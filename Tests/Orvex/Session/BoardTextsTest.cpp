#include "BoardTexts.h"

#include "InChinese.h"
#include "InLocale.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::InChinese;

RollArtwork artwork(const char* title) {
    RollArtwork artwork = RollArtwork::make({.id = QUuid(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
                                             .sourceURL = QUrl(QStringLiteral("file:///a.png")),
                                             .title = QString::fromUtf8(title),
                                             .pixelWidth = 3000,
                                             .pixelHeight = 2000,
                                             .widthInches = 24.0,
                                             .xInches = 0.0,
                                             .yInches = 1.3});
    return artwork;
}

TEST(BoardTexts, nameTheBoardByItsSize) {
    const RollLayout layout({artwork("a")}, 59.5);
    EXPECT_EQ(BoardTexts::accessibilityLabel(layout).toStdString(), "59.5-inch roll canvas, export length 22.3 inches");
    const InChinese chinese;
    EXPECT_EQ(BoardTexts::accessibilityLabel(layout).toStdString(), "59.5 英寸卷布画板，导出长度 22.3 英寸");
}

TEST(BoardTexts, nameAnEmptyBoard) {
    EXPECT_EQ(BoardTexts::accessibilityLabel(RollLayout()).toStdString(),
              "60-inch roll canvas, export length 0 inches");
}

TEST(BoardTexts, nameAnArtworkByItsSizeAndPlace) {
    EXPECT_EQ(BoardTexts::accessibilityLabel(artwork("dawn.png")).toStdString(),
              "dawn.png, 24.00 by 16.00 inches, trim frame 0.00 inches from the left and 1.3 inches from the roll "
              "start");
    const InChinese chinese;
    EXPECT_EQ(BoardTexts::accessibilityLabel(artwork("黎明.png")).toStdString(),
              "黎明.png，24.00 × 16.00 英寸，手裁框距卷布左侧 0.00 英寸，距卷布起点 1.3 英寸");
}

TEST(BoardTexts, leavePlaceholdersInATitleAlone) {
    EXPECT_EQ(BoardTexts::accessibilityLabel(artwork("50%2.png")).left(16).toStdString(), "50%2.png, 24.00 ");
}

TEST(BoardTexts, showNumbersInTheCurrentLocale) {
    const test::InLocale german("de_DE");
    EXPECT_EQ(BoardTexts::accessibilityLabel(RollLayout({}, 59.5)).toStdString(),
              "59,5-inch roll canvas, export length 0 inches");
    EXPECT_EQ(BoardTexts::accessibilityLabel(artwork("a")).toStdString(),
              "a, 24,00 by 16,00 inches, trim frame 0,00 inches from the left and 1,3 inches from the roll start");
}

} // namespace
} // namespace orvex
