#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace orvex::platform {

/// The content of a zlib stream, or nothing if the stream is damaged, cut off, or holds more than `largestBytes`.
///
/// The content's size is unknown beforehand: the first try has room for `firstBytes`, and each further one for twice
/// as much, the last for exactly `largestBytes`. Bytes behind the stream's end do no harm. Any thread.
[[nodiscard]] std::optional<QByteArray> inflate(QByteArrayView stream, qsizetype firstBytes, qsizetype largestBytes);

} // namespace orvex::platform
