#include "PrinterTelemetry.h"

#include "OrvexLanguage.h"

#include <QJsonArray>

namespace orvex {

namespace {

using platform::JsonReader;

std::optional<QString> findText(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->text()) : std::nullopt;
}

std::optional<qint64> findInteger(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->integer()) : std::nullopt;
}

std::optional<bool> findBoolean(const JsonReader& reader, const char* key) {
    const auto found = reader.find(key);
    return found ? std::optional(found->boolean()) : std::nullopt;
}

template <typename Value>
void insertIfPresent(QJsonObject& json, const QString& key, const std::optional<Value>& value) {
    if (value) {
        json.insert(key, *value);
    }
}

} // namespace

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
    return spt("本机 CUPS 缓存，不保证是设备的实时状态", "Local CUPS cache; live device status is not guaranteed");
}

PrinterTelemetrySnapshot PrinterTelemetrySnapshot::fromJson(const JsonReader& reader) {
    const auto sampled = reader.find("sampledAt");
    PrinterTelemetrySnapshot snapshot{.queueName = reader.at("queueName").text(),
                                      .sampledAt =
                                          sampled ? platform::Timestamp::fromJson(*sampled) : platform::Timestamp(),
                                      .queueState = findInteger(reader, "queueState"),
                                      .queueMessage = reader.at("queueMessage").text(),
                                      .queueReasons = reader.at("queueReasons").texts(),
                                      .queuedJobCount = findInteger(reader, "queuedJobCount"),
                                      .isAcceptingJobs = findBoolean(reader, "isAcceptingJobs"),
                                      .markerChangeTime = findInteger(reader, "markerChangeTime")};
    const JsonReader markers = reader.at("markers");
    const qsizetype count = markers.count();
    for (qsizetype index = 0; index < count; ++index) {
        snapshot.markers.append(PrinterMarkerTelemetry::fromJson(markers.element(index)));
    }
    return snapshot;
}

QJsonObject PrinterTelemetrySnapshot::toJson() const {
    QJsonArray markerArray;
    for (const PrinterMarkerTelemetry& marker : markers) {
        markerArray.append(marker.toJson());
    }
    QJsonObject json{{QStringLiteral("queueName"), queueName},
                     {QStringLiteral("sampledAt"), sampledAt.toJson("sampledAt")},
                     {QStringLiteral("queueMessage"), queueMessage},
                     {QStringLiteral("queueReasons"), QJsonArray::fromStringList(queueReasons)},
                     {QStringLiteral("markers"), markerArray}};
    insertIfPresent(json, QStringLiteral("queueState"), queueState);
    insertIfPresent(json, QStringLiteral("queuedJobCount"), queuedJobCount);
    insertIfPresent(json, QStringLiteral("isAcceptingJobs"), isAcceptingJobs);
    insertIfPresent(json, QStringLiteral("markerChangeTime"), markerChangeTime);
    return json;
}

} // namespace orvex
