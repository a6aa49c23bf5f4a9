#pragma once

#include <QString>

#include <optional>

namespace orvex {

/// The text under a key of the information dictionary, the file share/orvex/info.json beside the program's own folder.
/// Absent if the file cannot be read, is no JSON object, or holds no text under the key. Read once. Any thread.
[[nodiscard]] std::optional<QString> informationDictionaryText(const char* key);

} // namespace orvex
