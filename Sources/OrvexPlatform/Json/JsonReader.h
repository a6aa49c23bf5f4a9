#pragma once

#include "Json/JsonNumbers.h"

#include <QByteArrayView>
#include <QJsonValue>
#include <QList>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace orvex::platform {

/// The bytes behind a byte order mark, if there is one.
[[nodiscard]] QByteArrayView withoutByteOrderMark(QByteArrayView utf8);

/// One JSON value that knows its key path, read with types demanded. Every reader raises JsonError, with the key path,
/// for a value of another type.
///
/// Decided here once, for all records: UTF-8 with or without a byte-order mark, and to the letter of RFC 8259; unknown
/// keys are ignored; the last of duplicate keys counts; 1, 1.0 and 1e0 are the same integer; escaped and plain slashes
/// are the same text; numbers beyond the range of a double and nesting deeper than 1024 levels are refused.
class JsonReader {
public:
    /// The top value of a document, an object or an array. Raises JsonSyntaxError for bytes that are no JSON.
    [[nodiscard]] static JsonReader parse(QByteArrayView utf8, JsonNumbers numbers = JsonNumbers::finite);

    /// A required member of an object. Keys are ASCII, and stay for as long as the reader.
    [[nodiscard]] JsonReader at(const char* key) const;

    /// A member of an object that may be missing or null.
    [[nodiscard]] std::optional<JsonReader> find(const char* key) const;

    /// Whether the object has the key, with whatever value, null included.
    [[nodiscard]] bool contains(const char* key) const;

    [[nodiscard]] QString text() const;
    [[nodiscard]] bool boolean() const;
    [[nodiscard]] qint64 integer() const;
    [[nodiscard]] double number() const;

    /// A UUID in its canonical text form, letters of either case.
    [[nodiscard]] QUuid uuid() const;

    /// A URL as text; anything that parses as a URL, of whatever scheme.
    [[nodiscard]] QUrl url() const;

    /// The count of elements of an array, and one of them. They are not handed out as a list: a file of millions of
    /// bare numbers would take a hundred times its size.
    [[nodiscard]] qsizetype count() const;
    [[nodiscard]] JsonReader element(qsizetype index) const;

    /// An array of nothing but texts.
    [[nodiscard]] QStringList texts() const;

    /// The members of an object, sorted by key.
    [[nodiscard]] QList<std::pair<QString, JsonReader>> members() const;

    [[nodiscard]] const QJsonValue& value() const { return value_; }

    [[nodiscard]] QString keyPath() const;

    /// Raises JsonError with this value's key path.
    [[noreturn]] void fail(const QString& description) const;

private:
    JsonReader(QJsonValue value, QString path, const char* key, JsonNumbers numbers)
        : value_(std::move(value)),
          path_(std::move(path)),
          key_(key),
          numbers_(numbers) {}

    [[nodiscard]] JsonReader member(const char* key, const QJsonValue& value) const;
    [[noreturn]] void failType(const char* chineseType, const char* englishType) const;
    void require(QJsonValue::Type type, const char* chineseType, const char* englishType) const;

    // Very many members are read whose key path nobody asks for: it is put together on demand.
    QJsonValue value_;
    QString path_;    ///< to this value, or to the object of which it is a member
    const char* key_; ///< of this value in that object; null if the path leads to this value
    JsonNumbers numbers_;
};

} // namespace orvex::platform
