#pragma once

#include "Color/ColorEngine.h"
#include "Color/IccDirectory.h"

#include <limits>

namespace orvex::platform {

/// Whether the engine can read each of the profile's tags from which it computes colours, for any intent and in both
/// directions. Where it cannot, it would quietly compute other colours, from another intent's table or without a white
/// point. Absent tags are no matter; those of other purposes are not looked at.
///
/// Of tags with more than `largestReadBytes` only the type is looked at.
///
/// `profile` must be open from `data`, its spaces be known to the engine, and `tags` be the directory of `data`.
[[nodiscard]] bool canReadColorTags(const EngineContext& context, const EngineProfile& profile, const QByteArray& data,
                                    const std::vector<IccTag>& tags,
                                    quint64 largestReadBytes = std::numeric_limits<quint64>::max());

} // namespace orvex::platform
