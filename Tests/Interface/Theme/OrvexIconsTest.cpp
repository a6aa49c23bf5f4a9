#include "Theme/OrvexIcons.h"

#include "Theme/OrvexTheme.h"

#include <QDir>
#include <QPixmap>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvex {
namespace {

using OrvexIcons::Symbol;

constexpr int symbolCount = static_cast<int>(Symbol::remove) + 1;
const QColor magenta(0xff, 0x00, 0xff);

QImage drawn(const QIcon& icon, int pixels, QIcon::Mode mode = QIcon::Normal) {
    return icon.pixmap(QSize(pixels, pixels), 1.0, mode).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How many pixels are more drawn than not.
int drawnPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += qAlpha(image.pixel(x, y)) >= 128 ? 1 : 0;
        }
    }
    return count;
}

/// The colours of the pixels that hide their ground so far, each once.
QList<QColor> colors(const QImage& image, int leastAlpha = 255) {
    QList<QColor> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const QColor color = pixel.rgb(); // without its alpha
            if (pixel.alpha() >= leastAlpha && !found.contains(color)) {
                found.append(color);
            }
        }
    }
    return found;
}

/// The program's own pictures, whatever icon theme the machine has.
class OwnSymbol : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override {
        QIcon::setThemeName(QStringLiteral("none"));
        QIcon::setFallbackThemeName(QStringLiteral("none"));
    }

    static Symbol symbol() { return static_cast<Symbol>(GetParam()); }
};

TEST_P(OwnSymbol, isSeenAtTheSizeOfAButton) {
    constexpr int oneSide = 16;
    const int seen = drawnPixels(drawn(OrvexIcons::icon(symbol(), magenta), oneSide));
    EXPECT_GE(seen, oneSide);
    EXPECT_LT(seen, oneSide * oneSide / 2); // it is made of lines
}

TEST_P(OwnSymbol, hasTheColorThatWasAskedFor) {
    EXPECT_EQ(colors(drawn(OrvexIcons::icon(symbol(), magenta), 16), 1), QList{magenta});
    EXPECT_EQ(colors(drawn(OrvexIcons::icon(symbol()), 48)), QList{OrvexTheme::text});
}

TEST_P(OwnSymbol, isFadedWhereItCannotBeUsed) {
    EXPECT_EQ(colors(drawn(OrvexIcons::icon(symbol(), magenta), 48, QIcon::Disabled)), QList{OrvexTheme::disabled});
}

TEST_P(OwnSymbol, isDrawnSharplyOnAFineScreen) {
    const QIcon icon = OrvexIcons::icon(symbol(), magenta);
    const QPixmap fine = icon.pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(fine.size(), QSize(32, 32));
    EXPECT_EQ(fine.devicePixelRatio(), 2.0);
    EXPECT_EQ(fine.toImage().convertToFormat(QImage::Format_ARGB32).pixel(16, 16), drawn(icon, 32).pixel(16, 16));
}

TEST_P(OwnSymbol, looksLikeNoOther) {
    const QImage image = drawn(OrvexIcons::icon(symbol(), magenta), 16);
    for (int other = 0; other < symbolCount; ++other) {
        if (other != GetParam()) {
            EXPECT_NE(image, drawn(OrvexIcons::icon(static_cast<Symbol>(other), magenta), 16)) << "symbol " << other;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, OwnSymbol, ::testing::Range(0, symbolCount));

TEST(OrvexIcons, everyPictureStandsForOneSymbol) {
    EXPECT_FALSE(OrvexIcons::application().isNull()); // registers the pictures
    QStringList names = QDir(QStringLiteral(":/icons")).entryList();
    EXPECT_EQ(names.removeAll(QStringLiteral("orvex.svg")), 1);
    EXPECT_EQ(names.removeAll(QStringLiteral("orvex-small.svg")), 1);
    EXPECT_EQ(names.size(), symbolCount) << names.join(u' ').toStdString();
}

TEST(OrvexIcons, theApplicationsIconIsDrawnAtEverySizeOfADesktop) {
    for (const int pixels : {16, 24, 32, 48, 64, 128, 256}) {
        const QImage image = drawn(OrvexIcons::application(), pixels);
        EXPECT_EQ(image.size(), QSize(pixels, pixels));
        EXPECT_GE(drawnPixels(image), pixels * pixels / 2) << pixels;
        EXPECT_GE(colors(image).size(), 5) << pixels;
    }
}

} // namespace
} // namespace orvex
