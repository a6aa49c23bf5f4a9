#pragma once

#include "Json/JsonReader.h"

#include <QJsonValue>

namespace orvex::platform {

/// A moment of the wall clock, in seconds since 2001-01-01 00:00:00 UTC. This is the form in which every record keeps
/// a date; a double keeps the fraction, so that what was read is written again unchanged.
struct Timestamp {
    double secondsSince2001 = 0.0;

    [[nodiscard]] static Timestamp now();

    /// A plain JSON number. Raises JsonError.
    [[nodiscard]] static Timestamp fromJson(const JsonReader& reader) { return {reader.number()}; }

    /// Raises JsonInvalidNumber, with the key, for a moment that is not finite.
    [[nodiscard]] QJsonValue toJson(const char* key) const;

    bool operator==(const Timestamp&) const = default;
};

} // namespace orvex::platform
