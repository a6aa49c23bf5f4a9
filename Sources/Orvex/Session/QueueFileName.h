#pragma once

#include <QString>

namespace orvex {

/// Whether a queue's name can be a part of a file name: ASCII letters and digits, ".", "_" and "-", which lead out of
/// no folder as long as something else stands beside them. Any thread.
[[nodiscard]] bool isSafeInFileName(const QString& queueName);

} // namespace orvex
