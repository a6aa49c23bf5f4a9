#include "PropertyList/PropertyList.h"

#include "OrvexLanguage.h"

#include <cmath>

namespace orvex::platform {

namespace {

/// A double as an integer, if it is one of 64 bits.
std::optional<qint64> wholeNumber(double value) {
    constexpr double limit = 9'223'372'036'854'775'808.0; // 2 to the 63rd
    const bool isWhole = std::isfinite(value) && std::trunc(value) == value && value >= -limit && value < limit;
    return isWhole ? std::optional(static_cast<qint64>(value)) : std::nullopt;
}

} // namespace

std::optional<qint64> PropertyNumber::integer() const {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        return *whole;
    }
    return wholeNumber(std::get<double>(value));
}

const PropertyList* PropertyList::find(const char* key) const {
    const Dictionary* members = dictionary();
    if (members == nullptr) {
        return nullptr;
    }
    const auto found = members->find(QString::fromUtf8(key));
    return found == members->end() ? nullptr : &found->second;
}

PropertyListError::PropertyListError()
    : Failure(spt("内容不是有效的属性列表。", "The content is not a valid property list.")) {}

} // namespace orvex::platform
