#pragma once

#include "Failure.h"

#include <QByteArrayView>
#include <QString>

#include <concepts>
#include <map>
#include <optional>
#include <variant>
#include <vector>

namespace orvex::platform {

/// A number of a property list. An <integer> beyond 64 bits and a <real> are kept as doubles.
struct PropertyNumber {
    std::variant<qint64, double> value;

    /// The number, if it is finite, whole and within 64 bits.
    [[nodiscard]] std::optional<qint64> integer() const;
};

/// A date or data: there, but of no interest.
struct OpaqueProperty {};

/// One value of a property list. A boolean is no number, and a number no boolean.
class PropertyList {
public:
    using Dictionary = std::map<QString, PropertyList>;
    using Array = std::vector<PropertyList>;

    PropertyList() : value_(OpaqueProperty{}) {}

    template <typename Value>

    requires(std::same_as<Value, Dictionary> || std::same_as<Value, Array> || std::same_as<Value, QString> ||
             std::same_as<Value, PropertyNumber> || std::same_as<Value, bool>) explicit PropertyList(Value value)
        : value_(std::move(value)) {}

    /// The value of an XML property list. Raises PropertyListError for anything else: XML that is not well-formed,
    /// declares or refers to entities of its own, or nests deeper than 128 levels; elements that are unknown or out of
    /// place, numbers that are none, a key that stands twice. Memory is bounded by a multiple of the bytes given. Any
    /// thread.
    [[nodiscard]] static PropertyList parse(QByteArrayView xml);

    /// The value if it is of that kind, otherwise null.
    [[nodiscard]] const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }

    [[nodiscard]] const Array* array() const { return std::get_if<Array>(&value_); }

    [[nodiscard]] const QString* text() const { return std::get_if<QString>(&value_); }

    [[nodiscard]] const PropertyNumber* number() const { return std::get_if<PropertyNumber>(&value_); }

    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&value_); }

    /// The value under a key; null if there is none, or this is no dictionary.
    [[nodiscard]] const PropertyList* find(const char* key) const;

private:
    std::variant<OpaqueProperty, Dictionary, Array, QString, PropertyNumber, bool> value_;
};

/// Bytes that are no property list.
class PropertyListError : public Failure {
public:
    PropertyListError();
};

} // namespace orvex::platform
