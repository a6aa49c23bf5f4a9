#pragma once

#include <QString>

namespace orvex {

/// The messages that more than one check of the layout gives, in the current language.
namespace LayoutTexts {

[[nodiscard]] QString pixelSizeNotPositive();
[[nodiscard]] QString aspectMismatch();
[[nodiscard]] QString unsupportedVersion();
[[nodiscard]] QString duplicateIDs();
[[nodiscard]] QString artworkNotFound();
[[nodiscard]] QString positionsNotNumbers();

/// A message about one of several artworks: its title, a full-width colon in both languages, the message.
[[nodiscard]] QString titled(const QString& title, const QString& message);

} // namespace LayoutTexts

} // namespace orvex
