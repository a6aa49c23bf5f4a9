#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace orvex::platform {

/// The description in a profile's bytes (ICC.1, 9.2.41): its English text if there is one, otherwise its first; trimmed
/// and cut at a NUL. Absent if it has none or an empty one, or if the bytes lead out of the profile. Read by hand: the
/// engine loses count in texts with characters of more than 16 bits. Any thread.
[[nodiscard]] std::optional<QString> iccDescription(const QByteArray& profile);

} // namespace orvex::platform
