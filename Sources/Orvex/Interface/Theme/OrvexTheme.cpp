#include "OrvexTheme.h"

#include "Theme/OrvexIcons.h"
#include "Theme/OrvexStyle.h"

#include <QApplication>

namespace orvex {

namespace {

void setDisabled(QPalette& palette) {
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        palette.setColor(QPalette::Disabled, role, OrvexTheme::disabled);
    }
    palette.setColor(QPalette::Disabled, QPalette::Button, OrvexTheme::surface);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, OrvexTheme::text);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, OrvexTheme::line);
}

/// From these the style derives the edges of its buttons and fields.
void setShades(QPalette& palette) {
    palette.setColor(QPalette::Light, OrvexTheme::line.lighter(130));
    palette.setColor(QPalette::Midlight, OrvexTheme::line);
    palette.setColor(QPalette::Mid, OrvexTheme::line);
    palette.setColor(QPalette::Dark, OrvexTheme::field);
    palette.setColor(QPalette::Shadow, Qt::black);
}

/// The desktop's font, which draws Chinese in Chinese letters: without being told, it would take those of another
/// language that shares their codes, wherever the desktop itself is not in Chinese.
QFont font() {
    QFont font = QApplication::font();
    font.setFamilies({QFontInfo(font).family(), QStringLiteral("Noto Sans CJK SC")});
    return font;
}

} // namespace

QPalette OrvexTheme::palette() {
    QPalette palette;
    palette.setColor(QPalette::Window, background);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, surface);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, muted);
    palette.setColor(QPalette::Button, button);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, danger);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, onAccent);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::LinkVisited, accent);
    palette.setColor(QPalette::ToolTipBase, surface);
    palette.setColor(QPalette::ToolTipText, text);
    setShades(palette);
    setDisabled(palette);
    return palette;
}

void OrvexTheme::apply(QApplication& application) {
    QApplication::setStyle(new OrvexStyle);
    QApplication::setPalette(palette());
    QApplication::setFont(font());
    application.setWindowIcon(OrvexIcons::application());
}

} // namespace orvex
