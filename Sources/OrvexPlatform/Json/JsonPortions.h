#pragma once

#include <QByteArrayView>

#include <optional>
#include <vector>

namespace orvex::platform {

/// The text between the brackets of an array, cut at commas into portions of some elements each. Absent if there is no
/// array; but that each portion is what stands in an array, whoever reads it has to find out.
[[nodiscard]] std::optional<std::vector<QByteArrayView>> jsonArrayPortions(QByteArrayView text);

} // namespace orvex::platform
