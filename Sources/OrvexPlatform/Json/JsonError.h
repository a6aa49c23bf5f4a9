#pragma once

#include "Failure.h"

namespace orvex::platform {

/// JSON that cannot be read or written. The message begins with the key path, as in "items[3].widthInches: ...".
class JsonError : public Failure {
public:
    JsonError(const QString& keyPath, const QString& description);

    [[nodiscard]] const QString& keyPath() const { return keyPath_; }

    [[nodiscard]] const QString& description() const { return description_; }

private:
    QString keyPath_;
    QString description_;
};

/// Bytes that are no JSON.
class JsonSyntaxError : public JsonError {
public:
    /// `offset` is that of the first byte that cannot be read; 0 is the first of all.
    explicit JsonSyntaxError(qsizetype offset);

    [[nodiscard]] qsizetype offset() const { return offset_; }

private:
    qsizetype offset_;
};

/// A number that a record must not hold; it carries the number.
class JsonInvalidNumber : public JsonError {
public:
    JsonInvalidNumber(const QString& keyPath, const QString& description, double number)
        : JsonError(keyPath, description),
          number_(number) {}

    [[nodiscard]] double number() const { return number_; }

private:
    double number_;
};

} // namespace orvex::platform
