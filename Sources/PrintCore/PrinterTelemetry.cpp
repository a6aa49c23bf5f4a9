#include "PrinterTelemetry.h"

#include "Json/JsonRecords.h"
#include "OrvexLanguage.h"

namespace orvex {

using platform::findBoolean;
using platform::findInteger;
using platform::findText;
using platform::insertIfPresent;
using platform::JsonReader;

PrinterMarkerTelemetry PrinterMarkerTelemetry::fromJson(const JsonReader& reader) {
    return {.index = reader.at("index").integer(),
            .name = findText(reader, "name"),
            .type = findText(reader, "type"),
            .color = findText(reader, "color"),
            .level = findInteger(reader, "level"),
            .lowLevel = findInteger(reader, "lowLevel"),
            .highLevel = findInteger(reader, "highLevel")};
}

QJsonObject PrinterMarkerTelemetry::toJson() const {
    QJsonObject json{{QStringLiteral("index"), index}};
    insertIfPresent(json, QStringLiteral("name"), name);
    insertIfPresent(json, QStringLiteral("type"), type);
    insertIfPresent(json, QStringLiteral("color"), color);
    insertIfPresent(json, QStringLiteral("level"), level);
    insertIfPresent(json, QStringLiteral("lowLevel"), lowLevel);
    insertIfPresent(json, QStringLiteral("highLevel"), highLevel);
    return json;
}

QString PrinterTelemetrySnapshot::sourceDescription() {
    return spt("本机 CUPS 缓存；不保证反映设备的实时状态", "Local CUPS cache; live device status is not guaranteed");
}

PrinterTelemetrySnapshot PrinterTelemetrySnapshot::fromJson(const JsonReader& reader) {
    const auto sampled = reader.find("sampledAt");
    return {.queueName = reader.at("queueName").text(),
            .sampledAt = sampled ? platform::Timestamp::fromJson(*sampled) : platform::Timestamp(),
            .queueState = findInteger(reader, "queueState"),
            .queueMessage = reader.at("queueMessage").text(),
            .queueReasons = reader.at("queueReasons").texts(),
            .queuedJobCount = findInteger(reader, "queuedJobCount"),
            .isAcceptingJobs = findBoolean(reader, "isAcceptingJobs"),
            .markerChangeTime = findInteger(reader, "markerChangeTime"),
            .markers = platform::readRecords<PrinterMarkerTelemetry>(reader.at("markers"))};
}

QJsonObject PrinterTelemetrySnapshot::toJson() const {
    QJsonObject json{{QStringLiteral("queueName"), queueName},
                     {QStringLiteral("sampledAt"), sampledAt.toJson("sampledAt")},
                     {QStringLiteral("queueMessage"), queueMessage},
                     {QStringLiteral("queueReasons"), QJsonArray::fromStringList(queueReasons)},
                     {QStringLiteral("markers"), platform::jsonArray(markers)}};
    insertIfPresent(json, QStringLiteral("queueState"), queueState);
    insertIfPresent(json, QStringLiteral("queuedJobCount"), queuedJobCount);
    insertIfPresent(json, QStringLiteral("isAcceptingJobs"), isAcceptingJobs);
    insertIfPresent(json, QStringLiteral("markerChangeTime"), markerChangeTime);
    return json;
}

} // namespace orvex
