#include "Json/JsonGrammar.h"
#include "StoredRecords.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdint>

// JSON of any bytes, against a second reading of the grammar and against Qt's parser; and arrays read by portions.

using namespace orvex;
using fuzz::mustHold;

namespace {

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";

/// A letter for each token of a text, whose texts are "s" and other scalars "v"; absent if it is not made of tokens.
std::optional<QString> tokens(QByteArrayView text) {
    static const QRegularExpression token(
        QStringLiteral(R"(\G[ \t\n\r]*+(?:([][{}:,])|("(?:[^"\\\x00-\x1f]|\\(?:["\\/bfnrt]|u[0-9A-Fa-f]{4}))*+")|)"
                       R"((-?(?:0|[1-9][0-9]*+)(?:\.[0-9]++)?(?:[eE][+-]?[0-9]++)?|true|false|null)|\z))"));
    const QString bytes = QString::fromLatin1(text); // one character for each byte
    QString letters;
    qsizetype offset = 0;
    while (offset < bytes.size()) {
        const auto match = token.match(bytes, offset, QRegularExpression::NormalMatch);
        if (!match.hasMatch()) {
            return std::nullopt;
        }
        offset = match.capturedEnd();
        letters += match.hasCaptured(1)   ? match.captured(1)
                   : match.hasCaptured(2) ? QStringLiteral("s")
                   : match.hasCaptured(3) ? QStringLiteral("v")
                                          : QString();
    }
    return letters;
}

int nesting(const QString& letters) {
    int depth = 0;
    int deepest = 0;
    for (const QChar letter : letters) {
        depth += letter == u'[' || letter == u'{' ? 1 : letter == u']' || letter == u'}' ? -1 : 0;
        deepest = std::max(deepest, depth);
    }
    return deepest;
}

/// Whether a text is JSON: its innermost arrays and objects are values, and so on, until one value is left.
bool isJson(QByteArrayView text) {
    static const QRegularExpression innermost(
        QStringLiteral(R"(\[(?:[sv](?:,[sv])*+)?\]|\{(?:s:[sv](?:,s:[sv])*+)?\})"));
    QString letters = tokens(text).value_or(QString());
    if (nesting(letters) > platform::deepestJsonNesting) {
        return false;
    }
    for (qsizetype size = -1; size != letters.size();) {
        size = letters.size();
        letters.replace(innermost, QStringLiteral("v"));
    }
    return letters == u"s" || letters == u"v";
}

/// What departs from the grammar at a byte does so whatever follows.
void mustDependOnThePrefix(QByteArrayView text, qsizetype offset) {
    mustHold(offset >= 0 && offset <= text.size());
    const qsizetype size = std::min(offset + 1, text.size());
    mustHold(platform::jsonGrammarError(text.first(size)) == offset);
}

/// Whether the number that ends there is one that a double cannot hold, or can hold as zero only.
bool isBeyondRange(const QByteArray& text, qsizetype end) {
    qsizetype begin = end;
    while (begin > 0 && QByteArrayView("+-.0123456789Ee").contains(text[begin - 1])) {
        --begin;
    }
    const QByteArray number = text.sliced(begin, end - begin);
    const double value = std::strtod(number.constData(), nullptr);
    return !number.isEmpty() && (std::isinf(value) || value == 0.0);
}

/// Qt's parser takes JSON, unless it is no UTF-8 or has a number beyond the range; a scalar needs an array around it.
void mustBeTakenByQt(QByteArrayView text) {
    const QByteArrayView trimmed = text.trimmed();
    const bool isList = trimmed.startsWith('[') || trimmed.startsWith('{');
    const QByteArray list = isList ? text.toByteArray() : '[' + text.toByteArray() + ']';
    QJsonParseError error;
    static_cast<void>(QJsonDocument::fromJson(list, &error));
    switch (error.error) {
    case QJsonParseError::NoError:
        return;
    case QJsonParseError::IllegalUTF8String:
        mustHold(!text.isValidUtf8());
        return;
    default:
        mustHold(error.error == QJsonParseError::IllegalNumber && isBeyondRange(list, error.offset));
    }
}

void exerciseGrammar(QByteArrayView text) {
    const auto offset = platform::jsonGrammarError(text);
    mustHold(!offset == isJson(text));
    offset ? mustDependOnThePrefix(text, *offset) : mustBeTakenByQt(text);
}

/// A value that was read once must be readable again, so no error is expected here.
void mustSurviveWriting(const platform::JsonReader& reader) noexcept {
    using enum platform::JsonForm;
    for (const auto form : {pretty, prettyEscapedSlashes, compactLine, compactEscapedSlashes}) {
        mustHold(platform::JsonReader::parse(platform::writeJson(reader.value(), form)).value() == reader.value());
    }
}

void exerciseReader(QByteArrayView bytes) {
    try {
        const auto reader = platform::JsonReader::parse(bytes);
        mustHold(isJson(bytes.startsWith(byteOrderMark) ? bytes.sliced(byteOrderMark.size()) : bytes));
        mustSurviveWriting(reader);
    } catch (const platform::JsonError&) {
        // No JSON, or none that a program can hold.
    }
}

/// Anything that may stand in an array.
struct AnyValue {
    QJsonValue value;

    static AnyValue fromJson(const platform::JsonReader& reader) { return {reader.value()}; }

    bool operator==(const AnyValue&) const = default;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    exerciseGrammar(bytes);
    exerciseReader(bytes);
    static_cast<void>(fuzz::readInBothWays<AnyValue>(bytes));
    return 0;
}
