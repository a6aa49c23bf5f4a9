#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QUuid>

#include <algorithm>
#include <optional>

/// What text from outside is taken apart by. Newlines are LF, VT, FF, CR, U+0085, U+2028 and U+2029; white space is
/// these, the tab and Unicode's space separators (QChar::isSpace).
namespace orvex::platform {

[[nodiscard]] inline bool isNewline(QChar character) {
    return QStringView(u"\n\v\f\r\u0085\u2028\u2029").contains(character);
}

/// Whether a Unicode scalar is a letter or a decimal digit of any script.
[[nodiscard]] inline bool isLetterOrDigit(char32_t scalar) {
    return QChar::isLetter(scalar) || QChar::category(scalar) == QChar::Number_DecimalDigit;
}

/// The ascending order of texts by their Unicode scalars, which is that of their UTF-8 bytes.
struct ScalarOrder {
    [[nodiscard]] bool operator()(const QString& first, const QString& second) const;
};

/// The pieces of a text between characters of a kind, without empty ones.
template <typename IsSeparator>
[[nodiscard]] QStringList pieces(QStringView text, IsSeparator isSeparator) {
    QStringList result;
    for (auto begin = text.cbegin(); begin != text.cend();) {
        const auto end = std::find_if(begin, text.cend(), isSeparator);
        if (begin != end) {
            result.append(QStringView(begin, end).toString());
        }
        begin = end == text.cend() ? end : end + 1;
    }
    return result;
}

/// Bytes as text. A byte order mark at the start stays: what it stands before is not what it would be without.
/// Every invalid sequence becomes U+FFFD.
[[nodiscard]] QString textWithReplacements(QByteArrayView utf8);

/// The same; absent if a sequence is invalid.
[[nodiscard]] std::optional<QString> validText(QByteArrayView utf8);

/// The lines of a text, without empty ones.
[[nodiscard]] QStringList filledLines(QStringView text);

/// The words of a text between white space.
[[nodiscard]] QStringList words(QStringView text);

/// The first `count` characters of a text, as a person counts them.
[[nodiscard]] QString firstCharacters(const QString& text, qsizetype count);

/// Whether a text has no more than `count` characters, as a person counts them.
[[nodiscard]] bool hasAtMostCharacters(const QString& text, qsizetype count);

/// The UUID of a text in the canonical form, its letters of either case; absent for any other text.
[[nodiscard]] std::optional<QUuid> uuid(const QString& text);

/// The natural order of names, by which "Canvas 9" comes before "Canvas 10": negative, zero or positive, in the current
/// locale, or that of the current language where there is none.
[[nodiscard]] int localizedStandardCompare(const QString& first, const QString& second);

} // namespace orvex::platform
