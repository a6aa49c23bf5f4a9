#include "BatchSizing/BatchRollPreview.h"

#include "LayoutFixtures.h"
#include "Theme/OrvexTheme.h"

namespace orvex {
namespace {

using test::artworkAt;
using test::InChinese;

constexpr QRgb white = 0xffffffff;

BatchArrangementPreview previewOf(const QList<RollArtwork>& items, double rollWidth = 60.0) {
    return {.layout = RollLayout(items, rollWidth), .conventionalLength = 100.0};
}

/// What the widget draws at a size, on black.
QImage drawn(BatchRollPreview& widget, QSize size) {
    widget.resize(size);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

QImage drawn(const BatchArrangementPreview& preview, QSize size) {
    BatchRollPreview widget;
    widget.setPreview(preview);
    return drawn(widget, size);
}

/// How many pixels of the rectangle are not white.
int marks(const QImage& image, const QRect& rect) {
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            count += image.pixel(x, y) != white ? 1 : 0;
        }
    }
    return count;
}

/// Whether a line of one pixel is dashed: marked in part.
bool isDashed(const QImage& image, const QRect& line) {
    const int count = marks(image, line);
    const int length = std::max(line.width(), line.height());
    return count > length / 4 && count < length;
}

/// A picture of four colours: red and green above, blue and yellow below.
QImage quarters() {
    QImage image(30, 20, QImage::Format_RGB32);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 30; ++x) {
            const bool right = x >= 15;
            image.setPixelColor(x, y, y < 10 ? (right ? Qt::green : Qt::red) : (right ? Qt::yellow : Qt::blue));
        }
    }
    return image;
}

/// The colours of the corners of what is drawn for one artwork of 30 x 20 that lies turned, clockwise from the top
/// left. Ten pixels are one inch.
std::vector<QColor> turnedCorners(qint64 quarterTurns) {
    RollArtwork artwork = artworkAt(0.0, 0.0, 30.0, 20.0);
    artwork.rotationQuarterTurns = quarterTurns;
    artwork.widthInches = quarterTurns % 2 == 0 ? 30.0 : 20.0;
    BatchRollPreview widget([](const RollArtwork&) { return quarters(); });
    const int length = quarterTurns % 2 == 0 ? 250 : 350;
    widget.setPreview(previewOf({artwork}));
    const QImage image = drawn(widget, {600, length});
    const int right = quarterTurns % 2 == 0 ? 320 : 220;
    const int bottom = length - 30;
    return {image.pixelColor(30, 30), image.pixelColor(right, 30), image.pixelColor(right, bottom),
            image.pixelColor(30, bottom)};
}

// To scale

TEST(BatchRollPreview, fillsTheWidthWithAShortRoll) {
    const QImage image = drawn(previewOf({artworkAt(0.0, 0.0, 25.0, 15.0)}), {600, 600}); // 20 inches long
    EXPECT_EQ(image.pixelColor(300, 199), QColor(Qt::black));
    EXPECT_EQ(image.pixel(590, 202), white);
    EXPECT_EQ(image.pixel(590, 398), white);
    EXPECT_EQ(image.pixelColor(300, 400), QColor(Qt::black));
}

TEST(BatchRollPreview, fillsTheHeightWithALongRoll) {
    const QImage image = drawn(previewOf({artworkAt(0.0, 0.0, 25.0, 115.0)}), {600, 600}); // 120 inches long
    EXPECT_EQ(image.pixelColor(148, 300), QColor(Qt::black));
    EXPECT_EQ(image.pixel(445, 2), white);
    EXPECT_EQ(image.pixel(445, 598), white);
    EXPECT_EQ(image.pixelColor(451, 300), QColor(Qt::black));
}

TEST(BatchRollPreview, drawsFramesDashedAtTheirPlaces) {
    // Ten pixels are one inch: frames of 30 x 20 and 20 x 25 inches.
    const QImage image =
        drawn(previewOf({artworkAt(0.0, 0.0, 25.0, 15.0, 1), artworkAt(35.0, 15.0, 15.0, 20.0, 2)}), {600, 400});
    EXPECT_TRUE(isDashed(image, QRect(5, 0, 290, 1)));
    EXPECT_TRUE(isDashed(image, QRect(5, 199, 290, 1)));
    EXPECT_TRUE(isDashed(image, QRect(0, 5, 1, 190)));
    EXPECT_TRUE(isDashed(image, QRect(299, 5, 1, 190)));
    EXPECT_TRUE(isDashed(image, QRect(355, 150, 190, 1)));
    EXPECT_TRUE(isDashed(image, QRect(355, 399, 190, 1)));
    EXPECT_TRUE(isDashed(image, QRect(350, 155, 1, 240)));
    EXPECT_TRUE(isDashed(image, QRect(549, 155, 1, 240)));
    EXPECT_EQ(marks(image, QRect(301, 0, 299, 149)), 0) << "right of the first frame";
    EXPECT_EQ(marks(image, QRect(0, 201, 349, 199)), 0) << "below the first frame";
    EXPECT_EQ(marks(image, QRect(551, 150, 49, 250)), 0) << "right of the second frame";
}

