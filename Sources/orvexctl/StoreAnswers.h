#pragma once

#include "CommandFiles.h"
#include "Json/JsonRecords.h"

#include <QUuid>

#include <string>

namespace orvex {

/// The id that an argument names. Anything but a UUID is wrong usage.
[[nodiscard]] QUuid idArgument(const std::string& argument);

/// Prints an array of records on standard output, indented.
template <typename Record>
void printRecords(const QList<Record>& records) {
    for (const QByteArray& piece : platform::writeManyRecords(records, platform::JsonForm::pretty)) {
        writeOutput(QStringLiteral("-"), piece);
    }
}

} // namespace orvex
