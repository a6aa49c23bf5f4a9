#include "Layout/RollWorkspaceFile.h"

#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <cmath>

namespace orvex {

void RollWorkspaceFile::validate() const {
    const bool sound = version == currentVersion && !layout.versionValidationError() && layout.hasDistinctIDs() &&
                       std::isfinite(gapInches) && gapInches >= 0.0;
    if (!sound) {
        throw OrvexError::invalid(spt("排版文件的版本或数据无效。原文件已保留。",
                                      "The layout file version or data is invalid. The original file has been "
                                      "retained."));
    }
    refuse(layout.widthValidationError());
    for (const RollArtwork& item : layout.items) {
        refuse(item.validationError(layout.widthInches));
    }
}

RollWorkspaceFile RollWorkspaceFile::decode(QByteArrayView utf8) {
    return fromJson(platform::JsonReader::parse(utf8));
}

QByteArray RollWorkspaceFile::encode() const {
    return platform::writeJson(toJson(), platform::JsonForm::pretty);
}

RollWorkspaceFile RollWorkspaceFile::fromJson(const platform::JsonReader& reader) {
    RollWorkspaceFile file;
    file.version = reader.at("version").integer();
    file.layout = RollLayout::fromJson(reader.at("layout"));
    if (const auto selection = reader.find("selection")) {
        file.selection = selection->uuid();
    }
    for (const auto& [key, value] : reader.at("sizingDescriptions").members()) {
        file.sizingDescriptions.insert(key, value.text());
    }
    file.gapInches = reader.at("gapInches").number();
    return file;
}

QJsonObject RollWorkspaceFile::toJson() const {
    QJsonObject descriptions;
    for (auto each = sizingDescriptions.cbegin(); each != sizingDescriptions.cend(); ++each) {
        descriptions.insert(each.key(), each.value());
    }
    QJsonObject object{{QStringLiteral("version"), version},
                       {QStringLiteral("layout"), layout.toJson()},
                       {QStringLiteral("sizingDescriptions"), descriptions},
                       {QStringLiteral("gapInches"), platform::jsonNumber("gapInches", gapInches)}};
    if (selection) {
        object.insert(u"selection", platform::uuidText(*selection));
    }
    return object;
}

} // namespace orvex
