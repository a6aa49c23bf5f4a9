#pragma once

#include <QColor>
#include <QPalette>

class QApplication;

namespace orvex {

/// The colours of the window, which is dark whatever the desktop prefers, so that the white canvas is what the eye
/// judges colours by. Every text colour has a contrast of at least 4.5 : 1 on the grounds that it stands on.
namespace OrvexTheme {

inline constexpr QColor background{0x17, 0x19, 0x1d};
inline constexpr QColor surface{0x20, 0x23, 0x28};
inline constexpr QColor text{0xec, 0xee, 0xf1};
inline constexpr QColor muted{0xa6, 0xae, 0xb8};
inline constexpr QColor line{0x3c, 0x42, 0x4b};
inline constexpr QColor accent{0x6c, 0xb2, 0xf0};
inline constexpr QColor danger{0xff, 0x86, 0x7c};

inline constexpr QColor field{0x12, 0x14, 0x17};     ///< the ground of what is typed in and chosen from
inline constexpr QColor edge{0x5a, 0x62, 0x6d};      ///< around what can be pressed, typed in or chosen from
inline constexpr QColor button{0x2d, 0x32, 0x39};    ///< the face of a button
inline constexpr QColor onAccent{0x0c, 0x16, 0x1f};  ///< text on the accent
inline constexpr QColor selection{0x26, 0x39, 0x4b}; ///< the ground of a selected row
inline constexpr QColor disabled{0x86, 0x8e, 0x98};  ///< text of what cannot be used now, on other than buttons
inline constexpr QColor canvas{0xff, 0xff, 0xff};    ///< the roll itself

/// The palette of all widgets.
[[nodiscard]] QPalette palette();

/// Gives an application the style, palette and icon of the program.
void apply(QApplication& application);

} // namespace OrvexTheme

} // namespace orvex
