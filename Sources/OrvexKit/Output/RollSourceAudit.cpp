#include "Json/JsonReader.h"
#include "Json/JsonWriter.h"
#include "Output/RollPDFRenderer.h"

namespace orvex {

QJsonObject RollSourceAudit::toJson() const {
    QJsonObject json{{QStringLiteral("artworkID"), platform::uuidText(artworkID)},
                     {QStringLiteral("sourceURL"), platform::urlText(sourceURL)},
                     {QStringLiteral("sourceProfileName"), sourceProfileName},
                     {QStringLiteral("pixelWidth"), pixelWidth},
                     {QStringLiteral("pixelHeight"), pixelHeight},
                     {QStringLiteral("renderedBitsPerComponent"), renderedBitsPerComponent},
                     {QStringLiteral("renderedColorModel"), renderedColorModel}};
    if (sourceProfileSHA256) {
        json.insert(QStringLiteral("sourceProfileSHA256"), *sourceProfileSHA256);
    }
    return json;
}

RollSourceAudit RollSourceAudit::fromJson(const platform::JsonReader& json) {
    const auto digest = json.find("sourceProfileSHA256");
    return {.artworkID = json.at("artworkID").uuid(),
            .sourceURL = json.at("sourceURL").url(),
            .sourceProfileName = json.at("sourceProfileName").text(),
            .sourceProfileSHA256 = digest ? std::optional(digest->text()) : std::nullopt,
            .pixelWidth = json.at("pixelWidth").integer(),
            .pixelHeight = json.at("pixelHeight").integer(),
            .renderedBitsPerComponent = json.at("renderedBitsPerComponent").integer(),
            .renderedColorModel = json.at("renderedColorModel").text()};
}

} // namespace orvex
