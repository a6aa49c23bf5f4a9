#pragma once

#include "Timestamp.h"

#include <QString>

#include <optional>

namespace orvex {

/// Texts with values in them that the panels of the main window show, in the current language. Any thread.

/// A paper source as it is stored, in words of the language; a source of another name is shown as it stands.
[[nodiscard]] QString paperSourceLabel(const QString& value);

/// A moment in the local time zone, in the language's own short form of date and time. Empty for a moment that no
/// calendar reaches.
[[nodiscard]] QString orvexDateTime(platform::Timestamp date);

/// A moment in the form of the diagnostics, in UTC and in every language alike: 2026-11-21 07:05:00 +0000. Empty for a
/// moment that no calendar reaches.
[[nodiscard]] QString dateText(platform::Timestamp date);

/// The version of the program, from its information dictionary.
[[nodiscard]] QString appVersion();

/// The same for a dictionary that holds this text, or none.
[[nodiscard]] QString appVersion(const std::optional<QString>& shortVersion);

} // namespace orvex
