#include "PrintModels.h"

#include "Json/JsonRecords.h"

namespace orvex {

DriverOption DriverOption::fromJson(const platform::JsonReader& reader) {
    return {.keyword = reader.at("keyword").text(),
            .label = reader.at("label").text(),
            .choices = reader.at("choices").texts(),
            .defaultChoice = platform::findText(reader, "defaultChoice")};
}

QJsonObject DriverOption::toJson() const {
    QJsonObject json{{QStringLiteral("keyword"), keyword},
                     {QStringLiteral("label"), label},
                     {QStringLiteral("choices"), QJsonArray::fromStringList(choices)}};
    platform::insertIfPresent(json, QStringLiteral("defaultChoice"), defaultChoice);
    return json;
}

QJsonObject SystemPrintJob::toJson() const {
    return {{QStringLiteral("id"), id}, {QStringLiteral("rawLine"), rawLine}};
}

QJsonObject PrinterSnapshot::toJson() const {
    return {{QStringLiteral("name"), name},
            {QStringLiteral("summary"), summary},
            {QStringLiteral("deviceURI"), deviceURI},
            {QStringLiteral("options"), platform::jsonArray(options)},
            {QStringLiteral("jobs"), platform::jsonArray(jobs)},
            {QStringLiteral("capturedAt"), capturedAt.toJson("capturedAt")},
            {QStringLiteral("diagnostic"), diagnostic}};
}

} // namespace orvex
