#include "Layout/NumberText.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace orvex {

namespace {

/// The nearest decimal with that many fraction digits, exact halves to the even one as usual; a point in every locale.
QString fixedDecimal(double value, int fractionDigits) {
    constexpr std::size_t mostBytes = 400; // the largest double has 309 digits before the point
    std::array<char, mostBytes> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, fractionDigits);
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

QString withoutTrailingZeros(QString plain) {
    while (plain.contains(u'.') && (plain.endsWith(u'0') || plain.endsWith(u'.'))) {
        plain.chop(1);
    }
    return plain;
}

QString withoutSignOnZero(const QString& plain) {
    const bool isZero =
        std::all_of(plain.cbegin(), plain.cend(), [](QChar each) { return QStringView(u"-0.").contains(each); });
    return isZero && plain.startsWith(u'-') ? plain.sliced(1) : plain;
}

/// A plain decimal with the digits and signs of the locale.
QString inLocale(const QString& plain, const QLocale& locale) {
    const char32_t zero = locale.zeroDigit().toUcs4().first();
    QString text;
    for (const QChar each : plain) {
        if (each == u'.') {
            text += locale.decimalPoint();
        } else if (each == u'-') {
            text += locale.negativeSign();
        } else {
            const char32_t digit = zero + static_cast<char32_t>(each.digitValue());
            text += QString::fromUcs4(&digit, 1);
        }
    }
    return text;
}

locale_t plainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace

QString formatNumber(double value, const QLocale& locale, int maxFractionDigits) {
    if (!std::isfinite(value)) {
        return locale.toString(value);
    }
    return inLocale(withoutSignOnZero(withoutTrailingZeros(fixedDecimal(value, maxFractionDigits))), locale);
}

QString formatNumber(double value, int maxFractionDigits) {
    return formatNumber(value, QLocale(), maxFractionDigits);
}

QString formatFixedNumber(double value, int fractionDigits) {
    const QLocale locale;
    if (!std::isfinite(value)) {
        return locale.toString(value);
    }
    return inLocale(withoutSignOnZero(fixedDecimal(value, fractionDigits)), locale);
}

std::optional<double> parseWholeDouble(const QByteArray& text) {
    // strtod skips white space before the number; the whole text must be the number.
    const bool startsBlank = !text.isEmpty() && isspace_l(static_cast<unsigned char>(text[0]), plainLocale()) != 0;
    if (text.isEmpty() || startsBlank) {
        return std::nullopt;
    }
    char* end = nullptr;
    const double value = strtod_l(text.constData(), &end, plainLocale());
    if (end != text.constData() + text.size()) {
        return std::nullopt;
    }
    return value;
}

} // namespace orvex
