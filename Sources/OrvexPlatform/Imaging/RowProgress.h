#pragma once

#include <QtGlobal>

#include <functional>

namespace orvex::platform {

/// Is told how many of a picture's stored rows are done, out of how many: first 0, at last all, and in between once for
/// each strip at most. May be empty. What it raises ends the work that it is told of.
using RowProgress = std::function<void(qint64 done, qint64 count)>;

} // namespace orvex::platform
