#pragma once

#include "Json/JsonReader.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>

#include <optional>

/// What the records of all modules share in their JSON.
namespace orvex::platform {

/// An array of records.
template <typename Record>
[[nodiscard]] QJsonArray jsonArray(const QList<Record>& records) {
    QJsonArray array;
    for (const Record& record : records) {
        array.append(record.toJson());
    }
    return array;
}

/// The records of an array. Raises what reading one of them raises.
template <typename Record>
[[nodiscard]] QList<Record> readRecords(const JsonReader& reader) {
    QList<Record> records;
    const qsizetype count = reader.count();
    for (qsizetype index = 0; index < count; ++index) {
        records.append(Record::fromJson(reader.element(index)));
    }
    return records;
}

/// Adds a plain value, or leaves its key out.
template <typename Value>
void insertIfPresent(QJsonObject& json, const QString& key, const std::optional<Value>& value) {
    if (value) {
        json.insert(key, *value);
    }
}

/// A text that may be missing or null.
[[nodiscard]] inline std::optional<QString> findText(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->text()) : std::nullopt;
}

/// An integer that may be missing or null.
[[nodiscard]] inline std::optional<qint64> findInteger(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->integer()) : std::nullopt;
}

/// A boolean that may be missing or null.
[[nodiscard]] inline std::optional<bool> findBoolean(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->boolean()) : std::nullopt;
}

} // namespace orvex::platform
