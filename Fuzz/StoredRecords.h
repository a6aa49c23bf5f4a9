#pragma once

#include "Json/JsonError.h"
#include "Json/JsonRecords.h"

#include <QList>
#include <QString>

#include <cstdlib>
#include <optional>

/// What must hold for the records of every store, whatever the bytes.
namespace orvex::fuzz {

inline void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// What came of reading a list: the records, or the message of the error.
template <typename Record>
struct Reading {
    std::optional<QList<Record>> records;
    QString error;

    bool operator==(const Reading&) const = default;
};

template <typename Record, typename Read>
Reading<Record> reading(Read&& read) {
    try {
        return {read(), {}};
    } catch (const platform::JsonError& error) {
        return {std::nullopt, error.message()};
    }
}

/// Records that were read once must be readable again, so no error is expected here.
template <typename Record>
void mustSurviveWriting(const QList<Record>& records) noexcept {
    for (const auto form : {platform::JsonForm::pretty, platform::JsonForm::prettyEscapedSlashes}) {
        const QByteArray written = platform::writeManyRecords(records, form).join();
        mustHold(written == platform::writeJson(platform::jsonArray(records), form));
        mustHold(platform::readManyRecords<Record>(written) == records);
    }
}

/// Reads a list at once and by portions, which must come to the same.
template <typename Record>
Reading<Record> readInBothWays(QByteArrayView bytes) {
    const auto whole =
        reading<Record>([&] { return platform::readRecords<Record>(platform::JsonReader::parse(bytes)); });
    mustHold(reading<Record>([&] { return platform::readManyRecords<Record>(bytes); }) == whole);
    return whole;
}

template <typename Record>
void exerciseList(QByteArrayView bytes) {
    const auto list = readInBothWays<Record>(bytes);
    if (list.records) {
        mustSurviveWriting(*list.records);
    }
}

} // namespace orvex::fuzz
