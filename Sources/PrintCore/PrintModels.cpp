#include "PrintModels.h"

#include <QJsonArray>

namespace orvex {

namespace {

template <typename Record>
QJsonArray jsonArray(const QList<Record>& records) {
    QJsonArray array;
    for (const Record& record : records) {
        array.append(record.toJson());
    }
    return array;
}

} // namespace

DriverOption DriverOption::fromJson(const platform::JsonReader& reader) {
    DriverOption option{.keyword = reader.at("keyword").text(),
                        .label = reader.at("label").text(),
                        .choices = reader.at("choices").texts(),
                        .defaultChoice = std::nullopt};
    if (const auto choice = reader.find("defaultChoice")) {
        option.defaultChoice = choice->text();
    }
    return option;
}

QJsonObject DriverOption::toJson() const {
    QJsonObject json{{QStringLiteral("keyword"), keyword},
                     {QStringLiteral("label"), label},
                     {QStringLiteral("choices"), QJsonArray::fromStringList(choices)}};
    if (defaultChoice) {
        json.insert(QStringLiteral("defaultChoice"), *defaultChoice);
    }
    return json;
}

QJsonObject SystemPrintJob::toJson() const {
    return {{QStringLiteral("id"), id}, {QStringLiteral("rawLine"), rawLine}};
}

QJsonObject PrinterSnapshot::toJson() const {
    return {{QStringLiteral("name"), name},
            {QStringLiteral("summary"), summary},
            {QStringLiteral("deviceURI"), deviceURI},
            {QStringLiteral("options"), jsonArray(options)},
            {QStringLiteral("jobs"), jsonArray(jobs)},
            {QStringLiteral("capturedAt"), capturedAt.toJson("capturedAt")},
            {QStringLiteral("diagnostic"), diagnostic}};
}

} // namespace orvex