TEST(BatchRollPreview, leavesTheBorderBetweenFrameAndImage) {
    const QImage image = drawn(previewOf({artworkAt(0.0, 0.0, 55.0, 35.0)}), {600, 400});
    EXPECT_EQ(marks(image, QRect(1, 1, 598, 24)), 0);
    EXPECT_EQ(marks(image, QRect(1, 375, 598, 24)), 0);
    EXPECT_EQ(marks(image, QRect(1, 1, 24, 398)), 0);
    EXPECT_EQ(marks(image, QRect(575, 1, 24, 398)), 0);
    EXPECT_EQ(marks(image, QRect(25, 25, 550, 350)), 550 * 350);
}

// Pictures

TEST(BatchRollPreview, drawsATintedAreaForAMissingPicture) {
    const QImage image = drawn(previewOf({artworkAt(0.0, 0.0, 55.0, 35.0)}), {600, 400});
    const QColor tint = image.pixelColor(300, 200);
    EXPECT_NE(tint, QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(30, 30), tint);
    EXPECT_EQ(image.pixelColor(570, 370), tint);
}

TEST(BatchRollPreview, drawsThePictureOfEachArtwork) {
    BatchRollPreview widget([](const RollArtwork& artwork) {
        QImage image(10, 10, QImage::Format_RGB32);
        image.fill(artwork.id == test::id(1) ? Qt::red : Qt::green);
        return image;
    });
    widget.setPreview(previewOf({artworkAt(0.0, 0.0, 25.0, 35.0, 1), artworkAt(30.0, 0.0, 25.0, 35.0, 2)}));
    const QImage image = drawn(widget, {600, 400});
    EXPECT_EQ(image.pixelColor(150, 200), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(450, 200), QColor(Qt::green));
}

TEST(BatchRollPreview, drawsAnUprightPictureAsItIs) {
    EXPECT_EQ(turnedCorners(0), (std::vector<QColor>{Qt::red, Qt::green, Qt::yellow, Qt::blue}));
}

TEST(BatchRollPreview, turnsPicturesClockwise) {
    EXPECT_EQ(turnedCorners(1), (std::vector<QColor>{Qt::blue, Qt::red, Qt::green, Qt::yellow}));
    EXPECT_EQ(turnedCorners(2), (std::vector<QColor>{Qt::yellow, Qt::blue, Qt::red, Qt::green}));
    EXPECT_EQ(turnedCorners(3), (std::vector<QColor>{Qt::green, Qt::yellow, Qt::blue, Qt::red}));
}

// The whole

TEST(BatchRollPreview, drawsNothingBeforeThereIsAnArrangement) {
    BatchRollPreview widget;
    const QImage image = drawn(widget, {200, 200});
    QImage black(image.size(), image.format());
    black.fill(Qt::black);
    EXPECT_EQ(image, black);
}

TEST(BatchRollPreview, drawsNothingOfARollWithoutALength) {
    RollArtwork lost = artworkAt(0.0, 0.0, 10.0, 10.0);
    lost.yInches = std::numeric_limits<double>::quiet_NaN();
    const QImage image = drawn(previewOf({lost}), {200, 200});
    EXPECT_EQ(image.pixelColor(100, 100), QColor(Qt::black));
}

TEST(BatchRollPreview, drawsTheArrangementThatItWasGivenLast) {
    BatchRollPreview widget;
    widget.setPreview(previewOf({artworkAt(0.0, 0.0, 55.0, 35.0)}));
    widget.setPreview(previewOf({artworkAt(30.0, 0.0, 25.0, 35.0)}));
    const QImage image = drawn(widget, {600, 400});
    EXPECT_EQ(image.pixel(150, 200), white);
    EXPECT_NE(image.pixel(450, 200), white);
}

TEST(BatchRollPreview, isNamedForThoseWhoHearTheScreen) {
    BatchRollPreview widget;
    widget.setPreview(previewOf({artworkAt(0.0, 0.0, 55.0, 35.5)}));
    EXPECT_EQ(widget.accessibleName().toStdString(), "Optimized preview, 60 inches wide, 40.5 inches long, 1 artworks");
    const InChinese chinese;
    widget.setPreview(previewOf({artworkAt(0.0, 0.0, 55.0, 35.5)}));
    EXPECT_EQ(widget.accessibleName().toStdString(), "省布排版预览，宽 60 英寸，长 40.5 英寸，共 1 幅作品");
}

} // namespace
} // namespace orvex
