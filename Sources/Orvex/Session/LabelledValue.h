#pragma once

#include <QString>

namespace orvex {

/// An entry of a choice: what is shown, and the value behind it. Plain value.
struct LabelledValue {
    QString text;
    QString value;

    bool operator==(const LabelledValue&) const = default;
};

} // namespace orvex
