#pragma once

#include <QString>

#include <optional>

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

/// Raises OrvexError with the message of a validator, if there is one.
void refuse(const std::optional<QString>& message);

} // namespace orvex
