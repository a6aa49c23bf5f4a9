#include "Stores/PrintPresets.h"

#include "Json/JsonRecords.h"
#include "OrvexLanguage.h"
#include "Sha256.h"
#include "Text.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

constexpr qsizetype longestDriverValue = 256; // in characters

bool isControl(char32_t scalar) {
    return QChar::category(scalar) == QChar::Other_Control;
}

bool isDriverValue(const QString& value) {
    const auto scalars = value.toUcs4();
    return !value.isEmpty() && platform::hasAtMostCharacters(value, longestDriverValue) &&
           std::ranges::none_of(scalars, isControl);
}

} // namespace

std::optional<QString> DriverOptionSelection::validationError() const {
    if (keyword != u"Resolution") {
        return spt("预设只能记录驱动实际提供的 Resolution 质量选项，不能记录裁切或其他驱动控制项。",
                   "Presets may record only the Resolution quality option actually exposed by the driver, not cutting "
                   "or other driver controls.");
    }
    if (!isDriverValue(value)) {
        return spt("打印质量选项无效。请选择当前驱动实际提供的选项。",
                   "Invalid print quality option. Select one actually exposed by the current driver.");
    }
    return std::nullopt;
}

DriverOptionSelection DriverOptionSelection::fromJson(const platform::JsonReader& reader) {
    return {.keyword = reader.at("keyword").text(), .value = reader.at("value").text()};
}

QJsonObject DriverOptionSelection::toJson() const {
    return {{QStringLiteral("keyword"), keyword}, {QStringLiteral("value"), value}};
}

std::optional<QString> ManagedICCAsset::validationError() const {
    if (!platform::isSha256Hex(sha256) || filename != sha256 + QStringLiteral(".icc")) {
        return spt("ICC 资源引用无效。预设只能引用由应用管理且内容已通过校验的文件。",
                   "Invalid ICC asset reference. Presets may reference only content-verified files managed by the "
                   "app.");
    }
    if (displayName.trimmed().isEmpty()) {
        return spt("ICC 配置文件名称不能为空。", "The ICC profile name cannot be empty.");
    }
    return std::nullopt;
}

ManagedICCAsset ManagedICCAsset::fromJson(const platform::JsonReader& reader) {
    return {.filename = reader.at("filename").text(),
            .sha256 = reader.at("sha256").text(),
            .displayName = reader.at("displayName").text()};
}

QJsonObject ManagedICCAsset::toJson() const {
    return {{QStringLiteral("filename"), filename},
            {QStringLiteral("sha256"), sha256},
            {QStringLiteral("displayName"), displayName}};
}

std::optional<QString> PrintPreset::validationError() const {
    if (schemaVersion != currentSchemaVersion) {
        return spt("不支持此预设版本。原文件已保留。",
                   "This preset version is unsupported. The original file was kept.");
    }
    if (name.trimmed().isEmpty() || !platform::hasAtMostCharacters(name, longestName)) {
        return spt("预设名称须为 1–200 个字符。", "Preset names must contain 1–200 characters.");
    }
    if (!std::isfinite(createdAt.secondsSince2001) || !std::isfinite(updatedAt.secondsSince2001)) {
        return spt("预设日期无效。", "The preset date is invalid.");
    }
    if (auto issue = settings.validationError()) {
        return issue;
    }
    if (auto issue = driverQuality ? driverQuality->validationError() : std::nullopt) {
        return issue;
    }
    if (auto issue = iccAsset ? iccAsset->validationError() : std::nullopt) {
        return issue;
    }
    if (!iccAsset && colorWorkflow.mode == ColorManagementMode::appManaged) {
        return spt("由应用管理颜色的预设必须包含已导入的 ICC 配置文件。",
                   "An app-managed color preset must include an imported ICC profile.");
    }
    return std::nullopt;
}

PrintPreset PrintPreset::fromJson(const platform::JsonReader& reader) {
    return {.schemaVersion = reader.at("schemaVersion").integer(),
            .id = reader.at("id").uuid(),
            .name = reader.at("name").text(),
            .createdAt = platform::Timestamp::fromJson(reader.at("createdAt")),
            .updatedAt = platform::Timestamp::fromJson(reader.at("updatedAt")),
            .settings = DocumentSettings::fromJson(reader.at("settings")),
            .mediaName = reader.at("mediaName").text(),
            .driverQuality = platform::findRecord<DriverOptionSelection>(reader, "driverQuality"),
            .colorWorkflow = ColorWorkflow::fromJson(reader.at("colorWorkflow")),
            .iccAsset = platform::findRecord<ManagedICCAsset>(reader, "iccAsset")};
}

QJsonObject PrintPreset::toJson() const {
    QJsonObject json{{QStringLiteral("schemaVersion"), schemaVersion},
                     {QStringLiteral("id"), platform::uuidText(id)},
                     {QStringLiteral("name"), name},
                     {QStringLiteral("createdAt"), createdAt.toJson("createdAt")},
                     {QStringLiteral("updatedAt"), updatedAt.toJson("updatedAt")},
                     {QStringLiteral("settings"), settings.toJson()},
                     {QStringLiteral("mediaName"), mediaName},
                     {QStringLiteral("colorWorkflow"), colorWorkflow.toJson()}};
    platform::insertRecordIfPresent(json, QStringLiteral("driverQuality"), driverQuality);
    platform::insertRecordIfPresent(json, QStringLiteral("iccAsset"), iccAsset);
    return json;
}

} // namespace orvex
