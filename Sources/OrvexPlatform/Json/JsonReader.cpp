#include "Json/JsonReader.h"

#include "Json/JsonError.h"
#include "Json/JsonGrammar.h"
#include "OrvexLanguage.h"
#include "Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace orvex::platform {

namespace {

std::optional<double> nonFiniteNumber(const QString& text) {
    if (text == u"NaN") {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (text == u"Infinity") {
        return std::numeric_limits<double>::infinity();
    }
    if (text == u"-Infinity") {
        return -std::numeric_limits<double>::infinity();
    }
    return std::nullopt;
}

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";

/// The text with every byte order mark spelled as an escape: Qt drops one that begins a string.
QByteArray withSpelledMarks(QByteArrayView text) {
    const QByteArray bytes = QByteArray::fromRawData(text.data(), text.size());
    return bytes.contains(byteOrderMark) ? QByteArray(bytes).replace(byteOrderMark, "\\ufeff") : bytes;
}

/// The offset in a text of what stands at `spelledOffset` once its byte order marks are spelled as escapes.
qsizetype offsetBeforeSpelling(QByteArrayView text, qsizetype spelledOffset) {
    constexpr qsizetype escapeBytes = 6;
    qsizetype offset = spelledOffset;
    for (qsizetype mark = text.indexOf(byteOrderMark); mark >= 0 && mark + escapeBytes <= offset;
         mark = text.indexOf(byteOrderMark, mark + byteOrderMark.size())) {
        offset -= escapeBytes - byteOrderMark.size();
    }
    return offset;
}

QJsonValue topValue(const QJsonDocument& document) {
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

} // namespace

QByteArrayView withoutByteOrderMark(QByteArrayView utf8) {
    return utf8.startsWith(byteOrderMark) ? utf8.sliced(byteOrderMark.size()) : utf8;
}

JsonReader JsonReader::parse(QByteArrayView utf8, JsonNumbers numbers) {
    const QByteArrayView text = withoutByteOrderMark(utf8);
    const qsizetype markBytes = utf8.size() - text.size();
    if (const auto offset = jsonGrammarError(text)) {
        throw JsonSyntaxError(markBytes + *offset);
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(withSpelledMarks(text), &error);
    if (error.error != QJsonParseError::NoError) {
        // Text that is not UTF-8, a number beyond the range, or a value that is neither an object nor an array.
        throw JsonSyntaxError(markBytes + offsetBeforeSpelling(text, error.offset));
    }
    return {topValue(document), {}, nullptr, numbers};
}

QString JsonReader::keyPath() const {
    if (key_ == nullptr) {
        return path_;
    }
    const QLatin1StringView key(key_);
    return path_.isEmpty() ? QString(key) : path_ + u'.' + key;
}

void JsonReader::fail(const QString& description) const {
    throw JsonError(keyPath(), description);
}

void JsonReader::failType(const char* chineseType, const char* englishType) const {
    fail(spt("应为%1。", "Expected %1.").arg(spt(chineseType, englishType)));
}

void JsonReader::require(QJsonValue::Type type, const char* chineseType, const char* englishType) const {
    if (value_.type() != type) {
        failType(chineseType, englishType);
    }
}

JsonReader JsonReader::member(const char* key, const QJsonValue& value) const {
    return {value, keyPath(), key, numbers_};
}

JsonReader JsonReader::at(const char* key) const {
    require(QJsonValue::Object, "对象", "an object");
    const QJsonValue value = value_.toObject().value(QLatin1StringView(key));
    JsonReader found = member(key, value);
    if (value.isUndefined()) {
        found.fail(spt("缺少必需的键。", "The required key is missing."));
    }
    return found;
}

std::optional<JsonReader> JsonReader::find(const char* key) const {
    require(QJsonValue::Object, "对象", "an object");
    const QJsonValue value = value_.toObject().value(QLatin1StringView(key));
    return value.isUndefined() || value.isNull() ? std::nullopt : std::optional(member(key, value));
}

bool JsonReader::contains(const char* key) const {
    require(QJsonValue::Object, "对象", "an object");
    return value_.toObject().contains(QLatin1StringView(key));
}

QString JsonReader::text() const {
    require(QJsonValue::String, "文本", "text");
    return value_.toString();
}

bool JsonReader::boolean() const {
    require(QJsonValue::Bool, "布尔值", "true or false");
    return value_.toBool();
}

qint64 JsonReader::integer() const {
    require(QJsonValue::Double, "整数", "an integer");
    // The default is given back for anything that is no integer of 64 bits; two defaults tell it from a real value.
    const qint64 value = value_.toInteger(0);
    if (value == 0 && value_.toInteger(1) != 0) {
        failType("整数", "an integer");
    }
    return value;
}

double JsonReader::number() const {
    if (numbers_ == JsonNumbers::orNonFiniteText && value_.isString()) {
        if (const auto number = nonFiniteNumber(value_.toString())) {
            return *number;
        }
    }
    require(QJsonValue::Double, "数字", "a number");
    return value_.toDouble();
}

QUuid JsonReader::uuid() const {
    const auto id = platform::uuid(text());
    if (!id) {
        failType(" UUID", "a UUID");
    }
    return *id;
}

QUrl JsonReader::url() const {
    const QUrl url(text(), QUrl::TolerantMode);
    if (!url.isValid()) {
        failType(" URL", "a URL");
    }
    return url;
}

qsizetype JsonReader::count() const {
    require(QJsonValue::Array, "数组", "an array");
    return value_.toArray().size();
}

JsonReader JsonReader::element(qsizetype index) const {
    return {value_.toArray().at(index), keyPath() + QStringLiteral("[%1]").arg(index), nullptr, numbers_};
}

QStringList JsonReader::texts() const {
    QStringList texts;
    const qsizetype size = count();
    for (qsizetype index = 0; index < size; ++index) {
        texts.append(element(index).text());
    }
    return texts;
}

QList<std::pair<QString, JsonReader>> JsonReader::members() const {
    require(QJsonValue::Object, "对象", "an object");
    const QJsonObject object = value_.toObject();
    const QString own = keyPath();
    QList<std::pair<QString, JsonReader>> members;
    for (auto each = object.begin(); each != object.end(); ++each) {
        const QString path = own.isEmpty() ? each.key() : own + u'.' + each.key();
        members.append({each.key(), JsonReader(each.value(), path, nullptr, numbers_)});
    }
    return members;
}

} // namespace orvex::platform
