#include "ProtectedSettings.h"

#include "Json/JsonRecords.h"
#include "OrvexLanguage.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvex {

namespace {

using platform::JsonReader;
using Status = ProtectedSettingsFileStatus;

constexpr std::array<std::pair<Status, const char*>, 6> statusTexts{{
    {Status::regularFile, "regularFile"},
    {Status::directory, "directory"},
    {Status::missing, "missing"},
    {Status::unreadable, "unreadable"},
    {Status::symbolicLink, "symbolicLink"},
    {Status::unsupported, "unsupported"},
}};

QString statusText(Status status) {
    const auto found = std::ranges::find(statusTexts, status, &std::pair<Status, const char*>::first);
    return QString::fromLatin1(found->second);
}

Status readStatus(const JsonReader& reader) {
    const QString text = reader.text();
    for (const auto& [status, name] : statusTexts) {
        if (text == QLatin1StringView(name)) {
            return status;
        }
    }
    reader.fail(spt("没有名为 %1 的状态。", "There is no status named %1.").arg(text));
}

} // namespace

bool ProtectedSettingsFile::isVerifiable() const {
    switch (status) {
    case Status::directory:
    case Status::missing:
        return true;
    case Status::regularFile:
        return sha256.has_value();
    case Status::unreadable:
    case Status::symbolicLink:
    case Status::unsupported:
        break;
    }
    return false;
}

ProtectedSettingsFile ProtectedSettingsFile::fromJson(const JsonReader& reader) {
    return {.path = reader.at("path").text(),
            .status = readStatus(reader.at("status")),
            .sha256 = platform::findText(reader, "sha256"),
            .diagnostic = platform::findText(reader, "diagnostic")};
}

QJsonObject ProtectedSettingsFile::toJson() const {
    QJsonObject json{{QStringLiteral("path"), path}, {QStringLiteral("status"), statusText(status)}};
    platform::insertIfPresent(json, QStringLiteral("sha256"), sha256);
    platform::insertIfPresent(json, QStringLiteral("diagnostic"), diagnostic);
    return json;
}

ProtectedSettingsSnapshot ProtectedSettingsSnapshot::fromJson(const JsonReader& reader) {
    return {.schemaVersion = reader.at("schemaVersion").integer(),
            .timestamp = platform::Timestamp::fromJson(reader.at("timestamp")),
            .rootPaths = reader.at("rootPaths").texts(),
            .files = platform::readRecords<ProtectedSettingsFile>(reader.at("files"))};
}

QJsonObject ProtectedSettingsSnapshot::toJson() const {
    return {{QStringLiteral("schemaVersion"), schemaVersion},
            {QStringLiteral("timestamp"), timestamp.toJson("timestamp")},
            {QStringLiteral("rootPaths"), QJsonArray::fromStringList(rootPaths)},
            {QStringLiteral("files"), platform::jsonArray(files)}};
}

QJsonObject ProtectedSettingsChange::toJson() const {
    const auto jsonOf = [](const std::optional<ProtectedSettingsFile>& file) {
        return file ? std::optional(file->toJson()) : std::nullopt;
    };
    QJsonObject json{{QStringLiteral("path"), path}};
    platform::insertIfPresent(json, QStringLiteral("before"), jsonOf(before));
    platform::insertIfPresent(json, QStringLiteral("after"), jsonOf(after));
    return json;
}

QJsonObject SettingsPreservationComparison::toJson() const {
    return {{QStringLiteral("changes"), platform::jsonArray(changes)},
            {QStringLiteral("unverifiablePaths"), QJsonArray::fromStringList(unverifiablePaths)},
            {QStringLiteral("isUnchanged"), isUnchanged()}};
}

} // namespace orvex
