#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QFontInfo>
#include <QIcon>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>
#include <string>

namespace orvex {
namespace {

/// The relative luminance of WCAG 2.1, from 0 (black) to 1 (white).
double luminance(const QColor& color) {
    const auto linear = [](double component) {
        return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The contrast ratio of WCAG 2.1, from 1 to 21.
double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

constexpr double readable = 4.5; // WCAG 2.1, 1.4.3

struct NamedColor {
    const char* name;
    QColor color;
};

const std::array grounds{NamedColor{"background", OrvexTheme::background}, NamedColor{"surface", OrvexTheme::surface},
                         NamedColor{"field", OrvexTheme::field}, NamedColor{"button", OrvexTheme::button}};

void PrintTo(const NamedColor& text, std::ostream* out) {
    *out << text.name;
}

class TextOnGrounds : public ::testing::TestWithParam<NamedColor> {};

TEST_P(TextOnGrounds, hasTheContrastThatReadingNeeds) {
    for (const NamedColor& ground : grounds) {
        EXPECT_GE(contrast(GetParam().color, ground.color), readable) << "on " << ground.name;
    }
}

INSTANTIATE_TEST_SUITE_P(All, TextOnGrounds,
                         ::testing::Values(NamedColor{"text", OrvexTheme::text}, NamedColor{"muted", OrvexTheme::muted},
                                           NamedColor{"accent", OrvexTheme::accent},
                                           NamedColor{"danger", OrvexTheme::danger}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(OrvexTheme, contrastIsThatOfTheStandard) {
    EXPECT_DOUBLE_EQ(contrast(Qt::black, Qt::white), 21.0);
    EXPECT_DOUBLE_EQ(contrast(Qt::white, Qt::white), 1.0);
    EXPECT_NEAR(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.005);
}

TEST(OrvexTheme, textOnTheAccentIsReadable) {
    EXPECT_GE(contrast(OrvexTheme::onAccent, OrvexTheme::accent), readable);
}

TEST(OrvexTheme, thePaletteWritesReadablyOnEveryGroundOfItsOwn) {
    const QPalette palette = OrvexTheme::palette();
    const std::array pairs{std::pair{QPalette::WindowText, QPalette::Window},
                           std::pair{QPalette::Text, QPalette::Base},
                           std::pair{QPalette::Text, QPalette::AlternateBase},
                           std::pair{QPalette::PlaceholderText, QPalette::Base},
                           std::pair{QPalette::ButtonText, QPalette::Button},
                           std::pair{QPalette::HighlightedText, QPalette::Highlight},
                           std::pair{QPalette::ToolTipText, QPalette::ToolTipBase},
                           std::pair{QPalette::Link, QPalette::Window},
                           std::pair{QPalette::LinkVisited, QPalette::Base},
                           std::pair{QPalette::BrightText, QPalette::Window}};
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto& [text, ground] : pairs) {
            EXPECT_GE(contrast(palette.color(group, text), palette.color(group, ground)), readable)
                << "role " << text << " on role " << ground;
        }
    }
}

TEST(OrvexTheme, whatCannotBeUsedLooksDifferent) {
    const QPalette palette = OrvexTheme::palette();
    for (const QPalette::ColorRole text : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        EXPECT_NE(palette.color(QPalette::Disabled, text), palette.color(QPalette::Active, text)) << "role " << text;
    }
}

TEST(OrvexTheme, anApplicationTakesPaletteAndIcon) {
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), OrvexTheme::background);
    EXPECT_EQ(QApplication::palette().color(QPalette::WindowText), OrvexTheme::text);
    EXPECT_FALSE(QApplication::windowIcon().isNull());
}

TEST(OrvexTheme, chineseIsDrawnInChineseLettersWhateverTheDesktopsLanguage) {
    const QStringList families = QApplication::font().families();
    ASSERT_EQ(families.size(), 2);
    EXPECT_EQ(families.first(), QFontInfo(QApplication::font()).family()) << "the desktop's own font comes first";
    EXPECT_EQ(families.last(), QStringLiteral("Noto Sans CJK SC"));
}

} // namespace
} // namespace orvex
