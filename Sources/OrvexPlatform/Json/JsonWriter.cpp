#include "Json/JsonWriter.h"

#include "Json/JsonError.h"
#include "OrvexLanguage.h"
#include "ParallelLoop.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace orvex::platform {

namespace {

constexpr QByteArrayView arrayHead = "[\n";
constexpr QByteArrayView arrayTail = "\n]\n";

QString nonFiniteText(double number) {
    if (std::isnan(number)) {
        return QStringLiteral("NaN");
    }
    return number > 0.0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
}

/// The bytes with every "/" as "\/". QByteArray::replace takes many times as long for a large file.
QByteArray withEscapedSlashes(const QByteArray& bytes) {
    QByteArray escaped;
    escaped.reserve(bytes.size() + bytes.count('/'));
    const QByteArrayView view = bytes;
    qsizetype copied = 0;
    for (qsizetype slash = 0; (slash = bytes.indexOf('/', copied)) >= 0; copied = slash + 1) {
        escaped.append(view.sliced(copied, slash - copied)).append("\\/");
    }
    escaped.append(view.sliced(copied));
    return escaped;
}

/// The text of some elements, as it stands between the brackets of an array and the line feeds there.
QByteArray writtenElements(qsizetype first, qsizetype end, const std::function<QJsonObject(qsizetype)>& element,
                           JsonForm form) {
    QJsonArray elements;
    for (qsizetype index = first; index < end; ++index) {
        elements.append(element(index));
    }
    const QByteArray written = writeJson(elements, form);
    return written.sliced(arrayHead.size(), written.size() - arrayHead.size() - arrayTail.size());
}

} // namespace

QJsonValue jsonNumber(const char* key, double number, JsonNumbers numbers) {
    if (std::isfinite(number)) {
        return number;
    }
    if (numbers == JsonNumbers::orNonFiniteText) {
        return nonFiniteText(number);
    }
    throw JsonInvalidNumber(QString::fromUtf8(key), spt("JSON 无法表示该数值。", "JSON cannot hold this number."),
                            number);
}

QString uuidText(const QUuid& uuid) {
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

QString urlText(const QUrl& url) {
    return url.toString(QUrl::FullyEncoded);
}

QByteArray writeJson(const QJsonValue& value, JsonForm form) {
    const QJsonDocument document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    const bool isCompact = form == JsonForm::compactLine || form == JsonForm::compactEscapedSlashes;
    const bool escapesSlashes = form == JsonForm::prettyEscapedSlashes || form == JsonForm::compactEscapedSlashes;
    const QByteArray bytes = document.toJson(isCompact ? QJsonDocument::Compact : QJsonDocument::Indented);
    // A slash stands in texts and keys only, and never behind a backslash of its own: Qt escapes none.
    return escapesSlashes ? withEscapedSlashes(bytes) : bytes;
}

QByteArrayList writeJsonArray(qsizetype count, const std::function<QJsonObject(qsizetype)>& element, JsonForm form) {
    constexpr qsizetype elementsOfPiece = 16; // small enough to share the work out evenly, large enough to be worth it
    if (count == 0) {
        return {writeJson(QJsonArray(), form)};
    }
    QByteArrayList pieces((count - 1) / elementsOfPiece + 1);
    QByteArray* const written = pieces.data();
    parallelLoop(static_cast<std::size_t>(pieces.size()), [&](std::size_t number) {
        const qsizetype first = static_cast<qsizetype>(number) * elementsOfPiece;
        const qsizetype end = std::min(first + elementsOfPiece, count);
        written[number] = writtenElements(first, end, element, form) + (end < count ? ",\n" : "");
    });
    pieces.prepend(arrayHead.toByteArray());
    pieces.append(arrayTail.toByteArray());
    return pieces;
}

} // namespace orvex::platform
