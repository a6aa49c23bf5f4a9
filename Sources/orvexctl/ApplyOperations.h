#pragma once

#include "Json/JsonReader.h"
#include "Layout/RollLayout.h"

#include <QJsonValue>
#include <QString>

#include <map>
#include <optional>

namespace orvex {

/// One line of `apply`, taken apart.
struct ApplyRequest {
    platform::JsonReader args;
    std::optional<platform::JsonReader> layoutJson;

    /// The layout to work on; any numbers and any width are let through to the operation. Raises JsonError without one.
    [[nodiscard]] RollLayout layout() const;
};

/// What an operation gives back; a result that is null is shown as null, an absent one not at all.
struct ApplyAnswer {
    std::optional<RollLayout> layout;
    std::optional<QJsonValue> result;
};

/// Raises OrvexError when the kit refuses, JsonError for arguments that are missing or of a wrong type.
using ApplyOperation = ApplyAnswer (*)(const ApplyRequest&);
using ApplyOperations = std::map<QString, ApplyOperation>;

[[nodiscard]] const ApplyOperations& layoutOperations();
[[nodiscard]] const ApplyOperations& pageOperations();
[[nodiscard]] const ApplyOperations& languageOperations();
[[nodiscard]] const ApplyOperations& printerOperations();

/// A number for an answer, as a text where JSON lacks it.
[[nodiscard]] QJsonValue answerNumber(double number);

/// A text for an answer, null if absent.
[[nodiscard]] QJsonValue answerText(const std::optional<QString>& text);

} // namespace orvex
