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

/// The records of an array of very many. Portions of it are read apart, on all processors, so that there is never a
/// tree of the whole. Raises JsonError for the first thing that is amiss.
template <typename Record>
[[nodiscard]] QList<Record> readManyRecords(QByteArrayView utf8) {
    const auto portions = jsonArrayPortions(utf8);
    if (!portions) {
        return readRecords<Record>(JsonReader::parse(utf8));
    }
    std::vector<QList<Record>> lists(portions->size());
    try {
        parallelLoop(lists.size(), [&](std::size_t number) {
            lists[number] = readRecords<Record>(JsonReader::parse('[' + (*portions)[number].toByteArray() + ']'));
        });
    } catch (const JsonError&) {
        return readRecords<Record>(JsonReader::parse(utf8)); // tells what is amiss first, and where in the whole
    }
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
