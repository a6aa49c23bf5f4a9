#include "Text.h"

#include "OrvexLanguage.h"

#include <QCollator>
#include <QLocale>
#include <QStringDecoder>
#include <QTextBoundaryFinder>

namespace orvex::platform {

namespace {

/// A code unit of UTF-16, so that surrogates come last, as the scalars that they stand for do.
char16_t scalarRank(QChar unit) {
    constexpr char16_t firstSurrogate = 0xD800;
    constexpr char16_t behindSurrogates = 0xE000;
    const char16_t value = unit.unicode();
    if (value < firstSurrogate) {
        return value;
    }
    constexpr int surrogates = behindSurrogates - firstSurrogate;
    return static_cast<char16_t>(value < behindSurrogates ? value + (0x10000 - behindSurrogates) : value - surrogates);
}

QStringDecoder strictDecoder() {
    // Without state, a sequence that the end cuts is invalid, too.
    return QStringDecoder(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
}

bool isHexadecimalDigit(QChar digit) {
    return (digit >= u'0' && digit <= u'9') || (digit >= u'A' && digit <= u'F') || (digit >= u'a' && digit <= u'f');
}

/// The collator knows no numeric mode in the C locale.
QLocale sortingLocale() {
    if (const QLocale locale; locale.language() != QLocale::C) {
        return locale;
    }
    return QLocale(OrvexLanguage::current().localeIdentifier());
}

} // namespace

bool ScalarOrder::operator()(const QString& first, const QString& second) const {
    return std::ranges::lexicographical_compare(first, second, {}, scalarRank, scalarRank);
}

QString textWithReplacements(QByteArrayView utf8) {
    return strictDecoder().decode(utf8);
}

std::optional<QString> validText(QByteArrayView utf8) {
    QStringDecoder decoder = strictDecoder();
    QString text = decoder.decode(utf8);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

QStringList filledLines(QStringView text) {
    return pieces(text, isNewline);
}

QStringList words(QStringView text) {
    return pieces(text, [](QChar character) { return character.isSpace(); });
}

QString firstCharacters(const QString& text, qsizetype count) {
    if (text.size() <= count) {
        return text; // no character takes less than one code unit
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype found = 0; found < count && finder.position() < text.size(); ++found) {
        finder.toNextBoundary();
    }
    return text.first(finder.position());
}

bool hasAtMostCharacters(const QString& text, qsizetype count) {
    return firstCharacters(text, count).size() == text.size();
}

std::optional<QUuid> uuid(const QString& text) {
    const auto isSound = [&](qsizetype place) {
        const bool isDash = place == 8 || place == 13 || place == 18 || place == 23;
        return isDash ? text[place] == u'-' : isHexadecimalDigit(text[place]);
    };
    constexpr qsizetype size = 36;
    if (text.size() != size) {
        return std::nullopt;
    }
    for (qsizetype place = 0; place < size; ++place) {
        if (!isSound(place)) {
            return std::nullopt;
        }
    }
    return QUuid::fromString(text);
}

int localizedStandardCompare(const QString& first, const QString& second) {
    QCollator collator(sortingLocale());
    collator.setNumericMode(true);
    return collator.compare(first, second);
}

} // namespace orvex::platform
