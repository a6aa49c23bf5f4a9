#pragma once

#include "Json/JsonError.h"
#include "Json/JsonPortions.h"
#include "Json/JsonReader.h"
#include "Json/JsonWriter.h"
#include "ParallelLoop.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>

#include <optional>
#include <vector>

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

/// The bytes of an array of very many records, as writeJson gives them, in pieces. Raises what writing one of them
/// raises.
template <typename Record>
[[nodiscard]] QByteArrayList writeManyRecords(const QList<Record>& records, JsonForm form) {
    return writeJsonArray(
        records.size(), [&](qsizetype index) { return records[index].toJson(); }, form);
}

/// The records of a document that is an array of very many. Raises JsonError for the first thing that is amiss.
template <typename Record>
[[nodiscard]] QList<Record> readManyRecords(QByteArrayView utf8) {
    const JsonPortions portions(utf8);
    std::vector<QList<Record>> lists(portions.count());
    portions.readEach([&](std::size_t number, const JsonReader& array) { lists[number] = readRecords<Record>(array); });
    QList<Record> records;
    for (QList<Record>& list : lists) {
        records.append(std::move(list));
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

/// Adds a record, or leaves its key out.
template <typename Record>
void insertRecordIfPresent(QJsonObject& json, const QString& key, const std::optional<Record>& record) {
    if (record) {
        json.insert(key, record->toJson());
    }
}

/// A record that may be missing or null. Raises what reading it raises.
template <typename Record>
[[nodiscard]] std::optional<Record> findRecord(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(Record::fromJson(*found)) : std::nullopt;
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
