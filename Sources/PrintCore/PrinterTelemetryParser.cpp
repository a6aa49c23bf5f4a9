#include "PrinterTelemetryParser.h"

#include "PrinterTelemetryCommand.h"
#include "PrinterTelemetryError.h"
#include "PropertyList/PropertyList.h"

#include <algorithm>
#include <array>

namespace orvex {

namespace {

using platform::PropertyList;

constexpr std::size_t mostMarkers = 1024;

void require(bool condition) {
    if (!condition) {
        throw PrinterTelemetryError::invalidResponse();
    }
}

// The values of single properties, each absent where the property is missing or of another kind

std::optional<QString> string(const PropertyList* property) {
    const QString* text = property == nullptr ? nullptr : property->text();
    // The tool's mark for a value out of band, such as "no-value".
    return text == nullptr || text->startsWith(QStringLiteral("<<")) ? std::nullopt : std::optional(*text);
}

std::optional<qint64> integer(const PropertyList* property) {
    const platform::PropertyNumber* number = property == nullptr ? nullptr : property->number();
    return number == nullptr ? std::nullopt : number->integer();
}

std::optional<bool> boolean(const PropertyList* property) {
    const bool* value = property == nullptr ? nullptr : property->boolean();
    return value == nullptr ? std::nullopt : std::optional(*value);
}

/// The values of an attribute; one with a single value comes without an array.
PropertyList::Array values(const PropertyList* property) {
    if (property == nullptr) {
        return {};
    }
    const PropertyList::Array* array = property->array();
    return array == nullptr ? PropertyList::Array{*property} : *array;
}

const PropertyList* at(const PropertyList::Array& array, std::size_t index) {
    return index < array.size() ? &array[index] : nullptr;
}

// The answer

bool isTrue(const PropertyList* property) {
    return boolean(property) == true;
}

bool isText(const PropertyList* property, QStringView expected) {
    const QString* text = property == nullptr ? nullptr : property->text();
    return text != nullptr && *text == expected;
}

PropertyList parsed(QByteArrayView data) {
    try {
        return PropertyList::parse(data);
    } catch (const platform::PropertyListError&) {
        throw PrinterTelemetryError::invalidResponse();
    }
}

/// The attribute groups of the one test that has to have succeeded.
const PropertyList::Array& attributeGroups(const PropertyList& root) {
    require(isTrue(root.find("Successful")));
    const PropertyList* tests = root.find("Tests");
    require(tests != nullptr && tests->array() != nullptr && tests->array()->size() == 1);
    const PropertyList& test = tests->array()->front();
    require(isTrue(test.find("Successful")));
    require(isText(test.find("Operation"), u"Get-Printer-Attributes"));
    require(isText(test.find("StatusCode"), u"successful-ok"));
    const PropertyList* groups = test.find("ResponseAttributes");
    require(groups != nullptr && groups->array() != nullptr && !groups->array()->empty());
    return *groups->array();
}

/// The attributes of all groups. One that stands in two of them is ambiguous, and the answer not believed.
PropertyList merged(const PropertyList::Array& groups) {
    PropertyList::Dictionary attributes;
    for (const PropertyList& group : groups) {
        require(group.dictionary() != nullptr);
        for (const auto& [name, value] : *group.dictionary()) {
            require(attributes.emplace(name, value).second);
        }
    }
    return PropertyList(std::move(attributes));
}

QStringList usableTexts(const PropertyList::Array& array) {
    QStringList texts;
    for (const PropertyList& each : array) {
        if (const auto text = string(&each)) {
            texts.append(*text);
        }
    }
    return texts;
}

QList<PrinterMarkerTelemetry> markersOf(const PropertyList& attributes) {
    const auto named = [&](const char* name) { return values(attributes.find(name)); };
    const std::array arrays{named("marker-names"),  named("marker-types"),      named("marker-colors"),
                            named("marker-levels"), named("marker-low-levels"), named("marker-high-levels")};
    const auto& [names, types, colors, levels, lowLevels, highLevels] = arrays;
    const std::size_t count = std::ranges::max(arrays, {}, &PropertyList::Array::size).size();
    if (count > mostMarkers) {
        throw PrinterTelemetryError::outputTooLarge();
    }
    QList<PrinterMarkerTelemetry> markers;
    for (std::size_t index = 0; index < count; ++index) {
        markers.append({.index = static_cast<qint64>(index),
                        .name = string(at(names, index)),
                        .type = string(at(types, index)),
                        .color = string(at(colors, index)),
                        .level = integer(at(levels, index)),
                        .lowLevel = integer(at(lowLevels, index)),
                        .highLevel = integer(at(highLevels, index))});
    }
    return markers;
}

} // namespace

PrinterTelemetrySnapshot PrinterTelemetryParser::parse(QByteArrayView data, const QString& queueName,
                                                       platform::Timestamp sampledAt) {
    if (!PrinterTelemetryCommand::isValidQueueName(queueName)) {
        throw PrinterTelemetryError::invalidQueueName();
    }
    if (data.size() > largestAnswerBytes) {
        throw PrinterTelemetryError::outputTooLarge();
    }
    const PropertyList root = parsed(data);
    const PropertyList attributes = merged(attributeGroups(root));
    require(string(attributes.find("printer-name")).value_or(queueName) == queueName);
    return {.queueName = queueName,
            .sampledAt = sampledAt,
            .queueState = integer(attributes.find("printer-state")),
            .queueMessage = string(attributes.find("printer-state-message")).value_or(QString()),
            .queueReasons = usableTexts(values(attributes.find("printer-state-reasons"))),
            .queuedJobCount = integer(attributes.find("queued-job-count")),
            .isAcceptingJobs = boolean(attributes.find("printer-is-accepting-jobs")),
            .markerChangeTime = integer(attributes.find("marker-change-time")),
            .markers = markersOf(attributes)};
}

} // namespace orvex
