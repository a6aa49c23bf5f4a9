#pragma once

#include "OrvexLanguage.h"

#include <string>

namespace orvex {

/// The help text of a command or option in the current language.
[[nodiscard]] inline std::string description(const char* chinese, const char* english) {
    return spt(chinese, english).toStdString();
}

} // namespace orvex
