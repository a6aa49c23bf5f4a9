#pragma once

#include "Json/JsonNumbers.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <functional>

namespace orvex::platform {

/// How a record's JSON is laid out; keys are sorted in every form.
enum class JsonForm {
    pretty,                ///< indented, slashes plain
    prettyEscapedSlashes,  ///< indented, every "/" as "\/"
    compactLine,           ///< one line without its line feed, slashes plain
    compactEscapedSlashes, ///< one line without its line feed, every "/" as "\/"
};

/// A number for a JSON object. JSON has no numbers that are not finite: JsonInvalidNumber, with the key, unless the
/// mode takes them as texts.
[[nodiscard]] QJsonValue jsonNumber(const char* key, double number, JsonNumbers numbers = JsonNumbers::finite);

/// The canonical text of a UUID, in upper case.
[[nodiscard]] QString uuidText(const QUuid& uuid);

/// The fully encoded text of a URL.
[[nodiscard]] QString urlText(const QUrl& url);

/// The bytes of an object or array. The pretty forms end in a line feed.
[[nodiscard]] QByteArray writeJson(const QJsonValue& value, JsonForm form);

/// The bytes of an array in a pretty form, as writeJson gives them, in pieces that are made on all processors.
/// `element` gives one of the `count` elements, which are objects; it is called on several threads at once. Raises what
/// `element` raises.
[[nodiscard]] QByteArrayList writeJsonArray(qsizetype count, const std::function<QJsonObject(qsizetype)>& element,
                                            JsonForm form);

} // namespace orvex::platform
