#include "Layout/RollLayout.h"

#include "Json/JsonError.h"
#include "Json/JsonRecords.h"
#include "Json/JsonWriter.h"
#include "Layout/LayoutTexts.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvex {

double RollLayout::lengthInches() const {
    double length = 0.0;
    for (const RollArtwork& item : items) {
        const double bottom = item.trimRectInches().maxY();
        if (!std::isfinite(bottom)) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        length = std::max(length, bottom);
    }
    return length;
}

std::optional<QString> RollLayout::widthValidationError() const {
    return rollWidthValidationError(widthInches);
}

std::optional<QString> RollLayout::versionValidationError() const {
    return schemaVersion == currentSchemaVersion ? std::nullopt : std::optional(LayoutTexts::unsupportedVersion());
}

bool RollLayout::hasDistinctIDs() const {
    QSet<QUuid> ids;
    ids.reserve(items.size());
    for (const RollArtwork& item : items) {
        ids.insert(item.id);
    }
    return ids.size() == items.size();
}

std::optional<QString> RollLayout::structureValidationError() const {
    if (auto issue = versionValidationError()) {
        return issue;
    }
    if (auto issue = widthValidationError()) {
        return issue;
    }
    if (!hasDistinctIDs()) {
        return LayoutTexts::duplicateIDs();
    }
    for (const RollArtwork& item : items) {
        if (const auto issue = item.validationError(widthInches)) {
            return LayoutTexts::titled(item.title, *issue);
        }
    }
    return std::nullopt;
}

RollLayout RollLayout::fromJson(const platform::JsonReader& reader, LayoutCoding coding) {
    RollLayout layout;
    layout.schemaVersion = reader.at("schemaVersion").integer();
    layout.items = platform::readRecords<RollArtwork>(reader.at("items"));
    // Only a missing key means the default; null is a wrong type.
    if (reader.contains("widthInches")) {
        const auto width = reader.at("widthInches");
        layout.widthInches = width.number();
        const auto issue = layout.widthValidationError();
        if (issue && coding == LayoutCoding::checked) {
            width.fail(*issue);
        }
    }
    return layout;
}

QJsonObject RollLayout::toJson(LayoutCoding coding) const {
    const auto issue = widthValidationError();
    if (issue && coding == LayoutCoding::checked) {
        throw platform::JsonInvalidNumber(QStringLiteral("widthInches"), *issue, widthInches);
    }
    const auto numbers =
        coding == LayoutCoding::checked ? platform::JsonNumbers::finite : platform::JsonNumbers::orNonFiniteText;
    QJsonArray artworks;
    for (const RollArtwork& item : items) {
        artworks.append(item.toJson(numbers));
    }
    return {{QStringLiteral("schemaVersion"), schemaVersion},
            {QStringLiteral("items"), artworks},
            {QStringLiteral("widthInches"), platform::jsonNumber("widthInches", widthInches, numbers)}};
}

} // namespace orvex
