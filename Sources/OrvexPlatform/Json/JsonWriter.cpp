#include "Json/JsonWriter.h"

#include "Json/JsonError.h"
#include "OrvexLanguage.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace orvex::platform {

namespace {

QString nonFiniteText(double number) {
    if (std::isnan(number)) {
        return QStringLiteral("NaN");
    }
    return number > 0.0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
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
    const auto layout = form == JsonForm::compactLine ? QJsonDocument::Compact : QJsonDocument::Indented;
    QByteArray bytes = document.toJson(layout);
    if (form == JsonForm::prettyEscapedSlashes) {
        // A slash stands in texts and keys only, and never behind a backslash of its own: Qt escapes none.
        bytes.replace('/', "\\/");
    }
    return bytes;
}

} // namespace orvex::platform
