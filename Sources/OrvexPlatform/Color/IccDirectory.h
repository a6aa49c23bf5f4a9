#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

namespace orvex::platform {

/// An entry of a profile's tag directory: what the tag is, and where its bytes lie (ICC.1, 7.3).
struct IccTag {
    quint32 signature = 0;
    quint32 offset = 0;
    quint32 size = 0;

    friend bool operator==(const IccTag&, const IccTag&) = default;
};

/// The tags of a profile in the order of its directory; they may share bytes. Nothing if the directory or the bytes of
/// any tag reach beyond the size that the profile states for itself, if these bytes begin before the end of the
/// directory, or if the stated size itself is beyond the data. Any thread.
[[nodiscard]] std::optional<std::vector<IccTag>> iccDirectory(const QByteArray& profile);

} // namespace orvex::platform
