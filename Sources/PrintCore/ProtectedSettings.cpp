#include "ProtectedSettings.h"

#include "OrvexLanguage.h"

#include <QJsonArray>

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

void insertIfPresent(QJsonObject& json, const QString& key, const std::optional<ProtectedSettingsFile>& file) {
    if (file) {
        json.insert(key, file->toJson());
    }
}

QJsonObject changeJson(const ProtectedSettingsChange& change) {
    QJsonObject json{{QStringLiteral("path"), change.path}};
    insertIfPresent(json, QStringLiteral("before"), change.before);
    insertIfPresent(json, QStringLiteral("after"), change.after);
    return json;
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
    ProtectedSettingsFile file{.path = reader.at("path").text(), .status = readStatus(reader.at("status"))};
    if (const auto hash = reader.find("sha256")) {
        file.sha256 = hash->text();
    }
    if (const auto sentence = reader.find("diagnostic")) {
        file.diagnostic = sentence->text();
    }
    return file;
}

QJsonObject ProtectedSettingsFile::toJson() const {
    QJsonObject json{{QStringLiteral("path"), path}, {QStringLiteral("status"), statusText(status)}};
    if (sha256) {
        json.insert(QStringLiteral("sha256"), *sha256);
    }
    if (diagnostic) {
        json.insert(QStringLiteral("diagnostic"), *diagnostic);
    }
    return json;
}

ProtectedSettingsSnapshot ProtectedSettingsSnapshot::fromJson(const JsonReader& reader) {
    ProtectedSettingsSnapshot snapshot{.schemaVersion = reader.at("schemaVersion").integer(),
                                       .timestamp = platform::Timestamp::fromJson(reader.at("timestamp")),
                                       .rootPaths = reader.at("rootPaths").texts()};
    const JsonReader files = reader.at("files");
    const qsizetype count = files.count();
    for (qsizetype index = 0; index < count; ++index) {
        snapshot.files.append(ProtectedSettingsFile::fromJson(files.element(index)));
    }
    return snapshot;
}

QJsonObject ProtectedSettingsSnapshot::toJson() const {
    QJsonArray fileArray;
    for (const ProtectedSettingsFile& file : files) {
        fileArray.append(file.toJson());
    }
    return {{QStringLiteral("schemaVersion"), schemaVersion},
            {QStringLiteral("timestamp"), timestamp.toJson("timestamp")},
            {QStringLiteral("rootPaths"), QJsonArray::fromStringList(rootPaths)},
            {QStringLiteral("files"), fileArray}};
}

QJsonObject SettingsPreservationComparison::toJson() const {
    QJsonArray changeArray;
    for (const ProtectedSettingsChange& change : changes) {
        changeArray.append(changeJson(change));
    }
    return {{QStringLiteral("changes"), changeArray},
            {QStringLiteral("unverifiablePaths"), QJsonArray::fromStringList(unverifiablePaths)},
            {QStringLiteral("isUnchanged"), isUnchanged()}};
}

} // namespace orvex
