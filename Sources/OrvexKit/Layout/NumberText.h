#pragma once

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <optional>

namespace orvex {

/// A number as it is shown: at most `maxFractionDigits` fraction digits, trailing zeros dropped, no digit grouping, the
/// locale's digits and decimal separator. A value that rounds to zero is shown without a sign. Any thread.
[[nodiscard]] QString formatNumber(double value, const QLocale& locale, int maxFractionDigits);

/// The same in the current locale.
[[nodiscard]] QString formatNumber(double value, int maxFractionDigits);

/// The same in the current locale with exactly `fractionDigits` fraction digits, zeros included.
[[nodiscard]] QString formatFixedNumber(double value, int fractionDigits);

/// The double that the whole of a text spells in the grammar of C's `strtod`, whatever the locale. Absent if a
/// character is left over. Values beyond the range of a double are infinite, as `strtod` has them.
[[nodiscard]] std::optional<double> parseWholeDouble(const QByteArray& text);

} // namespace orvex
