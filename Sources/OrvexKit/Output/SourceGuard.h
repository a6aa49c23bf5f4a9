#pragma once

#include <QList>
#include <QUrl>

namespace orvex {

/// Whether writing to `to` would write over one of the source files, by whatever path or link: the same resolved path,
/// or the very same file on the disk. Any thread.
[[nodiscard]] bool overwritesSource(const QUrl& to, const QList<QUrl>& sources);

} // namespace orvex
